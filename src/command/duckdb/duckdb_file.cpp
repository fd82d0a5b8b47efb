#include "duckdb/duckdb_file.h"

#include <charconv>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "failure.h"
#include "loaded_library.h"
#include "utf8_path.h"

namespace command {
namespace {

namespace fs = std::filesystem;

constexpr int major_version = 1;
/// Older ones lack some of the functions, or mean something else by them.
constexpr int least_minor_version = 4;

template <class Function>
void find(Function& function, void* library, const char* name, const std::string& path) {
  void* const address = find_function(library, name);
  if (address == nullptr) {
    throw failure(path + " is no library of DuckDB that this program can use: it lacks " + name);
  }
  function = reinterpret_cast<Function>(address);
}

duckdb::functions find_all(void* library, const std::string& path) {
  duckdb::functions found{};
#define OVFILE_DUCKDB_FIND(returned, name, taken) find(found.name, library, "duckdb_" #name, path);
  OVFILE_DUCKDB_FUNCTIONS(OVFILE_DUCKDB_FIND)
#undef OVFILE_DUCKDB_FIND
  return found;
}

bool take_number(std::string_view& text, int& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return true;
}

bool is_usable(std::string_view version) {
  int major = 0;
  int minor = 0;
  if (!take_number(version, major) || version.empty() || version.front() != '.') return false;
  version.remove_prefix(1);
  return take_number(version, minor) && major == major_version && minor >= least_minor_version;
}

/// A pipe or device would keep the loader waiting.
void check_is_file(const std::string& path) {
  std::error_code error;
  const fs::file_status kind = fs::status(path_of_utf8(path), error);
  if (kind.type() == fs::file_type::not_found)
    throw failure("cannot load " + path + ": there is no such file");
  if (fs::status_known(kind) && !fs::is_regular_file(kind)) {
    throw failure("cannot load " + path + ": it is not a regular file");
  }
}

}  // namespace

duckdb::functions load_duckdb_file(const std::string& path, binding functions) {
  check_is_file(path);
  std::string reason;
  void* const library = load_library(path, functions, reason);
  if (library == nullptr) throw failure("cannot load " + path + ": " + reason);
  // First the version: an older library lacks functions that nobody knows by name.
  duckdb::functions found{};
  find(found.library_version, library, "duckdb_library_version", path);
  const std::string version = duckdb_version(found);
  if (is_usable(version)) return find_all(library, path);
  throw failure(path + " is DuckDB " + version +
                "; this program can use 1.4 and later ones that begin with 1");
}

std::string duckdb_version(const duckdb::functions& library) {
  const std::string version = library.library_version();
  return version.starts_with('v') ? version.substr(1) : version;
}

}  // namespace command
