// DuckDB's library for tests that need the real one, and what stands in for it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace ovtest {

namespace duckdb_detail {

/// As the process was started: tests change the variable.
inline const std::string named = [] {
  const char* const value = std::getenv("OVFILE_DUCKDB");
  return std::string(value == nullptr ? "" : value);
}();

}  // namespace duckdb_detail

/// The library's file that OVFILE_DUCKDB names or whose folder it names; nothing where it names none that is
/// there and could be one of this system. Tests without it are skipped:
/// `if (!duckdb_for_tests()) GTEST_SKIP() << "OVFILE_DUCKDB names no library";`
inline std::optional<std::string> duckdb_for_tests() {
  const std::filesystem::path suffix = std::filesystem::path(OVFILE_LIBRARY_PATH).extension();
  std::filesystem::path file = duckdb_detail::named;
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) file /= suffix == ".so" ? "libduckdb.so" : "duckdb.dll";
  if (file.extension() != suffix || !std::filesystem::is_regular_file(file, error)) return {};
  return std::filesystem::absolute(file).string();
}

/// A library with the functions alone; its version is what FAKE_DUCKDB_VERSION says, else "v1.5.6".
inline std::filesystem::path fake_duckdb() {
  const auto suffix = std::filesystem::path(OVFILE_LIBRARY_PATH).extension();
  return std::filesystem::path(OVFILE_COMMAND_PATH).parent_path() / "fake" /
         ("fake_duckdb" + suffix.string());
}

/// The same without the last of the functions.
inline std::filesystem::path lacking_duckdb() {
  return fake_duckdb().replace_filename("lacking_duckdb" + fake_duckdb().extension().string());
}

}  // namespace ovtest
