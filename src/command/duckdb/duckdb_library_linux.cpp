#include "duckdb/duckdb_library.h"
#include "environment.h"
#include "failure.h"

namespace command {

const char* const duckdb_file_name = "libduckdb.so";

std::string user_data_folder() {
  const std::string data = environment_value("XDG_DATA_HOME");
  // The rules for this variable: what is not absolute does not count.
  if (data.starts_with('/')) return data + "/ovfile";
  const std::string home = environment_value("HOME");
  if (home.starts_with('/')) return home + "/.local/share/ovfile";
  throw failure("there is no folder for the user's data: neither XDG_DATA_HOME nor HOME names one");
}

}  // namespace command
