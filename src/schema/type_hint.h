// Which kind of table a schema describes.
#pragma once

#include "ovfile/ovfile.h"
#include "schema/schema_fields.h"

namespace ovf {

/// The first of `ovfile::table_kinds` whose field names are all there, together with ovGenericTable;
/// ovGenericTable alone when there is none.
OvFileType type_hint_of(const schema_fields& fields);

}  // namespace ovf
