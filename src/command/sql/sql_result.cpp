#include "sql/sql_result.h"

#include <utility>

#include "console.h"
#include "sql/sql_failure.h"

namespace command {

sql_result::sql_result(sql_result&& other) noexcept
    : library_(other.library_),
      result_(std::exchange(other.result_, {})),
      chunk_(std::move(other.chunk_)),
      rows_(other.rows_),
      own_lines_(other.own_lines_),
      scans_(other.scans_) {}

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
  if (words != nullptr && *words != '\0') throw_sql_failure(words, own_lines_, *scans_);
  return false;
}

std::size_t sql_result::columns() const noexcept {
  // The library wants to change what it only counts.
  return static_cast<std::size_t>(library_->column_count(const_cast<duckdb::result*>(&result_)));
}

}  // namespace command
