// The library's XML form of a schema, and what gets lost on the way: a field to a line, nothing escaped,
// names of at most 8 characters, numbers with six decimals.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "field_view.h"

namespace command {

/// A schema's XML as UTF-8, with all characters of the table's description, of which the schema lacks the
/// last. Throws `failure` with `file` when it is too large for that form.
std::string schema_to_xml(IOvSchema& schema, const std::string& description, const std::string& file);

/// Whether the XML would give these fields, precision and description again.
bool reads_back(const std::string& xml, IOvSchema& schema, const std::string& description,
                const std::vector<field_view>& fields);

/// What a file says, as UTF-8: UTF-8 or UTF-16 with a byte order mark, UTF-8 without one, else
/// Windows-1252; `-` is standard input. Throws `failure`, also for what no table can keep.
std::string read_schema_text(const std::string& file);

/// A new schema from XML.
ovfile::pointer<IOvSchema> schema_from_xml(const std::string& xml, const std::string& file);

/// The fields of the XML that the library did not take over, by their names; those without a name are
/// counted.
std::vector<std::string> names_not_taken(std::string_view xml, const std::vector<field_view>& taken);

}  // namespace command
