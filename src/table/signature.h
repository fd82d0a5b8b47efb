// A digest of a table's shape and content: equal for tables that tell the same, whatever their files look
// like byte for byte.
#pragma once

#include "platform/sha1.h"
#include "table/table_core.h"

namespace ovf {

struct signature_choice {
  bool ignore_description = false;
  bool ignore_field_order = false;
  bool ignore_precision = false;  ///< of the table and of its fields, not of their values
  LONG digits = -1;               ///< behind the point, as append_decimal takes them
};

/// The digest over the held schema and all rows of the open table. Leaves the cursor on the last row, and
/// where it was when it throws: what reading throws, table_core::not_open, sha1_unavailable, sha1_failed,
/// work_stopped.
sha1::digest signature_of(table_core& core, const signature_choice& choice);

/// 40 lowercase hexadecimal digits.
wide hexadecimal(const sha1::digest& digest);

}  // namespace ovf
