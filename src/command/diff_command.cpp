// ovfile diff: what two tables do not have in common.
#include <memory>

#include "commands.h"
#include "decimal.h"
#include "diff_columns.h"
#include "diff_rows.h"
#include "failure.h"
#include "table_options.h"
#include "text_output.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* diff_help =
    "Compares two tables: precision, description and columns, then the rows, in order or by a key whose\n"
    "rows belong together wherever they stand. Lines of the old table begin with -, of the new one with +,\n"
    "and rows with their number. Exit status: 0 equal, 1 different, 2 failed or wrong usage.";

struct diff_request {
  std::string old_table;
  std::string new_table;
  std::vector<std::string> key;
  std::string tolerance = "0";
  bool ignore_description = false;
};

double read_tolerance(const std::string& words) {
  const number_cell number = read_number(words);
  if (number.is_number && number.value >= 0) return number.value;
  throw wrong_usage(fmt::format("--tolerance {}: expected a number of 0 or more{}{}", words,
                                number.is_number ? "" : "; it ",
                                number.is_number ? "" : number_problem(words)));
}

bool differ(const diff_request& request, text_output& output) {
  const double tolerance = read_tolerance(request.tolerance);
  table_view before(request.old_table);
  table_view after(request.new_table);
  const std::vector<column_pair> columns = common_columns(before, after);
  diff_output out(output, before.file(), after.file());
  compare_definitions(before, after, request.ignore_description, out);
  row_comparison rows(before, after, columns, tolerance, out);
  if (request.key.empty()) {
    rows.compare_in_order();
  } else {
    // What is known of each row takes memory.
    before.require_whole_file();
    after.require_whole_file();
    rows.compare_by_key(key_columns(before, after, columns, request.key));
  }
  return out.any();
}

/// Whatever ends the comparison is no difference.
void run_diff(const diff_request& request) {
  bool found = false;
  try {
    text_output output(meant_for::people);
    found = differ(request, output);
    output.finish();
  } catch (const broken_pipe&) {
    found = true;  // nothing is written of tables that are equal
  } catch (const wrong_usage&) {
    throw;
  } catch (const std::exception& error) {
    throw no_comparison(words_of(error));
  }
  if (found) throw difference();
}

}  // namespace

void define_diff(const verb& program) {
  auto request = std::make_shared<diff_request>();
  const verb this_verb = program.add_verb("diff", "Compare two tables");
  this_verb.footer(diff_help);
  this_verb.add_argument("old", request->old_table, "a table file").required();
  this_verb.add_argument("new", request->new_table, "another one").required();
  add_names_option(this_verb, "--key", request->key, "rows with the same values here belong together");
  this_verb.add_option("--tolerance", request->tolerance, "numbers that are this near are equal")
      .type_name("X")
      .shows_default();
  this_verb.add_flag("--ignore-description", request->ignore_description, "do not compare the descriptions");
  this_verb.callback([request] { run_diff(*request); });
}

}  // namespace command
