// A table that is made, for the commands that make one.
#pragma once

#include <string>

#include "ovfile/smart.h"

namespace command {

/// The table, open, in a file of this name, which it empties. Throws `failure`, which names `shown`, with the
/// system's reason where the library tells none.
ovfile::pointer<IOvTable> create_new_table(const std::string& file, IOvSchema& schema,
                                           const std::string& shown);

}  // namespace command
