// ovfile rename: a column gets another name.
#include <memory>

#include "commands.h"
#include "console.h"
#include "failure.h"
#include "table_options.h"
#include "table_view.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* rename_help =
    "Gives a column of a table another name; its values stay. Names differ by case: AU and Au are two.";

struct rename_request {
  std::string table;
  std::string old_name;
  std::string new_name;
};

/// The library may say that all went well and have kept the old name.
void check_renamed(const table_view& view, LONG column, const std::string& wanted) {
  ovfile::text name;
  view.check(view.schema()->GetFieldName(column, name.out()));
  if (name.utf8() == wanted) return;
  throw failure(
      fmt::format("{}: the column could not be named {}; it is {}", view.file(), wanted, name.utf8()));
}

void run_rename(const rename_request& request) {
  const interrupt_guard guard;
  const table_view view(request.table, table_access::change);
  const field_view& field = view.field(request.old_name);
  if (request.new_name != request.old_name) view.check_new_name(request.new_name);
  view.check_copied(
      view.table().SetColumnName(field.column, ovfile::text(std::string_view(request.new_name)).get()));
  check_renamed(view, field.column, request.new_name);
  view.close();
}

}  // namespace

void define_rename(const verb& program) {
  auto request = std::make_shared<rename_request>();
  const verb this_verb = program.add_verb("rename", "Give a column another name");
  this_verb.footer(rename_help);
  add_table_argument(this_verb, request->table);
  this_verb.add_argument("old", request->old_name, "the column's name").required();
  this_verb.add_argument("new", request->new_name, "what it shall be called").required();
  this_verb.callback([request] { run_rename(*request); });
}

}  // namespace command
