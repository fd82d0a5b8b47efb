// A registry of packages that answers like npm's, reached by the system's own curl.
#pragma once

#include <cstdint>
#include <string>

#include "raw_file.h"

namespace command {

struct published_file {
  std::string address;
  std::string integrity;  ///< empty where the registry tells none of the kind that is asked for here
};

class package_registry {
 public:
  /// `address` as the user has it; empty means the one that `npm_config_registry` names, else npm's own.
  /// Throws `failure` when it is no address.
  explicit package_registry(const std::string& address);

  /// Asks for a package's version. Throws `failure`, `interrupted`.
  published_file find(const std::string& package, const std::string& version) const;
  /// Downloads a file, which stands at its beginning then and has gone when it is closed. `bytes` is what is
  /// to be expected, 0 where nobody knows. Throws `failure`, `interrupted`.
  raw_file get(const std::string& address, std::uint64_t bytes) const;

 private:
  std::string address_;
};

/// An address without the name and password that it may hold, for messages.
std::string shown_address(const std::string& address);

}  // namespace command
