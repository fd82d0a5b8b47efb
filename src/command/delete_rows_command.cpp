// ovfile delete-rows: rows of a table go away.
#include <memory>

#include "commands.h"
#include "failure.h"
#include "rebuild.h"
#include "row_choice.h"
#include "table_options.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* delete_rows_help =
    "Deletes the rows that meet a CONDITION like \"AU IS ABSENT\", or those of a list like 3,10-20. The\n"
    "table is written anew and takes the old one's place in one step.";

struct deletion_request {
  std::string table;
  std::optional<std::string> where;
  std::string rows;
};

void run_delete_rows(const deletion_request& request) {
  if (!request.where && request.rows.empty())
    throw wrong_usage("--where CONDITION or --rows LIST is required");
  table_view view(request.table, table_access::change);
  const row_choice doomed =
      request.where ? rows_that_pass(view, request.where) : listed_rows(view, request.rows);
  if (doomed.count() > 0) {
    std::vector<LONG> kept;
    kept.reserve(static_cast<std::size_t>(view.rows() - doomed.count()));
    for (LONG row = 1; row <= view.rows(); ++row) {
      if (!doomed.has(row)) kept.push_back(row);
    }
    keep_rows(view, kept);
  }
  say(fmt::format("{} of {} deleted", doomed.count(), counted(view.rows(), "row")));
}

}  // namespace

void define_delete_rows(const verb& program) {
  auto request = std::make_shared<deletion_request>();
  const verb this_verb = program.add_verb("delete-rows", "Delete chosen rows of a table");
  this_verb.footer(delete_rows_help);
  add_table_argument(this_verb, request->table);
  const option where = add_where_option(this_verb, request->where);
  this_verb.add_option("--rows", request->rows, "these rows").type_name("3,10-20,...").excludes(where);
  this_verb.callback([request] { run_delete_rows(*request); });
}

}  // namespace command
