// DuckDB's library, put where the program looks for it.
#pragma once

#include <string>

namespace command {

struct setup_request {
  std::string from;       ///< the package's file; empty: it is downloaded
  std::string registry;   ///< empty: npm's settings
  std::string folder;     ///< empty: the user's
  std::string version;    ///< of the package; empty: the one that the program was tested with
  std::string integrity;  ///< the digest that the package must have; empty: the known or published one
  bool force = false;
};

/// Says in one line what is where. Throws `failure` (the library that was there stays), `wrong_usage`,
/// `interrupted`.
void set_up_sql(const setup_request& request);

}  // namespace command
