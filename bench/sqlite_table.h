// The same data in SQLite, set up as fast as it gets: one transaction without a journal or waits for the
// disk, prepared statements, and a memory-mapped file for the scan.
#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "bench_table.h"

namespace ovbench {

class sqlite_file {
 public:
  explicit sqlite_file(const std::filesystem::path& path) {
    const int opened = sqlite3_open(path.string().c_str(), &handle_);
    if (opened == SQLITE_OK) return;
    sqlite3_close(handle_);
    throw std::runtime_error("SQLite cannot open " + path.string());
  }
  sqlite_file(const sqlite_file&) = delete;
  sqlite_file& operator=(const sqlite_file&) = delete;
  ~sqlite_file() { sqlite3_close(handle_); }

  void run(const std::string& sql) const {
    if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail();
  }
  sqlite3_stmt* prepare(const std::string& sql) const {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) fail();
    return statement;
  }
  [[noreturn]] void fail() const { throw std::runtime_error(sqlite3_errmsg(handle_)); }

 private:
  sqlite3* handle_ = nullptr;
};

/// `C1, C2, …` with something between the commas.
inline std::string column_list(const std::string& prefix, const std::string& suffix) {
  std::string list;
  for (int c = 1; c <= columns; ++c) {
    list += (c == 1 ? "" : ", ") + prefix + (prefix == "?" ? "" : std::to_string(c)) + suffix;
  }
  return list;
}

inline void make_sqlite_table(const std::filesystem::path& path, long rows) {
  const sqlite_file file(path);
  file.run("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA locking_mode = EXCLUSIVE;");
  file.run("CREATE TABLE t (" + column_list("C", " REAL") + "); BEGIN");
  sqlite3_stmt* insert = file.prepare("INSERT INTO t VALUES (" + column_list("?", "") + ")");
  for (long row = 1; row <= rows; ++row) {
    for (int c = 1; c <= columns; ++c) sqlite3_bind_double(insert, c, value_at(row, c));
    if (sqlite3_step(insert) != SQLITE_DONE) file.fail();
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
  file.run("COMMIT");
}

/// The sum of every value, through the scan and the typed getter.
inline double walk_sqlite(const sqlite_file& file) {
  sqlite3_stmt* scan = file.prepare("SELECT " + column_list("C", "") + " FROM t");
  double sum = 0;
  while (sqlite3_step(scan) == SQLITE_ROW) {
    for (int c = 0; c < columns; ++c) sum += sqlite3_column_double(scan, c);
  }
  sqlite3_finalize(scan);
  return sum;
}

}  // namespace ovbench
