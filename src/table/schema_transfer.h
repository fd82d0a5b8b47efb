// Between an open table's fields and a schema object.
#pragma once

#include "engine/open_table.h"
#include "ovfile/ovfile.h"
#include "ovfile/smart.h"

namespace ovf {

/// Fills a schema of this library from the table: fields, description, precision. A foreign one stays as
/// it is. The result is the first failed status of the schema's methods.
HRESULT fill_schema(IOvSchema& schema, table& from);
/// Adds the table's field of that index (from 0) to the schema as the file has it: name, width, default.
HRESULT add_field(IOvSchema& schema, table& from, std::uint64_t index);

/// Throws MyExceptionClass, the 64-field message, for more fields than the schema's precision takes, none of
/// which is looked at.
void require_field_limit(IOvSchema& schema);

/// Reads a schema, of whatever making, as the definition of a new table. Throws com_error with the
/// status of a method that fails.
table_definition definition_of(IOvSchema& schema);

/// A new schema of this library with the fields, description and precision of another; latched when that
/// one is. Throws MyExceptionClass for a field that the adders refuse, com_error for methods that fail.
ovfile::pointer<IOvSchema> copy_of(IOvSchema& schema);

/// A new, empty schema of this library.
ovfile::pointer<IOvSchema> new_schema();

/// A new schema of this library that says what the table's file says. Throws com_error.
ovfile::pointer<IOvSchema> schema_of(table& from);

}  // namespace ovf
