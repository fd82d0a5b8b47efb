// ovfile sql: a question to tables, in SQL.
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "commands.h"
#include "failure.h"
#include "parquet/parquet_file.h"
#include "progress.h"
#include "replacement.h"
#include "sql/copy_target.h"
#include "sql/number_texts.h"
#include "sql/piped_input.h"
#include "sql/query_table.h"
#include "sql/sql_database.h"
#include "sql/sql_options.h"
#include "sql/sql_output.h"
#include "sql/sql_statements.h"
#include "table_limits.h"
#include "text_output.h"
#include "utf8_path.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* sql_help =
    "Answers a question in SQL, in which the names of table files stand for tables: select BHID, avg(CU) "
    "from\n"
    "'assays.ovt' join 'collars.ovt' using (BHID) group by BHID. CSV and Parquet files are read likewise.\n"
    "read_ovt('assays.ovt', condition := 'CU > 1') takes a condition as --where does. Of several "
    "statements,\n"
    "which semicolons separate, the last one's rows are written. An absent number or text is NULL.\n"
    "It needs DuckDB's library, which `ovfile setup sql` gets.";

struct sql_request {
  std::string statements;
  std::string form;  ///< table, csv, json, parquet; empty: by the output's name
  std::string output = "-";
  sql_options options;
  query_table_request made;
};

bool makes_table(const sql_request& request) { return is_named_as_table(request.output); }

std::string form_of(const sql_request& request) {
  if (!request.form.empty()) return request.form;
  if (is_named_as_csv(request.output)) return "csv";
  if (is_named_as_parquet(request.output)) return "parquet";
  return is_named_as_json(request.output) ? "json" : "table";
}

/// A file would hold something else than its name says.
void check_suffix(const sql_request& request) {
  const std::filesystem::path suffix = path_of_utf8(request.output).extension();
  if (!request.form.empty() || form_of(request) != "table" || makes_table(request)) return;
  if (utf8_of_path(suffix).size() < 2 || ends_in(request.output, ".txt")) return;
  throw wrong_usage(fmt::format(
      "{}: a name that ends in .ovt, .csv, .json, .parquet, .pq or .txt tells the form; any other needs "
      "-o table, csv, json or parquet",
      request.output));
}

/// `asked` are all statements as the user wrote them.
void write_to_table(sql_database& database, const sql_request& request, const std::string& statement,
                    const std::vector<std::string>& asked) {
  const sql_shape shape = database.shape_of(statement);
  if (!shape.is_query) throw failure("this statement gives no rows to make a table of");
  // The rows are looked at twice, and the second time has to find the same.
  database.execute(fmt::format("create temp table ovfile_rows as select * from (\n{}\n) as q({})", statement,
                               joined(own_column_names(shape.columns.size()), ", ")),
                   1);
  std::vector<std::string> notes;
  if (auto note = note_number_texts(database, asked, "ovfile_rows", shape.columns)) {
    notes.push_back(*std::move(note));
  }
  query_table_request made = request.made;
  made.nan_is_absent = request.options.absent_value() == absent_value::nan;
  make_table(database, "ovfile_rows", shape.columns, request.output, made, notes);
  for (const std::string& note : notes) say(note);
}

void write_to_parquet(sql_database& database, const sql_request& request, const std::string& statement) {
  if (request.output == "-") throw wrong_usage("-o parquet needs --output FILE");
  if (!database.shape_of(statement).is_query) throw failure("this statement gives no rows to write");
  write_parquet(database, statement, request.output);
}

void write_text(sql_database& database, const sql_request& request, const std::string& statement) {
  const std::string form = form_of(request);
  std::optional<sql_rows> rows(std::in_place, database, statement, form == "json");
  text_output output(request.output);
  const row_format format = form == "csv"    ? row_format::csv
                            : form == "json" ? row_format::json
                                             : row_format::table;
  write_rows(*rows, format, request.options.shown_absent(), output);
  rows.reset();  // the file may be one that it holds open
  output.finish();
}

/// A table's file would be written over with something that is none.
void refuse_copy_to_table(sql_database& database, const std::string& statement) {
  const std::string target = copy_target(statement);
  if (target.empty()) return;
  std::string name;
  try {
    sql_result found = database.run(fmt::format("select cast((\n{}\n) as varchar)", target));
    if (found.next()) name = found.text(0, 0);
  } catch (const failure&) {
    return;  // the statement tells it better
  }
  if (!is_named_as_table(name)) return;
  throw failure(fmt::format("COPY makes no table of {0}: give the query alone and --output {0}", name));
}

void run_sql(const sql_request& request) {
  const std::vector<std::string> statements = split_statements(request.statements);
  if (statements.empty()) throw wrong_usage("there is no statement");
  if (makes_table(request) && !request.form.empty()) {
    throw wrong_usage(request.output + " is a table's name; -o does not go with it");
  }
  check_suffix(request);
  if (request.made.description) check_description("--description", *request.made.description);
  hold_piped_input(statements);
  refuse_pipes(statements);
  sql_database database(request.options.settings());
  database.show("asking");
  for (std::size_t i = 0; i + 1 < statements.size(); ++i) {
    refuse_copy_to_table(database, statements[i]);
    database.execute(statements[i]);
  }
  refuse_copy_to_table(database, statements.back());
  const std::string last = database.settled(statements.back());
  if (makes_table(request)) {
    write_to_table(database, request, last, statements);
  } else if (form_of(request) == "parquet") {
    write_to_parquet(database, request, last);
  } else {
    write_text(database, request, last);
  }
}

}  // namespace

void define_sql(const verb& program) {
  auto request = std::make_shared<sql_request>();
  const verb this_verb = program.add_verb("sql", "Ask tables a question in SQL");
  this_verb.footer(sql_help);
  this_verb.add_argument("statement", request->statements, "the statement").required();
  this_verb
      .add_option("-o,--format", request->form, "table, csv, json or parquet; by the output's name otherwise")
      .type_name("FORMAT")
      .one_of_described({"table", "csv", "json", "parquet"});
  this_verb
      .add_option("--output", request->output, "the file to make, also a table (.ovt); - is standard output")
      .type_name("FILE")
      .shows_default();
  add_sql_options(this_verb, request->options);
  this_verb
      .add_option("--absent", request->options.absent,
                  "what an absent value is: null, nan, keep (-1e30), or the text that is written for NULL")
      .type_name("WORD");
  this_verb.add_flag("--single", request->made.single, "a table that is made has numbers of 4 bytes");
  add_description_option(this_verb, request->made.description);
  this_verb.callback([request] { run_sql(*request); });
}

}  // namespace command
