// Finds out what a CSV's columns hold: numbers or text, and how wide. A column is text when one of its
// cells is neither a number nor empty; a column without any value is one of numbers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "encoding.h"

namespace command {

/// A cell's text as a table keeps it: without the blanks and tabs at its end.
std::string_view stored_text(std::string_view cell) noexcept;

/// The first cell, in the order of the file, that cannot be imported.
struct cell_problem {
  std::uint64_t line = 0;  ///< 0: there is none
  std::size_t column = 0;  ///< from 1
  std::string what;

  void note(std::uint64_t at_line, std::size_t at_column, std::string words);
  void note(const cell_problem& other) { note(other.line, other.column, other.what); }
};

/// What is known of one column.
struct column_type {
  bool is_text = false;
  std::size_t forced_width = 0;  ///< in characters; 0: as wide as the longest value
  bool loses_digits = false;     ///< single precision cannot hold all digits of some number
  std::size_t longest = 0;       ///< of its texts, in characters
  cell_problem too_large;        ///< for a float; counts only while the column is one of numbers
};

class type_finder {
 public:
  type_finder(std::size_t columns, bool single) : columns_(columns), single_(single) {}

  /// The column is text, and no value may be longer.
  void force_text(std::size_t column, std::size_t width);
  /// The columns' names, as far as their encoding goes.
  void add_header(const std::vector<std::string_view>& cells, std::uint64_t line);
  /// One row; as many cells as there are columns.
  void add_row(const std::vector<std::string_view>& cells, std::uint64_t line);

  /// After the last row, or as far as the rows seen so far tell.
  cell_problem first_problem() const;
  /// The first cell that is no UTF-8 where others are more than ASCII and are; line 0 where that is not so.
  cell_problem mixed_encodings() const;
  const std::vector<column_type>& columns() const noexcept { return columns_; }
  /// Characters that a text column needs.
  std::size_t width(std::size_t column) const noexcept;

 private:
  void add_cell(std::size_t index, std::string_view cell, std::uint64_t line);
  void look_at_number(std::size_t index, std::string_view cell, std::uint64_t line);
  /// What a text that is no UTF-8 is, as Windows-1252.
  utf8_facts look_at_encoding(std::size_t index, std::string_view text, std::uint64_t line);
  void look_at_text(std::size_t index, std::string_view text, std::uint64_t line);

  std::vector<column_type> columns_;
  bool single_;
  bool has_utf8_ = false;    ///< beyond ASCII
  cell_problem first_1252_;  ///< without words
  cell_problem problem_;
};

}  // namespace command
