// A thread beside the statements of a connection, whose calls know nothing of signals and terminals: it
// passes a request to stop on to them, and draws how far they have come.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "duckdb/duckdb_abi.h"
#include "progress.h"
#include "sql/row_count.h"

namespace command {

class statement_watch {
 public:
  /// All three must outlive the watch.
  statement_watch(const duckdb::functions& library, duckdb::connection connection, const row_count& rows);

  /// From now on a bar of this title is drawn; none where it is empty.
  void show(const std::string& title);

 private:
  void watch(const std::stop_token& end);
  void draw();

  const duckdb::functions& library_;
  duckdb::connection connection_;
  const row_count& rows_;
  std::mutex mutex_;
  std::optional<progress> bar_;
  std::jthread thread_;  ///< the last one: it uses the others
};

}  // namespace command
