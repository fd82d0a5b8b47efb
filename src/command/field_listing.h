// The fields of a table, listed for readers and for programs.
#pragma once

#include <string>
#include <vector>

#include "field_view.h"

namespace command {

/// A line of headings and one for each field.
void append_field_lines(std::string& out, const std::vector<field_view>& fields, bool single);

/// A field's default: a text as it is, a number in its shortest form, `absent`.
std::string default_words(const field_view& field, bool single);

/// A JSON list of objects, for an object's member at the outermost level.
void append_json_fields(std::string& out, const std::vector<field_view>& fields, bool single);

}  // namespace command
