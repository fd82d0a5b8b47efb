// An expression and the values of its variables: what the component's object does, without the object.
#pragma once

#include "filter/program.h"

namespace ovf::filter {

class evaluator {
 public:
  evaluator() = default;
  // Values look into the object itself.
  evaluator(const evaluator&) = delete;
  evaluator& operator=(const evaluator&) = delete;

  /// All values become absent. Throws expression_error; then there are no variables and nothing passes.
  void set_expression(wide_view expression);

  const std::vector<wide>& variables() const noexcept { return program_.variables; }
  bool has_variable(LONG number) const noexcept {
    return number >= 0 && static_cast<std::size_t>(number) < values_.size();
  }

  /// One after the other, a comma between two. "-" and nothing are absent. The last variable takes the
  /// rest: only its text may hold commas.
  void set_values(wide_view values);

  // For a variable that there is.
  void set_number(LONG variable, double number) noexcept { changed(variable) = number_value(number); }
  void set_text(LONG variable, wide_view text);
  void set_absent(LONG variable) noexcept { changed(variable) = value{}; }

  bool passes() noexcept;

 private:
  enum class state { everything_passes, nothing_passes, compiled };

  /// For a value that does not come from the list.
  value& changed(LONG variable) noexcept {
    list_is_current_ = false;
    return values_[static_cast<std::size_t>(variable)];
  }
  void clear() noexcept;

  state state_ = state::everything_passes;
  program program_;
  std::vector<value> values_;
  std::vector<value> stack_;
  std::vector<wide> texts_;  ///< of the values given one by one
  wide list_;                ///< the last list of values, which values look into
  bool list_is_current_ = false;
};

}  // namespace ovf::filter
