// Tables for the benchmarks, made by the library itself in a folder that is removed at the end.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "ovfile/smart.h"

namespace ovbench {

inline constexpr int columns = 10;

/// Rows of the large table: $OVFILE_BENCH_ROWS, else 10 million.
inline long large_rows() {
  const char* set = std::getenv("OVFILE_BENCH_ROWS");
  const long rows = set == nullptr ? 10'000'000 : std::strtol(set, nullptr, 10);
  return rows > 0 ? rows : 10'000'000;
}

/// Grades and coordinates: fractions, so that nobody can keep them as whole numbers.
inline double value_at(long row, int column) {
  return static_cast<double>(row % 100'000) * 0.37 + static_cast<double>(column) + 0.1;
}

class scratch_folder {
 public:
  scratch_folder() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() / ("ovfile-bench-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  scratch_folder(const scratch_folder&) = delete;
  scratch_folder& operator=(const scratch_folder&) = delete;
  ~scratch_folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

inline ovfile::text path_text(const std::filesystem::path& path) { return ovfile::text(path.string()); }

inline ovfile::pointer<IOvSchema> make_schema(bool double_precision) {
  auto schema = ovfile::create_schema();
  ovfile::check(schema->put_DoublePrecision(double_precision ? VARIANT_TRUE : VARIANT_FALSE));
  ovfile::check(schema->put_Description(ovfile::text("benchmark").get()));
  for (int c = 1; c <= columns; ++c) {
    ovfile::check(schema->AddNumericColumn(ovfile::text("C" + std::to_string(c)).get(), 0, 0));
  }
  return schema;
}

/// Appends rows as a host does, one value at a time, and closes the table.
inline void append_rows(IOvTable& table, long rows) {
  for (long row = 1; row <= rows; ++row) {
    ovfile::check(table.AddRow());
    for (int c = 1; c <= columns; ++c) ovfile::check(table.SetColumnDouble(c, value_at(row, c)));
  }
  ovfile::check(table.Close());
}

inline void make_table(const std::filesystem::path& path, long rows, bool double_precision) {
  const auto schema = make_schema(double_precision);
  const auto table = ovfile::create_table();
  ovfile::check(table->Create(path_text(path).get(), schema.get()));
  append_rows(*table.get(), rows);
}

inline ovfile::pointer<IOvTable> open_table(const std::filesystem::path& path) {
  auto table = ovfile::create_table();
  ovfile::check(table->Open(path_text(path).get(), 1));
  return table;
}

/// The sum of every value, through the cursor and the typed getter.
inline double walk(IOvTable& table) {
  double sum = 0;
  HRESULT moved = ovfile::check(table.GetFirstRow());
  while (moved == S_OK) {
    for (int c = 1; c <= columns; ++c) {
      double value = 0;
      ovfile::check(table.GetColumnAsDouble(c, &value));
      sum += value;
    }
    moved = ovfile::check(table.GetNextRow());
  }
  return sum;
}

}  // namespace ovbench
