// A library that has the functions of DuckDB's that the command looks for: all say that they have done their
// work, and none has. Its version is what FAKE_DUCKDB_VERSION says. FAKE_DUCKDB_FAULT says what becomes of a
// statement: "crash", "wait" or "fail"; FAKE_DUCKDB_LOG names a file that gets a line for each.
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string_view>
#include <thread>
#include <type_traits>

#include "command/duckdb/duckdb_abi.h"

#ifdef FAKE_DUCKDB_LACKS_ONE
#define duckdb_replacement_scan_set_error something_else
#endif

namespace {

using namespace command::duckdb;

std::string_view set_value(const char* name) {
  const char* const set = std::getenv(name);
  return set == nullptr ? "" : set;
}

const char* version() {
  return set_value("FAKE_DUCKDB_VERSION").empty() ? "v1.5.6" : std::getenv("FAKE_DUCKDB_VERSION");
}

bool statement_succeeds() {
  if (const char* const log = std::getenv("FAKE_DUCKDB_LOG"); log != nullptr && *log != '\0') {
    std::ofstream(log, std::ios::app) << "statement\n";
  }
  const std::string_view fault = set_value("FAKE_DUCKDB_FAULT");
  if (fault == "crash") std::abort();
  if (fault == "wait") std::this_thread::sleep_for(std::chrono::minutes(10));
  return fault != "fail";
}

template <class Returned>
Returned answer(std::string_view function) {
  if constexpr (std::is_same_v<Returned, const char*>) {
    if (function == "library_version") return version();
    if (function == "result_error" && set_value("FAKE_DUCKDB_FAULT") == "fail") return "nothing works";
    return nullptr;
  } else if constexpr (std::is_same_v<Returned, status>) {
    return function != "query" || statement_succeeds() ? status::done : status::failed;
  } else if constexpr (!std::is_void_v<Returned>) {
    return Returned{};
  }
}

}  // namespace

#define OVFILE_FAKE(returned, name, taken) \
  extern "C" returned duckdb_##name() { return answer<returned>(#name); }
OVFILE_DUCKDB_FUNCTIONS(OVFILE_FAKE)
