// How the definitions of two tables differ, and the columns that they share.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "table_view.h"
#include "text_output.h"

namespace command {

/// A column that both tables have under one name and with values of one kind.
struct column_pair {
  field_view before;
  field_view after;
};

/// The lines of a comparison. The names of the tables go before the first one.
class diff_output {
 public:
  diff_output(text_output& output, std::string before, std::string after)
      : output_(output), before_(std::move(before)), after_(std::move(after)) {}

  /// Lines that follow stand under this title, which is written with the first of them.
  void begin(std::string title) { title_ = std::move(title); }
  /// A line of the old table (`sign` is -) or the new one (+).
  void add(char sign, std::string_view line);
  bool any() const noexcept { return any_; }

 private:
  text_output& output_;
  std::string before_;
  std::string after_;
  std::string title_;
  bool any_ = false;
};

/// In the order of the old table.
std::vector<column_pair> common_columns(const table_view& before, const table_view& after);

/// Of the common columns those of these names. Throws `failure` when a table lacks one, or when it is of
/// numbers here and of texts there.
std::vector<column_pair> key_columns(const table_view& before, const table_view& after,
                                     const std::vector<column_pair>& common,
                                     const std::vector<std::string>& names);

/// Precision, description and columns.
void compare_definitions(const table_view& before, const table_view& after, bool ignore_description,
                         diff_output& out);

}  // namespace command
