// The types of what is read, and what their metadata tells of table and fields.
#include <charconv>

#include "stream/read_plan.h"
#include "stream/text_words.h"

namespace ovf {
namespace {

template <class Number>
std::string digits_of(Number number) {
  char digits[32];
  return {digits, std::to_chars(digits, digits + sizeof digits, number).ptr};
}

std::string without_blanks(std::string_view text) { return std::string(text_words::without_blanks(text)); }

/// The default as the engine gives it to hosts.
std::string default_of(table& from, std::uint64_t index) {
  const variant value = from.getDefaultValue(index);
  switch (value.type()) {
    case VT_R4:
      return digits_of(value.get().fltVal);
    case VT_R8:
      return digits_of(value.get().dblVal);
    case VT_BSTR:
      return without_blanks(utf8_from_wide(view_of(value.get().bstrVal)));
    default:
      return {};
  }
}

type_description field_type(const field& of, table& from, std::uint64_t index, const read_plan& plan) {
  const record_layout layout{from.isDouble(), from.order(), from.recordBytes()};
  type_description type = type_of(of, layout, plan.choices);
  const bool is_text = of.kind == field_kind::alphanumeric;
  const std::size_t number_bytes =
      layout.is_double ? double_precision::word_bytes : single_precision::word_bytes;
  const std::size_t width = is_text ? of.atoms.size() * format::text_word_chars : number_bytes;
  type.name = utf8_from_wide(of.name);
  type.metadata = {{"ovfile:kind", is_text ? "text" : "numeric"},
                   {"ovfile:width", digits_of(width)},
                   {"ovfile:default", default_of(from, index)},
                   {"ovfile:implicit", of.is_implicit() ? "true" : "false"}};
  return type;
}

}  // namespace

type_description type_of(const read_plan& plan, table& from) {
  type_description type;
  type.format = "+s";
  type.metadata = {{"ovfile:description", without_blanks(utf8_from_wide(from.getDescription()))},
                   {"ovfile:precision", from.isDouble() ? "double" : "single"}};
  for (const std::uint64_t index : plan.fields) {
    type.children.push_back(field_type(from.fields().at(index), from, index, plan));
  }
  return type;
}

}  // namespace ovf
