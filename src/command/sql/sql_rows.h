// The rows of a query as cells of text: numbers in their shortest form, everything else as the database
// writes it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sql/sql_database.h"

namespace command {

enum class cell_kind {
  number,  ///< digits, or the text of a number that is none (nan, inf)
  text,
  other  ///< a date, a list: the database's own text of it
};

class sql_rows {
 public:
  /// Runs the statement. With `as_json`, cells of kind `other` are JSON.
  sql_rows(sql_database& database, const std::string& statement, bool as_json);

  /// Whether the statement asks for rows; others have some that tell what they did, or none.
  bool is_query() const noexcept { return is_query_; }
  const std::vector<std::string>& names() const noexcept { return names_; }
  cell_kind kind(std::size_t column) const noexcept { return kinds_[column]; }
  bool is_right_aligned(std::size_t column) const noexcept { return aligned_right_[column]; }

  /// On to the next row; false behind the last one.
  bool next();
  /// Whether the current row's cell is NULL.
  bool is_null(std::size_t column) const noexcept { return result_.is_null(column, row_); }
  /// Appends the current row's cell, which is not NULL.
  void append(std::string& out, std::size_t column) const;

 private:
  struct plan;
  sql_rows(sql_database& database, plan&& made);

  bool is_query_;
  std::vector<std::string> names_;
  std::vector<duckdb::type_id> types_;
  std::vector<cell_kind> kinds_;
  std::vector<bool> aligned_right_;
  sql_result result_;
  std::size_t row_ = 0;
  bool begun_ = false;
};

}  // namespace command
