// Shorthands for the lists of cases.
#pragma once

#include "support/table_bytes.h"
#include "support/table_cases.h"

namespace ovtest {

inline const double absent = -1e30;

/// A number of a single-precision table: as a float, and as the double that a host sees.
inline number_cell single_number(float as_float, double as_double) {
  return {as_float, as_double, std::nullopt, std::nullopt};
}
inline number_cell single_number(float as_float, double as_double, std::string as_text) {
  return {as_float, as_double, std::nullopt, std::move(as_text)};
}
inline number_cell double_number(double value) { return {std::nullopt, value, std::nullopt, std::nullopt}; }

inline expected_field single_field(std::string name, double default_value = 0, bool implicit = false) {
  return {std::move(name), column_type::single_number, 4, implicit, default_value};
}
inline expected_field double_field(std::string name, double default_value = 0, bool implicit = false) {
  return {std::move(name), column_type::double_number, 4, implicit, default_value};
}
inline expected_field text_field(std::string name, int width, std::string default_value,
                                 bool implicit = false) {
  return {std::move(name), column_type::text, width, implicit, std::move(default_value)};
}

/// Starts a case: header pages from the atoms, counts as they are expected.
inline table_case start_case(std::string name, const header_words& words, const std::vector<atom>& atoms,
                             word_format format, const expected_facts& facts) {
  table_case made;
  made.name = std::move(name);
  made.file = make_header(words, atoms, format);
  made.expected.file = made.name;
  made.expected.facts = facts;
  made.expected.is_linked = false;
  return made;
}

/// Finishes a case with its fields and rows.
inline table_case with_rows(table_case made, std::vector<expected_field> fields,
                            const std::vector<std::vector<expected_cell>>& rows) {
  made.expected.field_count = static_cast<long>(fields.size());
  made.expected.fields = std::move(fields);
  made.expected.row_count = static_cast<long>(rows.size());
  long row = 0;
  for (const auto& cells : rows) made.expected.rows.emplace(++row, cells);
  return made;
}

}  // namespace ovtest
