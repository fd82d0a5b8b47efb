#include "schema_xml.h"

#include <algorithm>

#include "encoding.h"
#include "failure.h"
#include "raw_file.h"
#include "words.h"

namespace command {
namespace {

/// No schema comes near it; something else was named by mistake.
constexpr std::size_t longest_text = 16 << 20;

std::string read_bytes(raw_file& file) {
  std::string bytes;
  for (;;) {
    char piece[16384];
    const std::size_t count = file.read(piece, sizeof piece);
    if (count == 0) return bytes;
    bytes.append(piece, count);
    if (bytes.size() > longest_text) throw failure(file.name() + " is too large to be a schema");
  }
}

/// Bytes behind the byte order mark of UTF-16.
std::string from_utf16(std::string_view bytes, bool big_endian, const std::string& file) {
  if (bytes.size() % 2 != 0) throw failure(file + " ends within a character of UTF-16");
  ovfile::wide_string wide;
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    wide.push_back(static_cast<OLECHAR>(big_endian ? first << 8 | second : second << 8 | first));
  }
  return ovfile::to_utf8(wide);
}

std::string decode(std::string_view bytes, const std::string& file) {
  if (bytes.starts_with("\xFF\xFE")) return from_utf16(bytes.substr(2), false, file);
  if (bytes.starts_with("\xFE\xFF")) return from_utf16(bytes.substr(2), true, file);
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  return to_utf8(bytes, look_at_utf8(bytes).valid ? encoding::utf8 : encoding::windows_1252);
}

void check_characters(std::string_view text, const std::string& file) {
  std::size_t line = 1;
  while (!text.empty()) {
    const std::string_view words = text.substr(0, text.find('\n'));
    if (words.find('\0') != words.npos) {
      throw failure(fmt::format("{}, line {}: a NUL character; this is no XML", file, line));
    }
    const utf8_facts facts = look_at_utf8(words);
    if (facts.foreign != 0) {
      throw failure(
          fmt::format("{}, line {}: the character U+{:04X} is not in Windows-1252, in which tables keep text",
                      file, line, static_cast<std::uint32_t>(facts.foreign)));
    }
    text.remove_prefix(std::min(words.size() + 1, text.size()));
    ++line;
  }
}

/// The name that the library reads in an element, which it looks for in the element's line alone and
/// whose second quote it looks for one character late; empty where there is none.
std::string name_in(std::string_view element) {
  if (const std::size_t end = element.find('\n'); end < element.size()) element = element.substr(0, end);
  const std::size_t attribute = element.find("name");
  const std::size_t first = attribute == element.npos ? element.npos : element.find('"', attribute);
  const std::size_t second = first == element.npos ? element.npos : element.find('"', first + 2);
  return second == element.npos ? std::string() : std::string(element.substr(first + 1, second - first - 1));
}

/// Where the next element of a field begins, whatever stands behind its name: the library takes one with a
/// blank there alone.
std::size_t next_field(std::string_view xml, std::size_t from) {
  constexpr std::string_view element = "<OvField";
  for (;;) {
    const std::size_t at = xml.find(element, from);
    if (at == xml.npos) return at;
    from = at + element.size();
    if (xml.substr(from, 1) != "s") return at;  // not the element around them
  }
}

bool is_taken(std::string_view element, const std::string& name, const std::vector<field_view>& taken,
              std::size_t next) {
  return element.starts_with("<OvField ") && next < taken.size() && taken[next].name == name;
}

}  // namespace

std::string schema_to_xml(IOvSchema& schema, const std::string& description, const std::string& file) {
  ovfile::text xml;
  if (FAILED(schema.GetSchemaAsXML(xml.out()))) {
    throw failure(
        file + ": the schema is too large for its XML form, which has at most 2046 characters; use --json");
  }
  ovfile::text known;
  ovfile::check(schema.get_Description(known.out()));
  std::string out = xml.utf8();
  const std::string attribute = " desc=\"";
  const std::size_t at = out.find(attribute + known.utf8() + '"');
  if (at != out.npos) out.replace(at + attribute.size(), known.utf8().size(), description);
  return out;
}

bool reads_back(const std::string& xml, IOvSchema& schema, const std::string& description,
                const std::vector<field_view>& fields) {
  const auto again = schema_from_xml(xml, "XML");
  VARIANT_BOOL precision = VARIANT_FALSE;
  VARIANT_BOOL precision_again = VARIANT_FALSE;
  ovfile::text description_again;
  ovfile::check(schema.get_DoublePrecision(&precision));
  ovfile::check(again->get_DoublePrecision(&precision_again));
  ovfile::check(again->get_Description(description_again.out()));
  return precision == precision_again && description == description_again.utf8() &&
         read_fields(*again.get(), "XML") == fields;
}

std::string read_schema_text(const std::string& file) {
  raw_file input = file == "-" ? raw_file::standard_input() : raw_file::open(file);
  std::string text = decode(read_bytes(input), input.name());
  check_characters(text, input.name());
  return text;
}

ovfile::pointer<IOvSchema> schema_from_xml(const std::string& xml, const std::string& file) {
  auto schema = ovfile::create_schema();
  check_call(file, schema->SetSchemaUsingXML(ovfile::text(std::string_view(xml)).get()));
  return schema;
}

std::vector<std::string> names_not_taken(std::string_view xml, const std::vector<field_view>& taken) {
  std::vector<std::string> names;
  std::size_t nameless = 0;
  std::size_t next = 0;  // fields are taken in the order of the text
  for (std::size_t at = next_field(xml, 0); at != xml.npos; at = next_field(xml, at + 1)) {
    const std::string_view element = xml.substr(at);
    const std::string name = name_in(element);
    if (is_taken(element, name, taken, next)) {
      ++next;
    } else if (name.empty()) {
      ++nameless;
    } else {
      names.push_back(name);
    }
  }
  if (nameless > 0) names.push_back(std::to_string(nameless) + " without a name");
  return names;
}

}  // namespace command
