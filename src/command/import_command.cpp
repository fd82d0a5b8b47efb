// ovfile import: a CSV, or Parquet, becomes a table.
#include <memory>

#include "commands.h"
#include "csv_input.h"
#include "csv_reader.h"
#include "failure.h"
#include "import_request.h"
#include "import_scan.h"
#include "parquet/parquet_file.h"
#include "parquet/parquet_import.h"
#include "progress.h"
#include "replacement.h"
#include "table_limits.h"
#include "table_options.h"
#include "table_writer.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* import_help =
    "Makes a table from a CSV (comma-separated, first line column names, UTF-8 or Windows-1252).\n"
    "A column whose cells are all numbers or empty is one of numbers, an empty cell is absent; every other\n"
    "column is text, as wide as its longest value. Names are changed where a table does not allow them.\n"
    "A name that ends in .parquet, or a folder of such files, is read as Parquet, where null is absent. "
    "This\n"
    "needs DuckDB's library, which `ovfile setup sql` gets.";

forced_text parse_forced_text(const std::string& argument) {
  const std::size_t colon = argument.rfind(':');
  const std::size_t width = colon == argument.npos ? 0 : read_text_width(argument.substr(colon + 1));
  if (colon == 0 || width == 0) {
    throw wrong_usage(
        fmt::format("--text {}: expected NAME:WIDTH, a width of 1 to {}", argument, widest_text));
  }
  return {argument.substr(0, colon), width};
}

void fill(table_writer& writer, csv_input& input, const import_plan& plan) {
  csv_reader reader(input, input.name());
  progress bar("writing");
  std::uint64_t rows = 0;
  next_header(reader);
  while (reader.next()) {
    if (reader.is_blank() && plan.stored.size() > 1) continue;
    check_cell_count(reader, input.name(), plan.stored.size());
    writer.add_row(reader.cells());
    ++rows;
    bar.at(reader.bytes_read(), input.size());
  }
  if (rows != plan.rows) throw failure(input.name() + " changed while it was read");
}

void check_names(const import_request& request) {
  if (same_file(request.csv, request.table)) {
    throw wrong_usage(fmt::format("the {} and the table are one file: {}",
                                  is_parquet(request.csv) ? "Parquet" : "CSV", request.csv));
  }
  if (is_named_as_table(request.csv)) {
    throw wrong_usage(request.csv +
                      ": import reads CSV and Parquet, and the name is a table's; nothing is written");
  }
  for (const auto& [is_other, what] : {std::pair(is_named_as_csv(request.table), "CSV"),
                                       std::pair(is_named_as_parquet(request.table), "Parquet file")}) {
    if (!is_other) continue;
    throw wrong_usage(fmt::format("{}: import makes a table, and the name is a {}'s; nothing is written",
                                  request.table, what));
  }
}

void import_csv(const import_request& request) {
  csv_input input(request.csv);
  const import_plan plan = scan_csv(input, request);
  input.start_again();

  replacement file(request.table);
  {
    table_writer writer(file.name(), request.table, plan);
    fill(writer, input, plan);
    writer.close();
  }
  file.commit();
  for (const std::string& note : plan.notes) say(note);
}

void run_import(const import_request& request, const sql_options& options) {
  if (request.description) check_description("--description", *request.description);
  check_names(request);
  if (is_parquet(request.csv)) return import_parquet(request, options);
  if (!options.memory.empty() || options.threads > 0 || options.absent != "null") {
    throw wrong_usage("--memory, --threads and --absent are for Parquet");
  }
  import_csv(request);
}

}  // namespace

void define_import(const verb& program) {
  struct arguments {
    import_request request;
    std::vector<std::string> texts;
    std::vector<std::string> implicits;
    sql_options database;
  };
  auto given = std::make_shared<arguments>();
  const verb this_verb = program.add_verb("import", "Make a table from a CSV or from Parquet");
  this_verb.footer(import_help);
  this_verb.add_argument("csv", given->request.csv, "the CSV, Parquet file or folder; - is standard input")
      .required();
  this_verb.add_argument("table", given->request.table, "the table to make; one that is there is replaced")
      .required();
  this_verb.add_flag("--single", given->request.single, "numbers of 4 bytes (7 digits) instead of 8");
  this_verb.add_repeated("--text", given->texts, "this column is text of this width; may be repeated")
      .type_name("NAME:WIDTH");
  this_verb
      .add_repeated("--implicit", given->implicits, "a column with one value for all rows; may be repeated")
      .type_name("NAME=VALUE");
  add_description_option(this_verb, given->request.description);
  add_sql_options(this_verb, given->database);
  this_verb
      .add_option("--absent", given->database.absent,
                  "of Parquet: nan, or how an absent value is written, beside null")
      .type_name("WORD");
  this_verb.callback([given] {
    for (const std::string& text : given->texts) given->request.texts.push_back(parse_forced_text(text));
    for (const std::string& text : given->implicits) {
      given->request.implicits.push_back(parse_implicit("--implicit ", text));
    }
    run_import(given->request, given->database);
  });
}

}  // namespace command
