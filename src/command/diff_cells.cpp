#include "diff_cells.h"

#include <charconv>

#include "absent.h"
#include "csv_text.h"
#include "number_text.h"

namespace command {
namespace {

/// Texts up to this length need no memory of their own.
constexpr std::size_t short_text = 15;

double as_read(double value) {
  std::string digits;
  append_number(digits, static_cast<float>(value));
  (void)std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return value;
}

}  // namespace

diff_side::diff_side(table_view& view, const std::vector<column_pair>& columns, half side, bool as_printed)
    : view_(view), side_(side), as_printed_(as_printed && view.is_single()) {
  for (const column_pair& pair : columns) fields_.push_back(pair.*side);
}

void diff_side::go_to(LONG row) {
  if (row == current_) return;
  current_ != 0 && row == current_ + 1 ? view_.go_on() : view_.go_to(row);
  current_ = row;
}

bool diff_side::is_absent_here(double number) const noexcept {
  return view_.is_single() ? is_absent(static_cast<float>(number)) : is_absent(number);
}

void diff_side::read(diff_cell* cells) const {
  for (const field_view& field : fields_) {
    diff_cell& cell = *cells++;
    if (field.is_text) {
      cell.text.clear();
      view_.append_text(cell.text, field);
    } else {
      const double value = view_.number(field);
      cell.number = as_printed_ ? as_read(value) : value;
    }
  }
}

void diff_side::read_key(std::string& words, const std::vector<column_pair>& key) const {
  words.clear();
  for (const column_pair& pair : key) {
    const field_view& field = pair.*side_;
    if (!field.is_text && view_.number(field) == 0) {
      words += '0';  // whatever its sign: equal numbers are one key
    } else {
      view_.append_cell(words, field, "-");
    }
    words += '\0';
  }
}

std::string diff_side::line(LONG row, const diff_cell* cells) const {
  std::string line = std::to_string(row);
  char separator = ' ';
  for (const field_view& field : fields_) {
    const diff_cell& cell = *cells++;
    line += separator;
    separator = ',';
    if (field.is_text) {
      append_csv_cell(line, cell.text);
    } else if (!is_absent_here(cell.number)) {
      view_.is_single() ? append_number(line, static_cast<float>(cell.number))
                        : append_number(line, cell.number);
    }
  }
  return line;
}

std::size_t diff_side::bytes_of_row() const noexcept {
  std::size_t bytes = 0;
  for (const field_view& field : fields_) {
    const auto width = static_cast<std::size_t>(field.width);
    // A character of Windows-1252 has up to 3 bytes as UTF-8.
    bytes += sizeof(diff_cell) + (field.is_text && width > short_text / 3 ? 3 * width : 0);
  }
  return bytes;
}

}  // namespace command
