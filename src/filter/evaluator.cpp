#include "filter/evaluator.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "filter/parser.h"

namespace ovf::filter {

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

/// Nobody tells whether it is a number's text or a text that reads as one.
value listed_value(wide_view text) {
  value read = text_value(text, origin::any);
  if (read.view() == wide_view(OLESTR("-"))) return {};
  if (read.view() == wide_view(OLESTR("INF"))) read.number = infinite;
  if (read.view() == wide_view(OLESTR("-INF"))) read.number = -infinite;
  return read;
}

/// Spaces alone, behind a byte order mark or not.
bool is_empty(wide_view expression) noexcept {
  if (!expression.empty() && code_of(expression.front()) == byte_order_mark) expression.remove_prefix(1);
  return std::all_of(expression.begin(), expression.end(), is_space);
}

}  // namespace

void evaluator::clear() noexcept {
  program_.clear();
  values_.clear();
  stack_.clear();
  texts_.clear();
  list_is_current_ = false;
}

void evaluator::set_expression(wide_view expression) {
  clear();
  if (is_empty(expression)) {
    state_ = state::everything_passes;
    return;
  }
  state_ = state::nothing_passes;
  program compiled = compile(expression);
  texts_.resize(compiled.variables.size());
  stack_.resize(compiled.deepest_stack + 1);
  values_.resize(compiled.variables.size());
  program_ = std::move(compiled);
  state_ = state::compiled;
}

void evaluator::set_values(wide_view values) {
  // Hosts give the same list twice, to set it and to ask.
  if (list_is_current_ && values == list_) return;
  list_is_current_ = false;
  std::fill(values_.begin(), values_.end(), value{});
  list_ = values;
  wide_view rest = list_;
  for (value& next : values_) {
    const bool is_last = &next == &values_.back();
    const std::size_t end =
        is_last ? rest.size() : std::min(rest.find(static_cast<OLECHAR>(',')), rest.size());
    next = listed_value(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  list_is_current_ = true;
}

void evaluator::set_text(LONG variable, wide_view text) {
  wide& kept = texts_[static_cast<std::size_t>(variable)];
  changed(variable) = value{};
  kept = text;
  changed(variable) = text_value(kept, origin::text_field);
}

bool evaluator::passes() noexcept {
  if (state_ != state::compiled) return state_ == state::everything_passes;
  return filter::passes(program_, values_.data(), stack_.data());
}

}  // namespace ovf::filter
