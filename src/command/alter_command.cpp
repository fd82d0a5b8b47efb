// ovfile alter: a table gets other columns.
#include <memory>

#include "altered_columns.h"
#include "commands.h"
#include "failure.h"
#include "rebuild.h"
#include "table_options.h"

namespace command {
namespace {

constexpr const char* alter_help =
    "Drops, adds and orders columns of a table; all its rows stay. NAME is a new column of numbers,\n"
    "NAME:WIDTH one of texts; all rows have its DEFAULT, absent or blank where none is given. Columns that\n"
    "--order leaves out follow in the order that they have. The table is written anew and takes the old\n"
    "one's place in one step.";

struct alteration_request {
  std::string table;
  alteration columns;
};

ovfile::pointer<IOvSchema> schema_of(const table_view& view, const std::vector<altered_column>& columns) {
  auto schema = ovfile::create_schema();
  view.check(schema->put_DoublePrecisionFlag(view.is_single() ? 0 : 1));
  // Without a description: the table keeps its own.
  for (const altered_column& column : columns) add_to_schema(*schema.get(), column, view);
  return schema;
}

void run_alter(const alteration_request& request) {
  const alteration& wanted = request.columns;
  if (wanted.drop.empty() && wanted.add.empty() && wanted.order.empty()) {
    throw wrong_usage("--drop, --add or --order is required");
  }
  const table_view view(request.table, table_access::change);
  const std::vector<altered_column> columns = altered_columns(view, wanted);
  view.require_whole_file();
  std::vector<LONG> origins;
  origins.reserve(columns.size());
  for (const altered_column& column : columns) origins.push_back(column.from);
  const auto schema = schema_of(view, columns);
  rebuild_columns(view, *schema.get(), origins);
}

}  // namespace

void define_alter(const verb& program) {
  struct arguments {
    alteration_request request;
    std::vector<std::string> added;
  };
  auto given = std::make_shared<arguments>();
  const verb this_verb = program.add_verb("alter", "Drop, add and order columns of a table");
  this_verb.footer(alter_help);
  add_table_argument(this_verb, given->request.table);
  add_names_option(this_verb, "--drop", given->request.columns.drop, "these columns go");
  this_verb.add_repeated("--add", given->added, "a new column; may be repeated")
      .type_name("NAME[:WIDTH][=DEFAULT]");
  add_names_option(this_verb, "--order", given->request.columns.order,
                   "these columns come first, in this order");
  this_verb.callback([given] {
    for (const std::string& added : given->added) {
      given->request.columns.add.push_back(parse_added_column(added));
    }
    run_alter(given->request);
  });
}

}  // namespace command
