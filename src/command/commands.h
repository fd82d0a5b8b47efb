// The commands of the program. A new one is a file that defines `define_NAME`, and a line in
// OVFILE_COMMANDS.
#pragma once

#include "arguments.h"

#define OVFILE_COMMANDS(one)                                                                               \
  one(import) one(info) one(head) one(export) one(stats) one(diff) one(sign) one(schema) one(new) one(set) \
      one(set_default) one(sort) one(delete_rows) one(truncate) one(alter) one(rename) one(add_implicit)   \
          one(kinds) one(settings) one(setup) one(sql) one(verify)

namespace command {

/// Each adds its verb, whose callback does the work and throws what failure.h lists.
#define OVFILE_DECLARE(name) void define_##name(const verb& program);
OVFILE_COMMANDS(OVFILE_DECLARE)
#undef OVFILE_DECLARE

}  // namespace command
