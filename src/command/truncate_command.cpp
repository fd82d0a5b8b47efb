// ovfile truncate: a table keeps its first rows.
#include <limits>
#include <memory>

#include "commands.h"
#include "console.h"
#include "failure.h"
#include "table_options.h"
#include "table_view.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* truncate_help = "Cuts a table off behind its first N rows, where it stands.";

struct truncation_request {
  std::string table;
  LONG rows = 0;
};

void run_truncate(const truncation_request& request) {
  const interrupt_guard guard;
  const table_view view(request.table, table_access::change);
  if (request.rows > view.rows()) {
    throw failure(
        fmt::format("{} has {}, fewer than {}", view.file(), counted(view.rows(), "row"), request.rows));
  }
  view.check(view.table().ReduceRowCountTo(request.rows));
  view.close();
}

}  // namespace

void define_truncate(const verb& program) {
  auto request = std::make_shared<truncation_request>();
  const verb this_verb = program.add_verb("truncate", "Cut a table off behind some rows");
  this_verb.footer(truncate_help);
  add_table_argument(this_verb, request->table);
  this_verb.add_number("--rows", request->rows, {.least = 0}, "how many rows stay").type_name("N").required();
  this_verb.callback([request] { run_truncate(*request); });
}

}  // namespace command
