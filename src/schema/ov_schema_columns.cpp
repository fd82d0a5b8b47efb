#include "platform/variant.h"
#include "schema/ov_schema.h"
#include "storage/file_error.h"

namespace ovf {

namespace {

constexpr std::size_t most_fields = 256;  ///< as many as the dictionary of a table has room for
constexpr LONG usual_length = 8;
constexpr LONG word_characters = 4;  ///< a text takes whole words

constexpr LONG offset_of_new(LONG implicit) noexcept { return implicit != 0 ? implicit_offset : 0; }

/// The text cut or padded to `width` characters.
wide fitted(wide_view text, std::size_t width) {
  wide result(text.substr(0, width));
  result.resize(width, OLESTR(' '));
  return result;
}

}  // namespace

HRESULT COvSchema::begin_column(LONG& index) {
  const std::size_t next = fields_.count() + 1;
  if (next > most_fields) return E_FAIL;
  index = int_of(next);
  fields_.reserve(next);
  return S_OK;
}

HRESULT COvSchema::append_numeric(BSTR name, double default_value, LONG implicit) {
  LONG index = 0;
  if (const HRESULT status = begin_column(index); FAILED(status)) return status;
  if (const HRESULT status = SetFieldName(index, name); FAILED(status)) return status;
  const OvColumnType type = is_double() ? ovColumnDouble : ovColumnSingle;
  if (const HRESULT status = SetFieldType(index, type); FAILED(status)) return status;
  const variant value(default_value);
  if (const HRESULT status = SetFieldDefault(index, value.get()); FAILED(status)) return status;
  if (const HRESULT status = SetFieldOffset(index, offset_of_new(implicit)); FAILED(status)) return status;
  return SetFieldSize(index, is_double() ? 8 : 4);
}

HRESULT COvSchema::append_text(BSTR name, LONG length, wide_view default_value, LONG implicit) {
  const long long width = (static_cast<long long>(length) + 3) / word_characters * word_characters;
  if (width < 0 || width > widest_text) return E_FAIL;
  LONG index = 0;
  if (const HRESULT status = begin_column(index); FAILED(status)) return status;
  if (const HRESULT status = SetFieldName(index, name); FAILED(status)) return status;
  if (const HRESULT status = SetFieldType(index, ovColumnString); FAILED(status)) return status;
  // Exactly 1, while numbers ask for anything but 0: the flag is kept as it was given.
  const auto size = static_cast<LONG>(double_precision_ == 1 ? 2 * width : width);
  if (const HRESULT status = SetFieldSize(index, size); FAILED(status)) return status;
  const variant value(fitted(default_value, static_cast<std::size_t>(width)));
  if (const HRESULT status = SetFieldDefault(index, value.get()); FAILED(status)) return status;
  return SetFieldOffset(index, offset_of_new(implicit));
}

HRESULT COvSchema::AddNumericColumn(BSTR name, double defaultValue, LONG implicit) {
  return guard(*this, [&] { return append_numeric(name, defaultValue, implicit); });
}

HRESULT COvSchema::AddStringColumn(BSTR name, LONG length, BSTR defaultValue, LONG implicit) {
  return guard(*this, [&] { return append_text(name, length, view_of(defaultValue), implicit); });
}

HRESULT COvSchema::AddColumnOfLength(BSTR name, OvColumnType type, LONG length) {
  if (type == ovColumnSingle || type == ovColumnDouble) return AddNumericColumn(name, 0.0, 0);
  if (type == ovColumnString) return AddStringColumn(name, length, nullptr, 0);
  return E_FAIL;
}

HRESULT COvSchema::AddColumnOfUsualLength(BSTR name, OvColumnType type) {
  return AddColumnOfLength(name, type, usual_length);
}

HRESULT COvSchema::AddColumn(BSTR name, OvColumnType type) { return AddColumnOfUsualLength(name, type); }

HRESULT COvSchema::AddColumn(BSTR name, OvColumnType type, LONG length) {
  return AddColumnOfLength(name, type, length);
}

}  // namespace ovf
