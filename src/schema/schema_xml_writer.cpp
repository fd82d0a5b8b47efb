#include "schema/schema_xml_writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <utility>

#include "storage/special_values.h"

namespace ovf {

namespace {

constexpr std::size_t text_limit = 2047;     ///< the text stays shorter than this
constexpr std::size_t number_limit = 63;     ///< characters of a number; what is beyond is cut
constexpr std::size_t longest_number = 320;  ///< the largest double before its point, and six decimals

/// Collects the pieces until they are too much.
class limited_text {
 public:
  limited_text& operator<<(wide_view piece) {
    if (text_.size() + piece.size() >= text_limit) full_ = true;
    if (!full_) text_ += piece;
    return *this;
  }
  bool is_full() const { return full_; }
  std::optional<wide> result() && {
    if (full_) return {};
    return std::move(text_);
  }

 private:
  wide text_;
  bool full_ = false;
};

/// The number with six decimals, as the C library prints it in its own locale.
std::string six_decimals(double value) {
  if (std::isnan(value)) return "nan";
  char text[longest_number];
  const auto [end, error] = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, 6);
  const auto length = static_cast<std::size_t>(error == std::errc() ? end - text : 0);
  return {text, std::min(length, number_limit)};
}

std::string number_text(double value) {
  if (value == top_value) return "+";
  if (value == absent_value) return "-";
  if (value == trace_value) return "TR";
  std::string text = six_decimals(value);
  if (text.find('.') == std::string::npos) return text;
  text.erase(text.find_last_not_of('0') + 1);
  text.erase(text.find_last_not_of('.') + 1);
  return text;
}

std::string_view without_blanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

void write_field(limited_text& out, const schema_field& field, bool is_double) {
  out << OLESTR("\t\t<OvField name=\"") << wide_from_ansi(field.name) << OLESTR("\"");
  if (field.is_numeric()) {
    out << OLESTR(" type=\"numeric\" default=\"") << wide_from_ansi(number_text(field.numeric_default));
  } else if (field.is_text()) {
    const LONG characters = is_double ? field.size / 2 : field.size;
    out << OLESTR(" type=\"alphanumeric\" length=\"") << wide_from_ansi(std::to_string(characters))
        << OLESTR("\" default=\"") << wide_from_ansi(without_blanks(field.text_default));
  } else {
    return;
  }
  out << OLESTR("\"");
  if (field.is_implicit()) out << OLESTR(" implicit=\"true\"");
  out << OLESTR("/>\r\n");
}

}  // namespace

std::optional<wide> schema_as_xml(const schema_fields& fields, wide_view description, bool is_double) {
  limited_text out;
  out << OLESTR("<?xml version=\"1.0\" ?>\r\n");
  out << OLESTR("<OvDefinition precision=\"") << (is_double ? OLESTR("extended") : OLESTR("single"));
  out << OLESTR("\" desc=\"") << description << OLESTR("\">\r\n");
  out << OLESTR("\t<OvFields>\r\n");
  for (const schema_field& field : fields) {
    if (out.is_full()) return {};
    write_field(out, field, is_double);
  }
  out << OLESTR("\t</OvFields>\r\n") << OLESTR("</OvDefinition>\r\n");
  return std::move(out).result();
}

}  // namespace ovf
