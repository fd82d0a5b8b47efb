#include "parquet/parquet_partition.h"

#include <algorithm>

#include "failure.h"
#include "shown_text.h"
#include "words.h"

namespace command {
namespace {

/// Bytes that file systems allow, and characters of a text that is too long which a message shows.
constexpr int longest_folder_name = 255;
constexpr int longest_shown_text = 40;

std::string shown_text(std::string_view text) {
  std::string out;
  append_shown(out, text);
  return out;
}

void refuse_unfit_texts(sql_database& database, const std::string& query, const std::string& table,
                        const partition_column& column) {
  sql_result found = database.run(fmt::format(
      "select left({0}, {1}), length({0}) > {1}, unfit from (select {0}, upper({0}) in ('NULL', "
      "'__HIVE_DEFAULT_PARTITION__') as unfit from ({2})) where unfit or "
      "length(url_encode({3})) + 1 + length(url_encode({0})) > {4} limit 1",
      sql_name(column.name), longest_shown_text, query, sql_text(column.name), longest_folder_name));
  if (!found.next()) return;
  const bool means_null = found.values<bool>(2)[0];
  throw failure(
      fmt::format("{}: column {} has the text {}{}, which {}", table, column.field,
                  shown_text(found.text(0, 0)), found.values<bool>(1)[0] ? "..." : "",
                  means_null ? "as a folder's name means no value" : "is too long for the name of a folder"));
}

/// Folders that differ by the case of letters alone are one on some systems, and one of them would be lost
/// there. They stand beside each other where the columns before this one have the same values.
void refuse_same_folders(sql_database& database, const std::string& query, const std::string& table,
                         const std::vector<partition_column>& columns, std::size_t at) {
  std::string above;
  for (std::size_t i = 0; i < at; ++i) above += sql_name(columns[i].name) + ", ";
  const std::string name = sql_name(columns[at].name);
  // Other letters than those from A to Z stand in the names of folders as their bytes' numbers.
  sql_result found = database.run(
      fmt::format("select min({1}), max({1}) from (select distinct {0}{1} from ({2}) where {1} is not null) "
                  "group by {0}upper(url_encode({1})) having count(*) > 1 limit 1",
                  above, name, query));
  if (!found.next()) return;
  throw failure(fmt::format(
      "{}: column {} has the texts {} and {}, whose folders would be one where the case of letters does not "
      "count",
      table, columns[at].field, shown_text(found.text(0, 0)), shown_text(found.text(1, 0))));
}

}  // namespace

std::vector<partition_column> partition_columns(const std::vector<std::string>& wanted,
                                                const std::vector<field_view>& fields,
                                                const std::vector<std::string>& names) {
  std::vector<partition_column> made;
  for (const std::string& name : wanted) {
    const field_view* const field = find_field(fields, name);
    if (field == nullptr) {
      throw wrong_usage("--partition-by " + name + ": --columns leaves this column out");
    }
    if (std::any_of(made.begin(), made.end(), [&](const auto& one) { return one.field == name; })) {
      throw wrong_usage("--partition-by names " + name + " twice");
    }
    made.push_back({name, names[static_cast<std::size_t>(field - fields.data())], field->is_text});
  }
  if (made.size() >= fields.size()) {
    throw wrong_usage("--partition-by: no column would be left for the files");
  }
  return made;
}

std::string partition_option(const std::vector<partition_column>& columns) {
  std::string names;
  for (const partition_column& column : columns) names += (names.empty() ? "" : ", ") + sql_name(column.name);
  return "partition_by (" + names + ")";
}

void check_folder_names(sql_database& database, const std::string& query, const std::string& table,
                        const std::vector<partition_column>& columns) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (!columns[i].is_text) continue;
    refuse_unfit_texts(database, query, table, columns[i]);
    refuse_same_folders(database, query, table, columns, i);
  }
}

}  // namespace command
