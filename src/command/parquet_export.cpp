#include "parquet_export.h"

#include <algorithm>

#include "failure.h"
#include "folder_replacement.h"
#include "parquet_file.h"
#include "parquet_metadata.h"
#include "row_condition.h"
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

std::string select_of(const parquet_export_request& request, const std::vector<field_view>& fields) {
  std::string columns;
  for (const field_view& field : fields) columns += (columns.empty() ? "" : ", ") + sql_name(field.name);
  std::string options =
      fmt::format(", widen := false, absent := '{}'", word_of(request.options.absent_value()));
  if (request.rows.where) options += ", condition := " + sql_text(*request.rows.where);
  return fmt::format("select {} from read_ovt({}{})", columns, sql_text(request.rows.table), options);
}

std::string partition_option(const parquet_export_request& request, const std::vector<field_view>& fields) {
  std::string names;
  for (const std::string& name : request.partition_by) {
    const auto same = [&](const field_view& field) { return field.name == name; };
    if (std::none_of(fields.begin(), fields.end(), same)) {
      throw wrong_usage("--partition-by " + name + ": --columns leaves this column out");
    }
    names += (names.empty() ? "" : ", ") + sql_name(name);
  }
  if (request.partition_by.size() >= fields.size()) {
    throw wrong_usage("--partition-by: no column would be left for the files");
  }
  return "partition_by (" + names + ")";
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

  const std::string query = select_of(request, fields);
  const std::string metadata = metadata_option(view, fields);
  sql_database database(request.options.settings());
  if (request.partition_by.empty()) {
    write_parquet(database, query, request.target, metadata);
    return;
  }
  const std::string partition = partition_option(request, fields);
  folder_replacement folder(request.target);
  database.execute(fmt::format("copy ({}) to {} (format parquet, {}, {})", query, sql_text(folder.name()),
                               partition, metadata));
  folder.commit();
}

}  // namespace command
