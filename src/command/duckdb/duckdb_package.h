// The package of a registry in which DuckDB's library comes for this system.
#pragma once

#include <cstdint>

namespace command {

struct package_facts {
  const char* name;               ///< in npm's registry
  const char* version;            ///< the one that this program was tested with
  const char* integrity;          ///< what that version's file must have
  std::uint64_t bytes;            ///< the size of that file
  const char* member;             ///< what the library is called in the file
  const char* library_integrity;  ///< what that version's library must have
  std::uint64_t library_bytes;    ///< the size of that library
};

extern const package_facts duckdb_package;

}  // namespace command
