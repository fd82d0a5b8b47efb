// ovfile export: a table becomes a CSV, or Parquet.
#include <memory>

#include "absent.h"
#include "commands.h"
#include "csv_text.h"
#include "failure.h"
#include "parquet/parquet_export.h"
#include "parquet/parquet_file.h"
#include "progress.h"
#include "replacement.h"
#include "row_condition.h"
#include "table_options.h"
#include "table_view.h"
#include "text_output.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* export_help =
    "Writes a table as a CSV: UTF-8, lines that end with LF, column names first. Numbers have the shortest\n"
    "form that reads back to the same value; an absent number is an empty cell. A CONDITION is like\n"
    "\"AU > 1 AND ROCK = 'ORE'\".\n"
    "A name that ends in .parquet, or --partition-by, makes Parquet, where an absent value is null: a file, "
    "or\n"
    "a folder with a folder for each value. This needs DuckDB's library, which `ovfile setup sql` gets.";

struct export_request {
  row_options options;
  std::string csv = "-";
  std::vector<std::string> partition_by;
  sql_options database;
};

class csv_exporter {
 public:
  csv_exporter(const export_request& request, table_view& view, text_output& output)
      : view_(view), output_(output), fields_(view.choose(request.options.columns)) {
    append_csv_cell(absent_, written_absent(request.options.absent));
  }

  void write_header() {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      if (i > 0) output_.text() += ',';
      append_csv_cell(output_.text(), fields_[i].name);
    }
    end_line();
  }

  void write_row() {
    const std::size_t begin = output_.text().size();
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      if (i > 0) output_.text() += ',';
      write_cell(fields_[i]);
    }
    // An empty line would be taken for no row at all.
    if (output_.text().size() == begin && !fields_.empty()) output_.text() += "\"\"";
    end_line();
  }

 private:
  void write_cell(const field_view& field) {
    if (!field.is_text) {
      view_.append_cell(output_.text(), field, absent_);
      return;
    }
    text_.clear();
    view_.append_cell(text_, field, {});
    append_csv_cell(output_.text(), text_);
  }

  void end_line() {
    output_.text() += '\n';
    output_.pass_on();
  }

  table_view& view_;
  text_output& output_;
  std::vector<field_view> fields_;
  std::string absent_;
  std::string text_;
};

/// A table must not get lost under the text that is made of it. `table` may be a link's target.
void check_target(const std::string& table, const std::string& csv) {
  if (csv == "-") return;
  if (same_file(table, csv)) {
    throw wrong_usage(fmt::format("the table and the {} are one file: {}",
                                  is_named_as_parquet(csv) ? "Parquet" : "CSV", csv));
  }
  if (const char* const what = promised_format(csv); what != nullptr) {
    throw wrong_usage(
        fmt::format("{}: export writes CSV and Parquet, not {}; nothing is written", csv, what));
  }
  if (is_named_as_table(csv)) {
    throw wrong_usage(csv + ": export does not write tables, and the name is a table's; nothing is written");
  }
}

void run_parquet_export(const export_request& request) {
  parquet_export_request wanted{request.options, request.csv, request.partition_by, request.database};
  if (!request.options.absent.empty()) wanted.options.absent = request.options.absent;
  export_parquet(wanted);
}

void run_csv_export(const export_request& request) {
  table_view view(request.options.table);
  ovfile::text opened;
  view.check(view.table().get_Name(opened.out()));
  check_target(opened.utf8(), request.csv);
  const std::optional<row_condition> condition = make_condition(view, request.options.where);
  text_output output(request.csv);
  const bool to_terminal = request.csv == "-" && is_terminal(standard_stream::output);
  progress bar("writing", !to_terminal);
  csv_exporter exporter(request, view, output);
  exporter.write_header();
  for (row_walk walk(view, condition); walk.next();) {
    exporter.write_row();
    bar.at(static_cast<std::uint64_t>(walk.row()), static_cast<std::uint64_t>(view.rows()));
  }
  output.finish();
}

void run_export(const export_request& request) {
  check_target(request.options.table, request.csv);
  const bool parquet = is_named_as_parquet(request.csv) || !request.partition_by.empty();
  if (!request.partition_by.empty() && request.csv == "-")
    throw wrong_usage("--partition-by needs a folder's name");
  if (!parquet && (!request.database.memory.empty() || request.database.threads > 0)) {
    throw wrong_usage("--memory and --threads are for Parquet");
  }
  parquet ? run_parquet_export(request) : run_csv_export(request);
}

}  // namespace

void define_export(const verb& program) {
  auto request = std::make_shared<export_request>();
  const verb this_verb = program.add_verb("export", "Write a table as a CSV or as Parquet");
  this_verb.footer(export_help);
  add_table_argument(this_verb, request->options.table);
  this_verb.add_argument("csv", request->csv, "the CSV or Parquet to make; - is standard output")
      .shows_default();
  add_row_options(this_verb, request->options);
  add_names_option(this_verb, "--partition-by", request->partition_by,
                   "make a folder of Parquet files, one for each value of these columns");
  add_sql_options(this_verb, request->database);
  this_verb.callback([request] { run_export(*request); });
}

}  // namespace command
