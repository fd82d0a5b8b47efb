// ovfile delete-rows: rows of a table go away.
#include <algorithm>
#include <memory>
#include <vector>

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

/// Of rows that are not in the file those that shall go need not be read.
std::vector<LONG> all_but(const row_choice& doomed, const table_view& view) {
  const LONG last = view.rows_in_file();
  for (LONG row = last + 1; row <= view.rows(); ++row) {
    if (!doomed.has(row)) view.require_whole_file();
  }
  std::vector<LONG> kept;
  kept.reserve(static_cast<std::size_t>(std::max<LONG>(last - doomed.count(), 0)));
  for (LONG row = 1; row <= last; ++row) {
    if (!doomed.has(row)) kept.push_back(row);
  }
  return kept;
}

void run_delete_rows(const deletion_request& request) {
  if (!request.where && request.rows.empty())
    throw wrong_usage("--where CONDITION or --rows LIST is required");
  table_view view(request.table, table_access::change);
  const row_choice doomed =
      request.where ? rows_that_pass(view, request.where) : listed_rows(view, request.rows);
  // Made before: for want of memory for its words what was done would pass for a failure.
  const message done(fmt::format("{} of {} deleted", doomed.count(), counted(view.rows(), "row")));
  if (doomed.count() > 0) {
    keep_rows(view, all_but(doomed, view));
  }
  done.say();
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
