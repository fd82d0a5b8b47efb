// `Rebuild` of the maintenance interface: a table made anew from chosen rows and columns.
#pragma once

#include "table/edit_words.h"
#include "table/table_core.h"

namespace ovf {

/// What a host asks for; see IOvTableMaintenance::Rebuild.
struct rebuild_request {
  IOvSchema* schema;
  LONG columns;
  const LONG* column_of;
  LONG rows;
  const LONG* row_of;
};

inline constexpr edit_words rebuild_words{
    .no_copy = OLESTR("Rebuild failed, no copy of the table can be made: %s"),
    .not_replaced = OLESTR("Rebuild failed, the copy cannot replace %s: %s"),
    .not_reopened = OLESTR("Rebuild failed, the new table %s cannot be opened: %s"),
    .not_restored =
        OLESTR("Rebuild failed, the copy cannot replace %s: %s; the table cannot be opened again: %s"),
    .stopped = OLESTR("Rebuild failed, it was stopped"),
};

/// An edit under `rebuild_words`. Throws MyExceptionClass with words for everything that is wrong with the
/// request, and leaves the old table then; a text that would be cut is one of these things.
void rebuild(table_core& core, const rebuild_request& request);

}  // namespace ovf
