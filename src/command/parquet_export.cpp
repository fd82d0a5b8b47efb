#include "parquet_export.h"

#include <algorithm>
#include <filesystem>

#include "failure.h"
#include "folder_replacement.h"
#include "parquet_file.h"
#include "parquet_metadata.h"
#include "row_condition.h"
#include "unique_names.h"
#include "utf8_path.h"
#include "words.h"

namespace command {
namespace {

const char* word_of(absent_value absent) noexcept {
  switch (absent) {
    case absent_value::nan:
      return "nan";
    case absent_value::keep:
      return "keep";
    default:
      return "null";
  }
}

/// SQL, and so the files that it makes, take AU and Au for the same.
std::vector<std::string> sql_names(const std::vector<field_view>& fields) {
  std::vector<std::string> names;
  names.reserve(fields.size());
  for (const field_view& field : fields) names.push_back(field.name);
  return unique_names(names, letter_case::does_not_count);
}

/// Columns of the table as SQL calls them, each by the name that the files have for it.
std::string select_of(const parquet_export_request& request, const table_view& view,
                      const std::vector<field_view>& fields, const std::vector<std::string>& names) {
  const std::vector<std::string> known = sql_names(view.fields());
  std::string columns;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::string& name = known[static_cast<std::size_t>(fields[i].column) - 1];
    columns += fmt::format("{}{} as {}", i == 0 ? "" : ", ", sql_name(name), sql_name(names[i]));
  }
  std::string options =
      fmt::format(", widen := false, absent := '{}'", word_of(request.options.absent_value()));
  if (request.rows.where) options += ", condition := " + sql_text(*request.rows.where);
  return fmt::format("select {} from read_ovt({}{})", columns, sql_text(request.rows.table), options);
}

std::string partition_option(const parquet_export_request& request, const std::vector<field_view>& fields,
                             const std::vector<std::string>& columns) {
  std::string names;
  for (const std::string& name : request.partition_by) {
    const field_view* const field = find_field(fields, name);
    if (field == nullptr) {
      throw wrong_usage("--partition-by " + name + ": --columns leaves this column out");
    }
    names += (names.empty() ? "" : ", ") + sql_name(columns[static_cast<std::size_t>(field - fields.data())]);
  }
  if (request.partition_by.size() >= fields.size()) {
    throw wrong_usage("--partition-by: no column would be left for the files");
  }
  return "partition_by (" + names + ")";
}

/// Readers take these folders' names for no value at all.
void refuse_names_for_null(sql_database& database, const std::string& query,
                           const parquet_export_request& request, const std::vector<field_view>& fields,
                           const std::vector<std::string>& columns) {
  for (const std::string& name : request.partition_by) {
    const field_view* const field = find_field(fields, name);
    if (!field->is_text) continue;
    const std::string column = sql_name(columns[static_cast<std::size_t>(field - fields.data())]);
    sql_result found = database.run(fmt::format(
        "select {0} from ({1}) where upper({0}) in ('NULL', '__HIVE_DEFAULT_PARTITION__') limit 1", column,
        query));
    if (!found.next()) continue;
    throw failure(fmt::format("{}: column {} has the text {}, which as a folder's name means no value",
                              request.rows.table, name, found.text(0, 0)));
  }
}

void write_folder(sql_database& database, const std::string& query, const std::string& target,
                  const std::string& partition, const std::string& metadata) {
  folder_replacement folder(target);
  const auto copy_to = [&](const std::string& name, const std::string& options) {
    write_for(database, fmt::format("copy ({}) to {} (format parquet, {})", query, sql_text(name), options),
              folder.name(), target);
  };
  copy_to(folder.name(), partition + ", " + metadata);
  // Without rows there is no file, and nothing would tell of the columns.
  const std::filesystem::path made = path_of_utf8(folder.name());
  if (std::filesystem::is_empty(made)) copy_to(utf8_of_path(made / "data_0.parquet"), metadata);
  folder.commit();
}

}  // namespace

void export_parquet(const parquet_export_request& request) {
  if (!request.options.shown_absent().empty()) {
    throw wrong_usage("--absent of a Parquet file is null, nan or keep");
  }
  // Complains as other commands do, with a mark under a bad condition's place.
  const table_view view(request.rows.table);
  (void)make_condition(view, request.rows.where);
  const std::vector<field_view> fields = view.choose(request.rows.columns);
  if (fields.empty()) throw failure(view.file() + " has no columns; a Parquet file needs one");
  (void)view.choose(request.partition_by);

  const std::vector<std::string> columns = sql_names(fields);
  const std::string query = select_of(request, view, fields, columns);
  const std::string metadata = metadata_option(view, fields, columns);
  sql_database database(request.options.settings());
  if (request.partition_by.empty()) {
    write_parquet(database, query, request.target, metadata);
    return;
  }
  const std::string partition = partition_option(request, fields, columns);
  refuse_names_for_null(database, query, request, fields, columns);
  write_folder(database, query, request.target, partition, metadata);
}

}  // namespace command
