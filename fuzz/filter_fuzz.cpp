// Expressions and values. The first line is the expression, the second a list of values. Beside not
// crashing: a bad expression has a message with a position and nothing passes; the list given twice and
// the same values one by one get the same answer; and what an expression says, it says of itself in
// parentheses, and the opposite behind NOT.
#include <cmath>
#include <cstdint>
#include <string>

#include "filter/evaluator.h"
#include "filter/expression_error.h"
#include "filter/number_text.h"
#include "filter/value.h"
#include "require.h"

namespace {

using ovf::filter::evaluator;
using ovf::filter::wide;
using ovf::filter::wide_view;

wide text_of(const std::uint8_t* bytes, std::size_t size) {
  wide text;
  for (std::size_t i = 0; i < size; ++i) text.push_back(static_cast<OLECHAR>(bytes[i]));
  return text;
}

/// False for a bad expression, whose message is looked at.
bool compiles(evaluator& filter, const wide& expression) {
  try {
    filter.set_expression(expression);
    return true;
  } catch (const ovf::filter::expression_error& error) {
    const std::size_t mark = error.message().rfind(wide(OLESTR(" at position ")));
    require(mark != wide::npos, "a message tells a position");
    std::size_t position = 0;
    for (const OLECHAR c : error.message().substr(mark + 13))
      position = position * 10 + static_cast<std::size_t>(c - '0');
    require(position >= 1 && position <= expression.size() + 1, "the position lies in the expression");
    require(filter.variables().empty() && !filter.passes(), "a bad expression passes nothing");
    return false;
  }
}

/// A text that a number has in a list.
bool is_number(wide_view text, double& number) {
  if (text == wide_view(OLESTR("INF")) || text == wide_view(OLESTR("-INF"))) {
    number = text.size() == 3 ? HUGE_VAL : -HUGE_VAL;
    return true;
  }
  return ovf::filter::read_number(text, number) == ovf::filter::number_reading::number &&
         ovf::filter::write_number(number).view() == text;
}

/// Whether it was a text that reads as a number.
bool set_one(evaluator& filter, LONG variable, wide_view value) {
  double number = 0;
  if (value.empty() || value == wide_view(OLESTR("-"))) {
    filter.set_absent(variable);
  } else if (is_number(value, number)) {
    filter.set_number(variable, number);
  } else {
    filter.set_text(variable, value);
    return ovf::filter::read_number(value, number) == ovf::filter::number_reading::number;
  }
  return false;
}

/// As a host that knows what each position is. The number of texts that read as numbers: where there are
/// two, a list says less.
std::size_t set_one_by_one(evaluator& filter, wide_view list) {
  const auto count = static_cast<LONG>(filter.variables().size());
  std::size_t doubtful = 0;
  for (LONG i = 0; i < count; ++i) {
    const std::size_t end = i + 1 == count ? list.size() : std::min(list.find(OLECHAR(',')), list.size());
    doubtful += set_one(filter, i, ovf::filter::without_end_blanks(list.substr(0, end))) ? 1 : 0;
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return doubtful;
}

void check_values(evaluator& filter, const wide& list) {
  filter.set_values(list);
  const bool listed = filter.passes();
  require(filter.passes() == listed, "asking changes nothing");
  filter.set_values(list);
  require(filter.passes() == listed, "the same list gets the same answer");
  const std::size_t doubtful = set_one_by_one(filter, list);
  require(doubtful > 1 || filter.passes() == listed, "both roads get the same answer");
}

void check_opposite(const wide& expression, const wide& list, bool passed) {
  evaluator opposite;
  evaluator same;
  if (!compiles(opposite, wide(OLESTR("NOT (")) + expression + wide(OLESTR("\n)")))) return;  // too deep
  opposite.set_values(list);
  require(opposite.passes() != passed, "NOT turns the answer round");
  require(compiles(same, wide(OLESTR("(")) + expression + wide(OLESTR("\n)"))), "parentheses around it");
  same.set_values(list);
  require(same.passes() == passed, "parentheses change nothing");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const wide all = text_of(data, size);
  const std::size_t line = std::min(all.find(OLECHAR('\n')), all.size());
  const wide expression = all.substr(0, line);
  const wide list = line < all.size() ? all.substr(line + 1) : wide();
  evaluator filter;
  if (!compiles(filter, expression)) return 0;
  check_values(filter, list);
  if (expression.find_first_not_of(wide(OLESTR(" \t\v\f\r\xA0"))) == wide::npos) return 0;
  check_opposite(expression, list, filter.passes());
  return 0;
}
