// ovfile sort: the rows of a table get another order.
#include <algorithm>
#include <memory>

#include "commands.h"
#include "rebuild.h"
#include "row_order.h"
#include "table_options.h"

namespace command {
namespace {

constexpr const char* sort_help =
    "Sorts the rows of a table by a column, by the next one where those are equal, and so on; rows that are\n"
    "equal in all keep their order. --by A,B is --by A --by B. An absent number is -1e30 and stands first,\n"
    "what is no number (nan) last; texts go a, ab, b, capitals before small letters. With --descending all\n"
    "is the other way round. The table is written anew and takes the old one's place in one step.";

struct sort_request {
  std::string table;
  std::vector<std::string> by;
  bool descending = false;
};

void run_sort(const sort_request& request) {
  table_view view(request.table, table_access::change);
  std::vector<field_view> columns;
  for (const std::string& name : request.by) columns.push_back(view.field(name));
  // The library's own way to sort puts rows with equal values in any order.
  const std::vector<LONG> rows = sorted_rows(view, columns, request.descending);
  if (!std::is_sorted(rows.begin(), rows.end())) keep_rows(view, rows);
}

}  // namespace

void define_sort(const verb& program) {
  auto request = std::make_shared<sort_request>();
  const verb this_verb = program.add_verb("sort", "Sort the rows of a table");
  this_verb.footer(sort_help);
  add_table_argument(this_verb, request->table);
  add_names_option(this_verb, "--by", request->by, "the columns to sort by; may be repeated").required();
  this_verb.add_flag("--descending", request->descending, "the greatest first");
  this_verb.callback([request] { run_sort(*request); });
}

}  // namespace command
