#include "sql_result.h"

#include <utility>

#include "console.h"
#include "failure.h"

namespace command {

sql_result::sql_result(sql_result&& other) noexcept
    : library_(other.library_),
      result_(std::exchange(other.result_, {})),
      chunk_(std::move(other.chunk_)),
      rows_(other.rows_) {}

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
  if (words != nullptr && *words != '\0') throw_sql_failure(words);
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

}  // namespace

void throw_sql_failure(std::string_view words) {
  throw_if_interrupted();
  // The message, in one line; then, behind "LINE 1:", the statement and a mark under the place.
  const std::size_t place = words.find("\nLINE ");
  const std::string line = in_one_line(words.substr(0, place));
  if (place == words.npos) throw failure(line);
  std::string shown(words.substr(place + 1));
  if (shown.back() != '\n') shown += '\n';
  throw marked_failure(line, shown);
}

}  // namespace command
