// ovfile set: values of chosen rows are changed where they stand.
#include <memory>

#include "cell_value.h"
#include "commands.h"
#include "console.h"
#include "failure.h"
#include "implicit_field.h"
#include "progress.h"
#include "row_choice.h"
#include "row_condition.h"
#include "table_options.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* set_help =
    "Sets columns of the rows that meet a CONDITION like \"AU < 0\" to a value. In a column of numbers -\n"
    "and absent (or nothing) are the absent number. All values are checked before the first row is changed.";

struct set_request {
  std::string table;
  std::vector<std::string> assignments;
  std::optional<std::string> where;
  bool all = false;
};

std::vector<implicit_field> parse_assignments(const std::vector<std::string>& assignments) {
  std::vector<implicit_field> parsed;
  for (const std::string& assignment : assignments) {
    parsed.push_back(parse_implicit("", assignment, "COLUMN=VALUE"));
    for (std::size_t i = 0; i + 1 < parsed.size(); ++i) {
      if (parsed[i].name == parsed.back().name) {
        throw wrong_usage(fmt::format("{}: the column is given twice", parsed.back().name));
      }
    }
  }
  return parsed;
}

cell_value plan(const table_view& view, const implicit_field& wanted) {
  const field_view& field = view.field(wanted.name);
  if (field.implicit) {
    throw failure(fmt::format("{}: {} is implicit, one value for all rows; `ovfile default` changes it",
                              view.file(), field.name));
  }
  cell_value value = plan_value(view.file(), field, wanted.value, view.is_single());
  if (!value.kept) say("warning: single precision loses digits of " + field.name);
  return value;
}

void store_value(const table_view& view, const cell_value& value) {
  IOvTable& table = view.table();
  const LONG column = value.field->column;
  HRESULT status = S_OK;
  if (value.field->is_text) {
    status = table.SetColumnString(column, value.text.get());
  } else if (view.is_single()) {
    status = table.SetColumnFloat(column, value.narrow);
  } else {
    status = table.SetColumnDouble(column, value.number);
  }
  view.check_at(value.field, status);
}

/// From the first change on the work goes on to the end, so that no interrupt leaves some rows changed.
void change(table_view& view, const std::vector<cell_value>& values, const row_choice& rows) {
  const interrupt_guard guard;
  progress bar("setting");
  LONG current = 0;
  for (LONG row = rows.next(0); row != 0; row = rows.next(row)) {
    row == current + 1 && current > 0 ? view.go_on() : view.go_to(row);
    current = row;
    for (const cell_value& value : values) store_value(view, value);
    bar.at(static_cast<std::uint64_t>(row), static_cast<std::uint64_t>(view.rows()));
  }
  view.close();
}

void run_set(const set_request& request) {
  const std::vector<implicit_field> wanted = parse_assignments(request.assignments);
  if (!request.where && !request.all) throw wrong_usage("--where CONDITION or --all is required");
  table_view view(request.table, table_access::change);
  std::vector<cell_value> values;
  values.reserve(wanted.size());
  for (const implicit_field& assignment : wanted) values.push_back(plan(view, assignment));
  const row_choice rows = rows_that_pass(view, request.where);
  // Made before: for want of memory for its words what was done would pass for a failure.
  const message done(fmt::format("{} of {} set", rows.count(), counted(view.rows(), "row")));
  change(view, values, rows);
  done.say();
}

}  // namespace

void define_set(const verb& program) {
  auto request = std::make_shared<set_request>();
  const verb this_verb = program.add_verb("set", "Set columns of chosen rows to a value");
  this_verb.footer(set_help);
  add_table_argument(this_verb, request->table);
  this_verb.add_arguments("assignments", request->assignments, "columns and what they shall hold")
      .type_name("COLUMN=VALUE")
      .required();
  const option where = add_where_option(this_verb, request->where);
  this_verb.add_flag("--all", request->all, "all rows").excludes(where);
  this_verb.callback([request] { run_set(*request); });
}

}  // namespace command
