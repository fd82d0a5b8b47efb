// A library that has the functions of DuckDB's that the command looks for, and none of what they do. Its
// version is what FAKE_DUCKDB_VERSION says.
#include <cstdlib>

#include "command/duckdb/duckdb_abi.h"

#ifdef FAKE_DUCKDB_LACKS_ONE
#define duckdb_replacement_scan_set_error something_else
#endif

namespace {

const char* version() {
  const char* const set = std::getenv("FAKE_DUCKDB_VERSION");
  return set == nullptr || *set == '\0' ? "v1.5.6" : set;
}

}  // namespace

#define OVFILE_FAKE(returned, name, taken) \
  extern "C" const char* duckdb_##name() { return version(); }
OVFILE_DUCKDB_FUNCTIONS(OVFILE_FAKE)
