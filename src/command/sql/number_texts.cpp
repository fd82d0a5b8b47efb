#include "sql/number_texts.h"

#include <fmt/format.h>

#include <algorithm>

#include "sql/query_table.h"
#include "words.h"

namespace command {
namespace {

/// Whether a statement names a file, or a function, of a format whose types are found out by a look at the
/// values.
bool reads_guessed_types(const std::string& statement) {
  const auto same = [](char letter, char wanted) { return (letter | 0x20) == wanted; };
  const auto is_named = [&](std::string_view name) {
    return std::search(statement.begin(), statement.end(), name.begin(), name.end(), same) != statement.end();
  };
  return is_named("csv") || is_named("tsv") || is_named("json");
}

/// Whether there are values other than blank ones, and each is a number; what begins with a zero too many is
/// the name of something.
std::string all_numbers(const std::string& column) {
  return fmt::format(
      "coalesce(bool_and(try_cast({0} as double) is not null and not regexp_matches(trim({0}), "
      "'^[+-]?0[0-9]')) "
      "filter (trim({0}) <> ''), false)",
      column);
}

}  // namespace

std::optional<std::string> note_number_texts(sql_database& database,
                                             const std::vector<std::string>& statements,
                                             const std::string& from,
                                             const std::vector<sql_column>& columns) {
  if (std::ranges::none_of(statements, reads_guessed_types)) return {};
  const std::vector<std::string> own_names = own_column_names(columns.size());
  std::vector<std::string> questions;
  std::vector<std::string> names;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].type != duckdb::type_id::varchar) continue;
    questions.push_back(all_numbers(own_names[i]));
    names.push_back(columns[i].name);
  }
  if (questions.empty()) return {};
  std::vector<std::string> found;
  sql_result answer = database.run(fmt::format("select {} from {}", joined(questions, ", "), from));
  if (!answer.next()) return {};
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (answer.values<bool>(i)[0]) found.push_back(names[i]);
  }
  if (found.empty()) return {};
  return fmt::format(
      "the column{} {} {} text, though each value reads as a number: cast({} as double) makes numbers",
      found.size() == 1 ? "" : "s", joined(found, ", "), found.size() == 1 ? "is" : "are", found.front());
}

}  // namespace command
