#include "sql/sql_result.h"

#include <charconv>
#include <string>
#include <utility>

#include "console.h"
#include "failure.h"

namespace command {

sql_result::sql_result(sql_result&& other) noexcept
    : library_(other.library_),
      result_(std::exchange(other.result_, {})),
      chunk_(std::move(other.chunk_)),
      rows_(other.rows_),
      own_lines_(other.own_lines_) {}

sql_result::~sql_result() {
  chunk_.reset();
  library_->destroy_result(&result_);
}

bool sql_result::next() {
  throw_if_interrupted();
  chunk_ = duckdb_chunk(*library_, library_->fetch_chunk(result_));
  rows_ = chunk_ ? static_cast<std::size_t>(library_->data_chunk_get_size(chunk_.get())) : 0;
  if (rows_ > 0) return true;
  const char* const words = library_->result_error(&result_);
  if (words != nullptr && *words != '\0') throw_sql_failure(words, own_lines_);
  return false;
}

std::size_t sql_result::columns() const noexcept {
  // The library wants to change what it only counts.
  return static_cast<std::size_t>(library_->column_count(const_cast<duckdb::result*>(&result_)));
}

namespace {

std::string in_one_line(std::string_view words) {
  std::string line;
  bool broken = false;
  for (const char c : words) {
    if (c == '\n' || (broken && c == ' ')) {
      broken = true;
      continue;
    }
    if (broken && !line.empty()) line += ' ';
    broken = false;
    line += c;
  }
  return line;
}

/// What stands behind "LINE " in a message: the line's number, a colon and the line, then a mark under the
/// place. Counted without our own lines; empty where the place is in one of them.
std::string shown_place(std::string_view place, std::size_t own_lines) {
  std::size_t number = 0;
  const char* const end = place.data() + place.size();
  const char* const stop = std::from_chars(place.data(), end, number).ptr;
  if (number <= own_lines) return {};
  const std::string digits = std::to_string(number - own_lines);
  const auto shorter = static_cast<std::size_t>(stop - place.data()) - digits.size();
  std::string shown = "LINE " + digits + std::string(stop, end);
  const std::size_t mark = shown.find('\n');
  if (mark != shown.npos && shown.find_first_not_of(' ', mark + 1) > mark + shorter) {
    shown.erase(mark + 1, shorter);
  }
  if (shown.back() != '\n') shown += '\n';
  return shown;
}

/// What goes wrong inside the library is told with the calls that led to it.
std::string_view without_calls(std::string_view words) {
  return words.substr(0, words.find("\n\nStack Trace"));
}

}  // namespace

void throw_sql_failure(std::string_view words, std::size_t own_lines) {
  throw_if_interrupted();
  // The message; then, behind "LINE 1:", the statement and a mark under the place.
  constexpr std::string_view before_place = "\nLINE ";
  const std::size_t place = words.find(before_place);
  const std::string line = in_one_line(without_calls(words.substr(0, place)));
  if (place == words.npos) throw failure(line);
  const std::string shown = shown_place(words.substr(place + before_place.size()), own_lines);
  if (shown.empty()) throw failure(line);
  throw marked_failure(line, shown);
}

}  // namespace command
