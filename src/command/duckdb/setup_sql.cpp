#include "duckdb/setup_sql.h"

#include <filesystem>
#include <optional>
#include <system_error>
#include <vector>

#include "child_process.h"
#include "console.h"
#include "duckdb/duckdb_check.h"
#include "duckdb/duckdb_library.h"
#include "duckdb/duckdb_package.h"
#include "duckdb/package_registry.h"
#include "duckdb/sha512.h"
#include "failure.h"
#include "loaded_library.h"
#include "made_folders.h"
#include "private_folder.h"
#include "progress.h"
#include "replacement.h"
#include "utf8_path.h"
#include "words.h"

namespace command {
namespace {

namespace fs = std::filesystem;

/// A request with its gaps filled.
struct wanted_library {
  std::string version;      ///< of the package
  std::string integrity;    ///< empty: as published
  std::uint64_t bytes = 0;  ///< 0: not known
  std::string folder;
  std::string target;
};

wanted_library fill_gaps(const setup_request& request) {
  wanted_library wanted;
  wanted.version = request.version.empty() ? duckdb_package.version : request.version;
  wanted.integrity = request.integrity;
  if (wanted.version == duckdb_package.version && request.integrity.empty()) {
    wanted.integrity = duckdb_package.integrity;
    wanted.bytes = duckdb_package.bytes;
  }
  wanted.folder = request.folder.empty() ? user_data_folder() : request.folder;
  wanted.target = utf8_of_path(path_of_utf8(wanted.folder) / duckdb_file_name);
  return wanted;
}

void check_usage(const setup_request& request, const wanted_library& wanted) {
  if (!request.integrity.empty() && !is_integrity(request.integrity)) {
    throw wrong_usage("--integrity takes \"sha512-\" and the digest in base 64, as `npm view` shows it");
  }
  if (request.from.empty()) return;
  if (!request.registry.empty()) throw wrong_usage("--from and --registry do not go together");
  if (wanted.integrity.empty()) throw wrong_usage("--from with another --version needs --integrity");
}

/// The version of the library in its place, when that is the wanted one and can be used.
bool is_there(const wanted_library& wanted) {
  std::error_code error;
  if (!fs::exists(path_of_utf8(wanted.target), error)) return false;
  const duckdb_trial found = look_at_duckdb(wanted.target);
  return found.verdict == duckdb_verdict::good &&
         found.words == wanted.version.substr(0, wanted.version.find('-'));
}

void check_integrity(raw_file& package, const std::string& source, const wanted_library& wanted,
                     const std::string& expected) {
  const std::string found = integrity_of(package);
  package.go_to(0);
  if (found == expected) return;
  throw failure(fmt::format("{} is not {} {}: its digest is {}, not {}", source, duckdb_package.name,
                            wanted.version, found, expected));
}

struct package_file {
  raw_file file;  ///< at its beginning
  std::string source;
};

package_file take_given(const wanted_library& wanted, const std::string& name) {
  raw_file file = raw_file::open_regular(name);
  check_integrity(file, name, wanted, wanted.integrity);
  return {std::move(file), name};
}

package_file download(const wanted_library& wanted, const package_registry& registry) {
  const published_file published = registry.find(duckdb_package.name, wanted.version);
  const std::string& expected = wanted.integrity.empty() ? published.integrity : wanted.integrity;
  const std::string source = shown_address(published.address);
  if (expected.empty()) throw failure(source + " has no digest in the registry; --integrity tells it");
  raw_file file = registry.get(published.address, wanted.bytes);
  check_integrity(file, source, wanted, expected);
  return {std::move(file), source};
}

/// Unpacks the library into a folder; its name there.
std::string unpack(package_file& package, const std::string& folder) {
  progress bar("unpacking " + package.source);
  const child_end end = run_child({{"tar", "-xzf", "-", "-C", folder, duckdb_package.member}, &package.file},
                                  [&] { bar.look(0, 0); });
  if (end.status != 0) {
    const std::string reason = first_line(end.words);
    throw failure(fmt::format("cannot unpack {}: {}", package.source,
                              reason.empty() ? fmt::format("tar ended with {}", end.status) : reason));
  }
  const fs::path unpacked = path_of_utf8(folder) / duckdb_package.member;
  std::error_code error;
  if (fs::is_regular_file(fs::symlink_status(unpacked, error))) return utf8_of_path(unpacked);
  throw failure(fmt::format("cannot unpack {}: {} is no file", package.source, duckdb_package.member));
}

void copy_file(const std::string& from, const std::string& to, const std::string& shown) {
  constexpr std::size_t piece = 1 << 20;
  std::vector<char> bytes(piece);
  raw_file source = raw_file::open(from);
  raw_file copy = raw_file::open_to_write(to, shown);
  while (const std::size_t done = source.read(bytes.data(), bytes.size())) copy.write({bytes.data(), done});
  copy.close();
}

/// The version that stands in the target now.
std::string install(package_file& package, const wanted_library& wanted) {
  made_folders folders(wanted.folder);
  replacement target(wanted.target);
  {
    const private_folder scratch("ovfile-setup");
    copy_file(unpack(package, scratch.name()), target.name(), wanted.target);
  }
  const duckdb_trial found = look_at_duckdb(target.name_for_children());
  if (found.verdict != duckdb_verdict::good) {
    throw failure(fmt::format("the library of {} is of no use here: {}", package.source, found.words));
  }
  target.commit();
  folders.keep();
  return found.words;
}

bool is_same_folder(const std::string& left, const std::string& right) {
  std::error_code error;
  return fs::equivalent(path_of_utf8(left), path_of_utf8(right), error) && !error;
}

/// Whether the program looks there without being told.
bool is_looked_for_in(const std::string& folder) {
  if (is_same_folder(folder, program_folder())) return true;
  try {
    return is_same_folder(folder, user_data_folder());
  } catch (const failure&) {
    return false;
  }
}

void tell(const std::string& version, const char* words, const wanted_library& wanted) {
  progress::wipe();
  const char* const hint = is_looked_for_in(wanted.folder) ? "" : "; OVFILE_DUCKDB has to name it";
  say(fmt::format("DuckDB {} {} {}{}", version, words, wanted.target, hint));
}

}  // namespace

void set_up_sql(const setup_request& request) {
  const wanted_library wanted = fill_gaps(request);
  check_usage(request, wanted);
  const interrupt_guard guard;
  // A digest that the user gives may be that of another version.
  if (!request.force && request.integrity.empty() && is_there(wanted)) {
    tell(wanted.version.substr(0, wanted.version.find('-')), "is already in", wanted);
    return;
  }
  package_file package = request.from.empty() ? download(wanted, package_registry(request.registry))
                                              : take_given(wanted, request.from);
  tell(install(package, wanted), "is in", wanted);
}

}  // namespace command
