// Reads the XML form of a schema: a scanner that goes line by line through what the writer makes. It
// knows no XML: a word is looked for anywhere in its line, and an attribute's value is taken from the
// first place where the line has the attribute's name.
//
// Habits that hosts have come to rely on: an empty value ("") runs on to the next quote of the line, a
// name of more than 8 characters drops its field, and the precision is double unless the text says
// otherwise.
#pragma once

#include "base/text.h"
#include "ovfile/ovfile.h"

namespace ovf {

/// Gives `schema`, which is empty and double precision, what the text says: precision, description,
/// fields. Fields that the schema refuses are missing. Takes time in proportion to the text's length.
void read_schema_xml(wide_view text, IOvSchema& schema);

}  // namespace ovf
