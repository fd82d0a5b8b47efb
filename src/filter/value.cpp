#include "filter/value.h"

#include "filter/value_text.h"

namespace ovf::filter {

value text_value(wide_view text) {
  text = without_end_blanks(text);
  if (text.empty()) return {};
  double number = not_a_number;
  if (read_number(text, number) != number_reading::number) number = not_a_number;
  return {number, text.data(), text.size()};
}

bool holds(relation asked, manner as, const value& left, const value& right) noexcept {
  const bool both_numbers = !std::isnan(left.number) && !std::isnan(right.number);
  if (as == manner::numbers || (as == manner::either && both_numbers)) {
    return holds(asked, left.number, right.number);
  }
  if (left.is_absent() || right.is_absent()) return false;
  const value_text left_text(left);
  const value_text right_text(right);
  return holds(asked, left_text.view().compare(right_text.view()), 0);
}

}  // namespace ovf::filter
