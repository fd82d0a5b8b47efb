#include "field_listing.h"

#include <algorithm>
#include <cmath>

#include "absent.h"
#include "number_text.h"
#include "words.h"

namespace command {
namespace {

bool is_absent_default(const field_view& field, bool single) {
  return single ? is_absent(static_cast<float>(field.number_default)) : is_absent(field.number_default);
}

std::string number_default_text(const field_view& field, bool single) {
  return single ? number_text(static_cast<float>(field.number_default)) : number_text(field.number_default);
}

std::string json_default(const field_view& field, bool single) {
  if (field.is_text) return json_text(field.text_default);
  if (is_absent_default(field, single)) return "null";
  const std::string number = number_default_text(field, single);
  return std::isfinite(field.number_default) ? number : json_text(number);
}

}  // namespace

std::string default_words(const field_view& field, bool single) {
  if (field.is_text) return field.text_default;
  return is_absent_default(field, single) ? "absent" : number_default_text(field, single);
}

void append_field_lines(std::string& out, const std::vector<field_view>& fields, bool single) {
  std::size_t name_width = 6;
  for (const field_view& field : fields) name_width = std::max(name_width, field.name.size());
  out += fmt::format("{:>4}  {:<{}}  {:<6}  {:>5}  {:<8}  {}\n", "#", "column", name_width, "type", "width",
                     "kept", "default");
  for (const field_view& field : fields) {
    const std::string line =
        fmt::format("{:>4}  {:<{}}  {:<6}  {:>5}  {:<8}  {}", field.column, field.name, name_width,
                    field.is_text ? "text" : "number", field.is_text ? std::to_string(field.width) : "",
                    field.implicit ? "implicit" : "stored", default_words(field, single));
    out.append(line, 0, line.find_last_not_of(' ') + 1);
    out += '\n';
  }
}

void append_json_fields(std::string& out, const std::vector<field_view>& fields, bool single) {
  out += '[';
  const char* separator = "\n    ";
  for (const field_view& field : fields) {
    out += fmt::format(R"({}{{"name": {}, "type": "{}", "width": {}, "implicit": {}, "default": {}}})",
                       separator, json_text(field.name), field.is_text ? "text" : "number", field.width,
                       field.implicit, json_default(field, single));
    separator = ",\n    ";
  }
  out += fields.empty() ? "]" : "\n  ]";
}

}  // namespace command
