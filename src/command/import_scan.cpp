#include "import_scan.h"

#include <algorithm>
#include <limits>
#include <set>

#include "column_types.h"
#include "csv_reader.h"
#include "encoding.h"
#include "failure.h"
#include "field_names.h"
#include "progress.h"
#include "table_limits.h"
#include "words.h"

namespace command {
namespace {

/// The header's cells as UTF-8.
std::vector<std::string> read_header(csv_reader& reader, const std::string& file) {
  if (!next_header(reader))
    throw failure(file + ", line 1, column 1: the file is empty; it needs a line of column names");
  std::vector<std::string> headers;
  headers.reserve(reader.cells().size());
  for (const std::string_view cell : reader.cells()) headers.push_back(to_utf8(cell, encoding_of(cell)));
  return headers;
}

/// What stands between the cells where it is no comma; nothing where there is one.
std::string other_separators(const std::vector<std::string>& headers) {
  if (headers.size() != 1) return {};
  for (const auto& [sign, what] :
       {std::pair(';', "semicolons"), std::pair('\t', "tabs"), std::pair('|', "bars")}) {
    if (headers.front().find(sign) != std::string::npos) return what;
  }
  return {};
}

/// What is probably not what the user wanted.
void note_oddities(import_plan& plan, const std::string& file, const std::vector<std::string>& headers,
                   const cell_problem& mixed) {
  if (mixed.line != 0) {
    plan.notes.push_back(
        fmt::format("warning: {} is not UTF-8 as other cells are; such cells are read as Windows-1252",
                    csv_place(file, mixed.line, mixed.column)));
  }
  if (const std::string what = other_separators(headers); !what.empty()) {
    plan.notes.push_back(fmt::format(
        "warning: {} has {} and no comma in its first line; all of it is one column", file, what));
  }
}

void refuse_doubled_names(const std::vector<planned_field>& implicits,
                          const std::vector<std::string>& headers, const std::string& file) {
  for (const planned_field& field : implicits) {
    if (std::find(headers.begin(), headers.end(), field.name) == headers.end()) continue;
    throw failure(fmt::format("--implicit {}: {} has a column of that name", field.name, file));
  }
}

void force_texts(type_finder& types, const import_request& request, const std::vector<std::string>& headers,
                 const std::vector<planned_field>& fields) {
  for (const forced_text& text : request.texts) {
    std::size_t index = 0;
    while (index < headers.size() && headers[index] != text.name) ++index;
    if (index == headers.size()) {
      index = 0;
      while (index < fields.size() && fields[index].name != text.name) ++index;
    }
    if (index == headers.size()) {
      throw failure(fmt::format("{} has no column {} (--text)", request.csv, text.name));
    }
    types.force_text(index, text.width);
  }
}

[[noreturn]] void stop(const std::string& file, const cell_problem& problem, const std::string& header) {
  throw failure(
      fmt::format("{} ({}): {}", csv_place(file, problem.line, problem.column), header, problem.what));
}

/// Reads all rows; the first problem in the order of the file stops it.
std::uint64_t scan_rows(csv_reader& reader, csv_input& input, type_finder& types,
                        const std::vector<std::string>& headers) {
  progress bar("reading " + input.name());
  std::uint64_t rows = 0;
  const auto check = [&] {
    const cell_problem problem = types.first_problem();
    if (problem.line != 0) stop(input.name(), problem, headers[problem.column - 1]);
  };
  try {
    while (reader.next()) {
      if (reader.is_blank() && headers.size() > 1) continue;
      check_cell_count(reader, input.name(), headers.size());
      types.add_row(reader.cells(), reader.line());
      ++rows;
      bar.at(reader.bytes_read(), input.size());
    }
  } catch (const failure& error) {
    check();
    const std::string what = other_separators(headers);
    if (what.empty()) throw;
    throw failure(fmt::format("{}; there are {} and no comma in its first line", error.what(), what));
  }
  check();
  if (rows > static_cast<std::uint64_t>(std::numeric_limits<LONG>::max())) {
    throw failure(fmt::format("{} has {} rows; a table holds at most {}", input.name(), rows,
                              std::numeric_limits<LONG>::max()));
  }
  return rows;
}

std::size_t words_needed(const planned_field& field) {
  return field.is_text ? words_of_text(field.width) : 1;
}

std::size_t words_needed(const import_plan& plan) {
  std::size_t words = 0;
  for (const planned_field& field : plan.stored) words += words_needed(field);
  for (const planned_field& field : plan.implicit) words += words_needed(field);
  return words;
}

void note_lost_digits(import_plan& plan, const type_finder& types) {
  std::string names;
  for (std::size_t i = 0; i < plan.stored.size(); ++i) {
    if (plan.stored[i].is_text || !types.columns()[i].loses_digits) continue;
    names += (names.empty() ? "" : ", ") + plan.stored[i].name;
  }
  if (!names.empty()) plan.notes.push_back("warning: single precision loses digits of " + names);
}

}  // namespace

std::vector<planned_field> plan_implicits(const import_request& request, std::size_t longest) {
  std::vector<planned_field> fields;
  std::set<std::string> names;
  for (const implicit_field& wanted : request.implicits) {
    const std::string problem = name_problem(wanted.name, longest);
    if (!problem.empty()) throw failure(fmt::format("--implicit {}: {}", wanted.name, problem));
    if (!names.insert(wanted.name).second) {
      throw failure(fmt::format("--implicit {}: the name is given twice", wanted.name));
    }
    fields.push_back(plan_implicit("--implicit ", wanted, request.single));
  }
  return fields;
}

bool next_header(csv_reader& reader) {
  while (reader.next()) {
    if (!reader.has_blanks_alone()) return true;
  }
  return false;
}

void check_cell_count(const csv_reader& reader, const std::string& file, std::size_t columns) {
  const std::size_t cells = reader.cells().size();
  if (cells == columns) return;
  throw failure(fmt::format("{}: the row has {} cell{}, the header has {}",
                            csv_place(file, reader.line(), std::min(cells, columns) + 1), cells,
                            cells == 1 ? "" : "s", columns));
}

import_plan scan_csv(csv_input& input, const import_request& request) {
  import_plan plan;
  plan.single = request.single;
  plan.description = request.description.value_or("");
  const std::size_t longest = longest_name(request.single);
  plan.implicit = plan_implicits(request, longest);

  csv_reader reader(input, input.name());
  const std::vector<std::string> headers = read_header(reader, input.name());
  check_columns(request.table, headers.size() + plan.implicit.size(), plan.single);
  refuse_doubled_names(plan.implicit, headers, input.name());
  std::vector<std::string> taken;
  for (const planned_field& field : plan.implicit) taken.push_back(field.name);
  for (const std::string& name : make_field_names(headers, taken, longest, plan.notes)) {
    plan.stored.push_back({});
    plan.stored.back().name = name;
  }

  type_finder types(headers.size(), request.single);
  types.add_header(reader.cells(), reader.line());
  force_texts(types, request, headers, plan.stored);
  plan.rows = scan_rows(reader, input, types, headers);
  for (std::size_t i = 0; i < headers.size(); ++i) {
    plan.stored[i].is_text = types.columns()[i].is_text;
    if (plan.stored[i].is_text) plan.stored[i].width = types.width(i);
  }
  check_words(request.table, words_needed(plan), plan.single);
  if (plan.single) note_lost_digits(plan, types);
  note_oddities(plan, input.name(), headers, types.mixed_encodings());
  return plan;
}

}  // namespace command
