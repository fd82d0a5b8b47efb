// The rows of a query, a few thousand at a time.
#pragma once

#include <cstdint>
#include <string_view>

#include "duckdb/duckdb_owner.h"
#include "sql/scan_failure.h"

namespace command {

class sql_result {
 public:
  /// Takes the result over. The statement has `own_lines` lines before the user's. `scans` is why table files
  /// could not be read, and must outlive the result.
  sql_result(const duckdb::functions& library, duckdb::result made, std::size_t own_lines,
             const scan_failure& scans) noexcept
      : library_(&library), result_(made), chunk_(library), own_lines_(own_lines), scans_(&scans) {}
  sql_result(sql_result&& other) noexcept;
  sql_result& operator=(sql_result&&) = delete;
  ~sql_result();

  /// On to the next rows; false behind the last ones. Throws what sql_database.h lists.
  bool next();

  std::size_t columns() const noexcept;
  /// How many rows there are at a time.
  std::size_t rows() const noexcept { return rows_; }
  bool is_null(std::size_t column, std::size_t row) const noexcept {
    const std::uint64_t* const valid = validity(column);
    return valid != nullptr && (valid[row / 64] >> (row % 64) & 1) == 0;
  }
  /// A bit for each row, the first the lowest; null where no row is null.
  const std::uint64_t* validity(std::size_t column) const noexcept {
    return library_->vector_get_validity(vector(column));
  }
  /// The values of a column whose type is known to be Value's; a text is a `duckdb::text_value`.
  template <class Value>
  const Value* values(std::size_t column) const noexcept {
    return static_cast<const Value*>(library_->vector_get_data(vector(column)));
  }
  /// Empty where the value is null, whose memory may hold anything.
  std::string_view text(std::size_t column, std::size_t row) const noexcept {
    if (is_null(column, row)) return {};
    const auto& value = values<duckdb::text_value>(column)[row];
    return {value.data(), value.length};
  }

 private:
  duckdb::vector vector(std::size_t column) const noexcept {
    return library_->data_chunk_get_vector(chunk_.get(), column);
  }

  const duckdb::functions* library_;
  duckdb::result result_;
  duckdb_chunk chunk_;
  std::size_t rows_ = 0;
  std::size_t own_lines_;
  const scan_failure* scans_;
};

}  // namespace command
