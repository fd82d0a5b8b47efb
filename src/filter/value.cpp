#include "filter/value.h"

#include "filter/value_text.h"

namespace ovf::filter {

namespace {

bool can_be_numbers(const value& left, const value& right) noexcept {
  const bool one_is_quoted = left.from == origin::quoted || right.from == origin::quoted;
  const bool both_are_texts = left.from == origin::text_field && right.from == origin::text_field;
  return !one_is_quoted && !both_are_texts && !std::isnan(left.number) && !std::isnan(right.number);
}

bool can_be_text(const value& of) noexcept { return !of.is_absent() || of.from == origin::quoted; }

}  // namespace

value text_value(wide_view text, origin from) {
  text = without_end_blanks(text);
  if (text.empty()) return {};
  double number = not_a_number;
  if (read_number(text, number) != number_reading::number) number = not_a_number;
  return {number, text.data(), text.size(), from};
}

bool holds(relation asked, manner as, const value& left, const value& right) noexcept {
  if (as == manner::numbers || (as == manner::either && can_be_numbers(left, right))) {
    return holds(asked, left.number, right.number);
  }
  if (!can_be_text(left) || !can_be_text(right)) return false;
  const value_text left_text(left);
  const value_text right_text(right);
  return holds(asked, left_text.view().compare(right_text.view()), 0);
}

}  // namespace ovf::filter
