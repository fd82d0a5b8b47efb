#include "duckdb/duckdb_library.h"

#include <filesystem>
#include <system_error>

#include "duckdb/duckdb_check.h"
#include "duckdb/duckdb_file.h"
#include "environment.h"
#include "failure.h"
#include "loaded_library.h"
#include "utf8_path.h"

namespace command {
namespace {

namespace fs = std::filesystem;

constexpr const char* no_duckdb =
    "this needs DuckDB's library, which is not there: `ovfile setup sql` puts it in place, or OVFILE_DUCKDB "
    "names one";

std::string in_folder(const std::string& folder) {
  return utf8_of_path(path_of_utf8(folder) / duckdb_file_name);
}

bool exists(const std::string& name) {
  std::error_code error;
  return fs::exists(path_of_utf8(name), error) && !error;
}

/// The file that OVFILE_DUCKDB stands for.
std::string named_library(const std::string& named) {
  std::error_code error;
  std::string path = fs::is_directory(path_of_utf8(named), error) ? in_folder(named) : named;
  if (!exists(path)) {
    throw failure("OVFILE_DUCKDB stands for " + path +
                  ", which is not there; `ovfile setup sql` puts DuckDB's library in place");
  }
  return path;
}

}  // namespace

std::string find_duckdb() {
  const std::string named = environment_value("OVFILE_DUCKDB");
  if (!named.empty()) return named_library(named);
  const std::string beside = program_folder();
  if (!beside.empty() && exists(in_folder(beside))) return in_folder(beside);
  try {
    std::string users = in_folder(user_data_folder());
    if (exists(users)) return users;
  } catch (const failure&) {
    // Who has no folder has no library there either.
  }
  throw failure(no_duckdb);
}

const duckdb::functions& load_duckdb() {
  static const duckdb::functions loaded = [] {
    const std::string path = find_duckdb();
    check_duckdb(path);
    // It is the one that this program was tested with, or a trial of it has bound everything.
    return load_duckdb_file(path, binding::when_called);
  }();
  return loaded;
}

}  // namespace command
