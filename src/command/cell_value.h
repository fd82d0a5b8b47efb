// Values that a user gives for the cells of a column.
#pragma once

#include <string>

#include "field_view.h"

namespace command {

/// What a number's column understands as absent, besides no value at all.
bool is_word_for_absent(const std::string& words) noexcept;

/// A value that fits its column.
struct cell_value {
  const field_view* field = nullptr;
  double number = 0;    ///< of a column of numbers
  float narrow = 0;     ///< the same for a single-precision table, rounded once
  bool kept = true;     ///< single precision has all digits
  ovfile::text text{};  ///< of a column of texts
};

/// The value for a column of the table `file` that `words` stand for: a number for a column of numbers (`-`,
/// `absent` and nothing are the absent one), for one of texts the text without blanks at its end. Throws
/// `failure`, whose words begin with the file and the column, for what the column cannot hold.
cell_value plan_value(const std::string& file, const field_view& field, const std::string& words,
                      bool single);

}  // namespace command
