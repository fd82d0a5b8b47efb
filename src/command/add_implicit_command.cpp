// ovfile add-implicit: a table gets a column with one value for all rows.
#include <memory>

#include "absent.h"
#include "commands.h"
#include "console.h"
#include "decimal.h"
#include "failure.h"
#include "implicit_field.h"
#include "table_limits.h"
#include "table_options.h"
#include "table_view.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* add_implicit_help =
    "Adds a column with one value for all rows, which the table keeps in its header alone. It is a number\n"
    "where VALUE is one; - and absent are the absent number. Any other VALUE makes it text.";

struct add_implicit_request {
  std::string table;
  implicit_field field;
  std::optional<std::size_t> text_width;
};

void check_room(const table_view& view, const planned_field& field) {
  std::size_t words = field.is_text ? words_of_text(field.width) : 1;
  for (const field_view& there : view.fields()) words += words_of(there);
  check_words(view.file(), words, view.is_single());
}

HRESULT add_text(IOvTable& table, const planned_field& field) {
  return table.AddImplicitStringColumn(ovfile::text(std::string_view(field.name)).get(),
                                       static_cast<LONG>(field.width),
                                       ovfile::text(std::string_view(field.text_default)).get());
}

/// `words` is the value as the user wrote it: by way of a double a float would be rounded twice.
HRESULT add_number(const table_view& view, const planned_field& field, const std::string& words) {
  const ovfile::text name{std::string_view(field.name)};
  if (!view.is_single()) return view.table().AddImplicitNumericColumnDouble(name.get(), field.number_default);
  bool kept = true;
  const float value =
      is_absent(field.number_default) ? static_cast<float>(absent_number) : read_float(words, kept);
  if (!kept) say("warning: single precision loses digits of " + field.name);
  return view.table().AddImplicitNumericColumnFloat(name.get(), value);
}

void run_add_implicit(const add_implicit_request& request) {
  const interrupt_guard guard;
  const table_view view(request.table, table_access::change);
  const implicit_field& wanted = request.field;
  view.check_new_name(wanted.name);
  const planned_field field =
      plan_implicit(view.file() + ", column ", wanted, view.is_single(), request.text_width);
  check_room(view, field);
  view.check_copied(field.is_text ? add_text(view.table(), field) : add_number(view, field, wanted.value));
  view.close();
}

std::size_t parse_width(const std::string& words) {
  const std::size_t width = read_text_width(words);
  if (width == 0) {
    throw wrong_usage(fmt::format("--text {}: expected a width of 1 to {}", words, widest_text));
  }
  return width;
}

}  // namespace

void define_add_implicit(const verb& program) {
  struct arguments {
    add_implicit_request request;
    std::string field;
    std::string width;
  };
  auto given = std::make_shared<arguments>();
  const verb this_verb =
      program.add_verb("add-implicit", "Add a column with one value for all rows to a table");
  this_verb.footer(add_implicit_help);
  add_table_argument(this_verb, given->request.table);
  this_verb.add_argument("field", given->field, "the column and its value")
      .type_name("NAME=VALUE")
      .required();
  const option width =
      this_verb.add_option("--text", given->width, "it is text of this width").type_name("WIDTH");
  this_verb.callback([given, width] {
    given->request.field = parse_implicit("", given->field);
    if (width.given()) given->request.text_width = parse_width(given->width);
    run_add_implicit(given->request);
  });
}

}  // namespace command
