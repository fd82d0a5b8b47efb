// `Rebuild` of the maintenance interface: a table made anew from chosen rows and columns.
#pragma once

#include "server/report_error.h"
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

/// Throws MyExceptionClass with words for everything that is wrong, and leaves the old table then.
void rebuild(table_core& core, const rebuild_request& request);

}  // namespace ovf
