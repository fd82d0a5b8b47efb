#include "duckdb/duckdb_library.h"
#include "environment.h"
#include "failure.h"

namespace command {

const char* const duckdb_file_name = "duckdb.dll";

std::string user_data_folder() {
  const std::string data = environment_value("LOCALAPPDATA");
  if (data.empty()) throw failure("there is no folder for the user's data: LOCALAPPDATA names none");
  return data + "\\OvFile";
}

}  // namespace command
