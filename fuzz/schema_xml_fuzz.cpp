// Any text as the XML form of a schema: it reads, the schema holds together, and what could be written
// from it reads again. A text that begins with the byte 0xFF is UTF-16, any other Windows-1252, so that
// seeds are plain XML.
#include <cstdint>
#include <cstring>

#include "base/text.h"
#include "ovfile/smart.h"
#include "require.h"

namespace {

ovf::wide text_of(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return {};
  if (data[0] != 0xFF) return ovf::wide_from_ansi({reinterpret_cast<const char*>(data), size});
  ovf::wide text((size - 1) / 2, u'\0');
  if (!text.empty()) std::memcpy(text.data(), data + 1, text.size() * 2);
  return text;
}

LONG field_count(IOvSchema& schema) {
  LONG count = -1;
  require(schema.get_FieldCount(&count) == S_OK && count >= 0 && count <= 256, "0 to 256 fields");
  return count;
}

void check_fields(IOvSchema& schema) {
  VARIANT_BOOL is_double = 0;
  require(schema.get_DoublePrecisionFlag(&is_double) == S_OK, "a schema has a precision");
  for (LONG i = field_count(schema); i > 0; --i) {
    ovfile::text name;
    ovfile::variant value;
    OvColumnType type{};
    LONG characters = -1;
    require(schema.GetFieldName(i, name.out()) == S_OK && name.view().size() <= 8, "no name is long");
    require(schema.GetFieldType(i, &type) == S_OK, "a field has a type");
    require(schema.GetFieldDefault(i, value.out()) == S_OK, "a field has a default");
    require(schema.GetFieldSizeChars(i, &characters) == S_OK && characters >= 0, "a field has a width");
    if (type == ovColumnString) {
      // A second definition may change the precision behind the field, and with it the meaning of its size.
      const auto filled = static_cast<LONG>(value.view().size());
      require(filled % 4 == 0, "a default fills whole words");
      require(characters == filled || characters == 2 * filled || 2 * characters == filled, "its field's");
    } else {
      require(type == (is_double != 0 ? ovColumnDouble : ovColumnSingle), "a number has the precision");
    }
  }
  OvFileType kind{};
  require(schema.get_TypeHint(&kind) == S_OK && (kind & ovGenericTable) != 0, "a schema has a kind");
}

void check_text(ovf::wide_view text) {
  const auto schema = ovfile::create_schema();
  require(schema->SetSchemaUsingXML(ovfile::text(text).get()) == S_OK, "every text reads");
  check_fields(*schema.get());
  ovfile::text written;
  const HRESULT status = schema->GetSchemaAsXML(written.out());
  require(status == S_OK || status == E_FAIL, "a schema is written or too long");
  if (status != S_OK) return;
  require(written.view().size() < 2047, "no longer text is written");
  const auto copy = ovfile::create_schema();
  require(copy->SetSchemaUsingXML(written.get()) == S_OK, "what was written reads");
  check_fields(*copy.get());
  if (text.find(OLESTR('"')) == ovf::wide_view::npos) {
    require(field_count(*copy.get()) == 0, "without a quote there is no field");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  check_text(text_of(data, size));
  return 0;
}
