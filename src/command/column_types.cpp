#include "column_types.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

#include "decimal.h"
#include "encoding.h"
#include "words.h"

namespace command {

std::string_view stored_text(std::string_view cell) noexcept {
  while (!cell.empty() && (cell.back() == ' ' || cell.back() == '\t')) cell.remove_suffix(1);
  return cell;
}

void cell_problem::note(std::uint64_t at_line, std::size_t at_column, std::string words) {
  if (at_line == 0) return;
  if (line != 0 && std::tie(line, column) <= std::tie(at_line, at_column)) return;
  line = at_line;
  column = at_column;
  what = std::move(words);
}

void type_finder::force_text(std::size_t column, std::size_t width) {
  columns_[column].is_text = true;
  columns_[column].forced_width = width;
}

void type_finder::add_row(const std::vector<std::string_view>& cells, std::uint64_t line) {
  for (std::size_t i = 0; i < cells.size(); ++i) {
    if (!cells[i].empty()) add_cell(i, cells[i], line);
  }
}

void type_finder::add_cell(std::size_t index, std::string_view cell, std::uint64_t line) {
  const std::string_view text = stored_text(cell);
  if (text.empty()) return;
  if (!columns_[index].is_text) look_at_number(index, cell, line);
  look_at_text(index, text, line);
}

void type_finder::look_at_number(std::size_t index, std::string_view cell, std::uint64_t line) {
  column_type& column = columns_[index];
  if (!read_number(cell).is_number) {
    column.is_text = true;
    return;
  }
  if (!single_) return;
  bool kept = true;
  const float value = read_float(cell, kept);
  if (!kept) column.loses_digits = true;
  if (std::isinf(value) && column.too_large.line == 0) {
    column.too_large.note(line, index + 1,
                          fmt::format("{} is beyond the range of single precision", without_blanks(cell)));
  }
}

void type_finder::add_header(const std::vector<std::string_view>& cells, std::uint64_t line) {
  for (std::size_t i = 0; i < cells.size(); ++i) (void)look_at_encoding(i, cells[i], line);
}

utf8_facts type_finder::look_at_encoding(std::size_t index, std::string_view text, std::uint64_t line) {
  utf8_facts facts;
  facts.characters = text.size();
  if (!is_ascii(text)) facts = look_at_utf8(text);
  if (!facts.valid) {
    facts = {false, text.size(), 0};
    first_1252_.note(line, index + 1, {});
  }
  if (facts.characters != text.size()) has_utf8_ = true;
  return facts;
}

void type_finder::look_at_text(std::size_t index, std::string_view text, std::uint64_t line) {
  column_type& column = columns_[index];
  const utf8_facts facts = look_at_encoding(index, text, line);
  column.longest = std::max(column.longest, facts.characters);
  if (!column.is_text) return;
  if (facts.foreign != 0) {
    problem_.note(line, index + 1,
                  fmt::format("the character U+{:04X} is not in Windows-1252, in which tables keep text",
                              static_cast<std::uint32_t>(facts.foreign)));
  }
  if (text.find('\0') != text.npos) problem_.note(line, index + 1, "a table cannot keep a NUL character");
  if (column.forced_width != 0 && facts.characters > column.forced_width) {
    problem_.note(line, index + 1,
                  fmt::format("the text has {} characters, more than the {} of --text", facts.characters,
                              column.forced_width));
  }
}

cell_problem type_finder::mixed_encodings() const { return has_utf8_ ? first_1252_ : cell_problem(); }

cell_problem type_finder::first_problem() const {
  cell_problem first = problem_;
  for (const column_type& column : columns_) {
    if (!column.is_text) first.note(column.too_large);
  }
  return first;
}

std::size_t type_finder::width(std::size_t column) const noexcept {
  const column_type& type = columns_[column];
  if (type.forced_width != 0) return type.forced_width;
  return (std::max<std::size_t>(type.longest, 1) + 3) / 4 * 4;
}

}  // namespace command
