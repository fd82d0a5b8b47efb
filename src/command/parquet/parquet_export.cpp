#include "parquet/parquet_export.h"

#include <filesystem>

#include "failure.h"
#include "folder_replacement.h"
#include "parquet/parquet_file.h"
#include "parquet/parquet_metadata.h"
#include "parquet/parquet_partition.h"
#include "row_condition.h"
#include "sql/read_ovt.h"
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
  std::vector<partition_column> partition;
  if (!request.partition_by.empty()) {
    partition = partition_columns(request.partition_by, fields, columns);
  }
  const std::string query = select_of(request, view, fields, columns);
  const std::string metadata = metadata_option(view, fields, columns);
  sql_database database(request.options.settings());
  if (partition.empty()) {
    database.show("writing");
    write_parquet(database, query, request.target, metadata);
    return;
  }
  database.show("looking");
  check_folder_names(database, query, request.rows.table, partition);
  database.show("writing");
  write_folder(database, query, request.target, partition_option(partition), metadata);
}

}  // namespace command
