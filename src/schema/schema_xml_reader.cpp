#include "schema/schema_xml_reader.h"

#include <algorithm>

#include "ovfile/smart.h"
#include "schema/leading_number.h"
#include "schema/refusals.h"
#include "storage/format.h"
#include "storage/special_values.h"

namespace ovf {

namespace {

constexpr wide_view quote = OLESTR("\"");

bool has(wide_view line, wide_view word) { return line.find(word) != wide_view::npos; }

/// What stands between the next two quotes behind the first place of `attribute`. The second is looked
/// for one character late, so that of `""` it is the next one of the line.
wide_view value_of(wide_view line, wide_view attribute) {
  const std::size_t place = line.find(attribute);
  if (place == wide_view::npos) return {};
  const std::size_t first = line.find(quote, place);
  if (first == wide_view::npos) return {};
  const std::size_t second = line.find(quote, first + 2);
  if (second == wide_view::npos) return {};
  return line.substr(first + 1, second - first - 1);
}

class line_reader {
 public:
  explicit line_reader(IOvSchema& schema) : schema_(schema) {}

  void read(wide_view line) {
    if (has(line, OLESTR("OvDefinition"))) read_definition(line);
    if (has(line, OLESTR("OvFields"))) in_fields_ = !in_fields_;
    if ((in_definition_ || in_fields_) && has(line, OLESTR("OvField "))) read_field(line);
  }

 private:
  /// The opening tag, or the closing one when the definition is open.
  void read_definition(wide_view line) {
    in_definition_ = !in_definition_;
    if (!in_definition_) return;
    if (has(line, OLESTR("precision"))) {
      is_double_ = has(line, OLESTR("extended"));
      schema_.put_DoublePrecisionFlag(is_double_ ? 1 : 0);
    }
    const ovfile::text description(value_of(line, OLESTR("desc")));
    only_memory_counts(schema_.put_Description(description.get()));
  }

  void read_field(wide_view line) {
    const wide_view name = value_of(line, OLESTR("name"));
    if (name.size() > format::short_name_chars) return;
    const ovfile::text own_name(name);
    const wide_view value = value_of(line, OLESTR("default"));
    const LONG implicit = value_of(line, OLESTR("implicit")) == OLESTR("true") ? 1 : 0;
    const wide_view type = value_of(line, OLESTR("type"));
    if (type == OLESTR("numeric")) {
      only_memory_counts(schema_.AddNumericColumn(own_name.get(), number_of(value), implicit));
    } else if (type == OLESTR("alphanumeric")) {
      const wide_view length = value_of(line, OLESTR("length"));
      if (length.empty()) return;
      const ovfile::text own_value(value);
      only_memory_counts(
          schema_.AddStringColumn(own_name.get(), leading_integer(length), own_value.get(), implicit));
    }
  }

  double number_of(wide_view text) const {
    if (text == OLESTR("+")) return special(top_value);
    if (text == OLESTR("-")) return special(absent_value);
    if (text == OLESTR("TR")) return special(trace_value);
    return leading_number(text);
  }
  double special(double value) const { return is_double_ ? value : in_single(value); }

  IOvSchema& schema_;
  bool is_double_ = true;
  bool in_definition_ = false;
  bool in_fields_ = false;
};

}  // namespace

void read_schema_xml(wide_view text, IOvSchema& schema) {
  line_reader reader(schema);
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(OLESTR('\n')), text.size());
    reader.read(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

}  // namespace ovf
