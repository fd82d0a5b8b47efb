#include "filter/evaluator.h"

#include <algorithm>
#include <utility>

#include "filter/parser.h"

namespace ovf::filter {

namespace {

value listed_value(wide_view text) {
  const value read = text_value(text);
  return read.view() == wide_view(OLESTR("-")) ? value{} : read;
}

}  // namespace

void evaluator::clear() noexcept {
  program_ = program{};
  values_.clear();
  stack_.clear();
  texts_.clear();
  list_is_current_ = false;
}

void evaluator::set_expression(wide_view expression) {
  clear();
  if (std::all_of(expression.begin(), expression.end(), is_blank)) {
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
  changed(variable) = text_value(kept);
}

bool evaluator::passes() noexcept {
  if (state_ != state::compiled) return state_ == state::everything_passes;
  return filter::passes(program_, values_.data(), stack_.data());
}

}  // namespace ovf::filter
