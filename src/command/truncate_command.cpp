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

constexpr const char* help = "Cuts a table off behind its first N rows, where it stands.";

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

void define_truncate(CLI::App& program) {
  auto request = std::make_shared<truncation_request>();
  CLI::App* const app = program.add_subcommand("truncate", "Cut a table off behind some rows");
  app->footer(help);
  add_table_argument(*app, request->table);
  app->add_option("--rows", request->rows, "how many rows stay")
      ->type_name("N")
      ->transform(whole_number(0, std::numeric_limits<LONG>::max()))
      ->required();
  app->callback([request] { run_truncate(*request); });
}

}  // namespace command
