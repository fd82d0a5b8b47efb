#include "duckdb/duckdb_check.h"

#include <filesystem>
#include <system_error>

#include "console.h"
#include "duckdb/duckdb_library.h"
#include "duckdb/duckdb_package.h"
#include "duckdb/good_libraries.h"
#include "duckdb/sha512.h"
#include "failure.h"
#include "file_identity.h"
#include "utf8_path.h"
#include "words.h"

namespace command {
namespace {

namespace fs = std::filesystem;

enum class likeness { other, same, damaged };

/// What a file is to the library that this program was tested with. Another library has another size.
likeness compare_with_known(const std::string& path) {
  std::error_code error;
  const std::uint64_t size = fs::file_size(path_of_utf8(path), error);
  if (error || size != duckdb_package.library_bytes) return likeness::other;
  raw_file file = raw_file::open(path);
  return integrity_of(file) == duckdb_package.library_integrity ? likeness::same : likeness::damaged;
}

duckdb_trial damaged_by_digest() {
  return {duckdb_verdict::damaged, fmt::format("its digest is not that of {}", duckdb_package.version)};
}

duckdb_trial look(const std::string& path) {
  switch (compare_with_known(path)) {
    case likeness::same:
      return {duckdb_verdict::good, duckdb_package.version};
    case likeness::damaged:
      return damaged_by_digest();
    default:
      return try_duckdb(path);
  }
}

/// The call that puts a good one there.
std::string remedy(const std::string& path) {
  std::error_code error;
  const fs::path file = path_of_utf8(path);
  std::string call = "ovfile setup sql";
  try {
    const fs::path users = path_of_utf8(user_data_folder()) / duckdb_file_name;
    const bool is_elsewhere = !fs::equivalent(file, users, error);
    if (is_elsewhere && file.filename() == duckdb_file_name) {
      call += " --folder " + utf8_of_path(file.has_parent_path() ? file.parent_path() : fs::path("."));
    }
  } catch (const failure&) {
    // A user without a folder is told so by that call.
  }
  return call;
}

[[noreturn]] void refuse(const std::string& path, const duckdb_trial& found) {
  switch (found.verdict) {
    case duckdb_verdict::damaged:
      throw failure(fmt::format("{} is damaged ({}); `{}` fetches DuckDB's library anew", path, found.words,
                                remedy(path)));
    case duckdb_verdict::useless:
      throw failure(fmt::format("{}; `{}` puts DuckDB's library in place", found.words, remedy(path)));
    default:
      throw failure(found.words);
  }
}

}  // namespace

duckdb_trial look_at_duckdb(const std::string& path) {
  if (compare_with_known(path) == likeness::damaged) return damaged_by_digest();
  return try_duckdb(path);
}

void check_duckdb(const std::string& path) {
  const interrupt_guard guard;
  const std::string identity = file_identity(path);
  if (identity.empty() || is_noted_as_good(identity)) return;
  duckdb_trial found;
  try {
    found = look(path);
  } catch (const failure&) {
    return;  // where the file cannot be read the loader says so; where no process can be started, it is used
  }
  if (found.verdict != duckdb_verdict::good) refuse(path, found);
  // It may have changed meanwhile.
  if (file_identity(path) == identity) note_as_good(identity);
}

}  // namespace command
