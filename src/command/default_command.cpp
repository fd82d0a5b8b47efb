// ovfile default: a column gets another default.
#include <memory>

#include "cell_value.h"
#include "commands.h"
#include "console.h"
#include "implicit_field.h"
#include "table_options.h"
#include "table_view.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* default_help =
    "Sets a column's default: the value that all rows of an implicit column have, and that new rows have at\n"
    "first in a stored one, whose other rows stay as they are. In a column of numbers - and absent (or\n"
    "nothing) are the absent number.";

struct default_request {
  std::string table;
  implicit_field column;
};

HRESULT store_default(const table_view& view, const cell_value& value) {
  IOvTable& table = view.table();
  const LONG column = value.field->column;
  if (value.field->is_text) return table.SetColumnDefaultString(column, value.text.get());
  if (view.is_single()) return table.SetColumnDefaultFloat(column, value.narrow);
  return table.SetColumnDefaultDouble(column, value.number);
}

void run_default(const default_request& request) {
  const interrupt_guard guard;
  const table_view view(request.table, table_access::change);
  const field_view& field = view.field(request.column.name);
  const cell_value value = plan_value(view.file(), field, request.column.value, view.is_single());
  view.check(store_default(view, value));
  view.close();
  if (!value.kept) say("warning: single precision loses digits of " + field.name);
}

}  // namespace

void define_set_default(const verb& program) {
  struct arguments {
    default_request request;
    std::string column;
  };
  auto given = std::make_shared<arguments>();
  const verb this_verb = program.add_verb("default", "Set the default of a column");
  this_verb.footer(default_help);
  add_table_argument(this_verb, given->request.table);
  this_verb.add_argument("column", given->column, "the column and its default")
      .type_name("COLUMN=VALUE")
      .required();
  this_verb.callback([given] {
    given->request.column = parse_implicit("", given->column, "COLUMN=VALUE");
    run_default(given->request);
  });
}

}  // namespace command
