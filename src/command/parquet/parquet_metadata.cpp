#include "parquet/parquet_metadata.h"

#include <algorithm>
#include <map>

#include "failure.h"
#include "number_text.h"
#include "parquet/parquet_union.h"
#include "table_limits.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* precision_key = "ovfile:precision";
constexpr const char* description_key = "ovfile:description";
constexpr const char* columns_key = "ovfile:columns";

std::string json_field(const field_view& field, const std::string& column) {
  return fmt::format(
      R"({{"column": {}, "name": {}, "kind": "{}", "width": {}, "implicit": {}, "default": {}}})",
      json_text(column), json_text(field.name), field.is_text ? "text" : "number", field.width,
      field.implicit, json_text(field.is_text ? field.text_default : number_text(field.number_default)));
}

/// The texts that the files keep under our keys, as far as all of them keep the same.
std::map<std::string, std::string> common_texts(sql_database& database,
                                                const std::vector<std::string>& files) {
  std::map<std::string, std::string> found;
  sql_result rows = database.run(
      fmt::format("select decode(key), decode(any_value(value)) from parquet_kv_metadata({}) where key in "
                  "(encode({}), encode({}), encode({})) group by key "
                  "having count(distinct value) = 1 and count(distinct file_name) = {}",
                  list_of(files), sql_text(precision_key), sql_text(description_key), sql_text(columns_key),
                  files.size()));
  while (rows.next()) {
    for (std::size_t i = 0; i < rows.rows(); ++i) found[std::string(rows.text(0, i))] = rows.text(1, i);
  }
  return found;
}

void read_kept_fields(sql_database& database, const std::string& json, kept_definition& kept) {
  sql_result rows = database.run(fmt::format(
      "select f->>'name', f->>'kind', cast(f->>'width' as double), f->>'implicit', f->>'default', "
      "try_cast(f->>'default' as double), coalesce(f->>'column', f->>'name') "
      "from (select unnest(cast({} as json[])) as f)",
      sql_text(json)));
  while (rows.next()) {
    for (std::size_t i = 0; i < rows.rows(); ++i) {
      kept_field& made = kept.fields.emplace_back();
      made.column = rows.text(6, i);
      made.field.place = kept.fields.size() - 1;
      made.field.name = rows.text(0, i);
      made.field.is_text = rows.text(1, i) == "text";
      const double width = rows.values<double>(2)[i];
      const bool possible = width >= 1 && width <= static_cast<double>(widest_text);
      made.field.width = possible ? static_cast<std::size_t>(width) : 1;
      made.implicit = rows.text(3, i) == "true";
      if (made.field.is_text) {
        made.field.text_default = rows.text(4, i);
      } else if (!rows.is_null(5, i)) {
        made.field.number_default = rows.values<double>(5)[i];
      }
    }
  }
}

}  // namespace

const kept_field* kept_definition::find(const std::string& column) const noexcept {
  const auto found =
      std::find_if(fields.begin(), fields.end(), [&](const kept_field& one) { return one.column == column; });
  return found == fields.end() ? nullptr : &*found;
}

std::string metadata_option(const table_view& view, const std::vector<field_view>& fields,
                            const std::vector<std::string>& columns) {
  std::string definition;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    definition += (i == 0 ? "[" : ", ") + json_field(fields[i], columns[i]);
  }
  return fmt::format("kv_metadata {{{}: {}, {}: {}, {}: {}}}", sql_text(precision_key),
                     sql_text(view.is_single() ? "single" : "double"), sql_text(description_key),
                     sql_text(view.description()), sql_text(columns_key), sql_text(definition + "]"));
}

std::optional<kept_definition> read_metadata(sql_database& database, const std::vector<std::string>& files) {
  std::map<std::string, std::string> texts = common_texts(database, files);
  const std::string columns = texts[columns_key];
  if (columns.empty()) return {};
  kept_definition kept;
  kept.single = texts[precision_key] == "single";
  kept.description = texts[description_key];
  try {
    read_kept_fields(database, columns, kept);
  } catch (const failure&) {
    return {};  // another program's texts under our names are not our business
  }
  return kept;
}

}  // namespace command
