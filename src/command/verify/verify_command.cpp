// ovfile verify: whether tables are whole, and what can be saved of one that is not.
#include <algorithm>
#include <memory>

#include "commands.h"
#include "failure.h"
#include "parquet/parquet_file.h"
#include "replacement.h"
#include "text_output.h"
#include "verify/salvage.h"
#include "verify/table_check.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* verify_help =
    "Tells whether tables are whole: the header, its columns, the length of the file, every row. With "
    "--salvage\n"
    "what can be read of one is written to a new table. Exit status: 0 whole, 1 not, 2 failed.";

struct verify_request {
  std::vector<std::string> tables;
  std::string target;
  bool json = false;
};

std::string place_of(const finding& found) {
  std::string place;
  if (found.row != 0) place += fmt::format(", row {}", found.row);
  if (!found.column.empty()) place += ", column " + found.column;
  return place;
}

void append_words(std::string& out, const std::string& file, const check_result& result) {
  if (!result.is_read) {
    out += file + ": not read\n";
    return;
  }
  out += fmt::format("{}: {}, {}\n", file, result.is_whole() ? "whole" : "not whole",
                     counted(result.rows_in_file - static_cast<long long>(result.lost.size()), "row"));
  for (const finding& found : result.findings) {
    out += fmt::format("  {}{}{}: {}\n", found.is_damage ? "" : "note: ", file, place_of(found), found.what);
  }
  if (result.more > 0) out += fmt::format("  and {} more of rows\n", result.more);
}

void append_json(std::string& out, const std::string& file, const check_result& result) {
  const char* const whole = !result.is_read ? "null" : result.is_whole() ? "true" : "false";
  out += fmt::format("{{\"file\": {}, \"whole\": {}, \"rows\": {}, \"rows_in_file\": {}, \"findings\": [",
                     json_text(file), whole, result.rows, result.rows_in_file);
  for (std::size_t i = 0; i < result.findings.size(); ++i) {
    const finding& found = result.findings[i];
    out += fmt::format("{}{{\"what\": {}, \"damage\": {}", i == 0 ? "" : ", ", json_text(found.what),
                       found.is_damage);
    if (found.row != 0) out += fmt::format(", \"row\": {}", found.row);
    if (!found.column.empty()) out += ", \"column\": " + json_text(found.column);
    out += '}';
  }
  out += fmt::format("], \"more\": {}}}", result.more);
}

/// What is known of a table that could not be read at all as well. Returns whether it could.
bool look_at(const std::string& file, check_result& result) {
  try {
    result = check_table(file);
    return true;
  } catch (const failure& error) {
    result = check_result();
    result.is_read = false;
    result.findings.push_back({error.what()});
    say(error.what());
    return false;
  }
}

enum class verdict { whole, not_whole, unread };

verdict verify_all(const verify_request& request) {
  text_output output(request.json ? meant_for::programs : meant_for::people);
  verdict all = verdict::whole;
  check_result result;
  if (request.json) output.text() += '[';
  for (std::size_t i = 0; i < request.tables.size(); ++i) {
    const std::string& file = request.tables[i];
    const bool is_read = look_at(file, result);
    all = std::max(all, !is_read ? verdict::unread : result.is_whole() ? verdict::whole : verdict::not_whole);
    if (request.json) {
      output.text() += i == 0 ? "" : ",\n ";
      append_json(output.text(), file, result);
    } else {
      append_words(output.text(), file, result);
    }
  }
  if (request.json) output.text() += "]\n";
  output.finish();
  if (request.target.empty() || all == verdict::unread) return all;
  salvage(request.tables.front(), result, request.target);
  return all;
}

void run_verify(const verify_request& request) {
  if (!request.target.empty() && request.tables.size() > 1) throw wrong_usage("--salvage is for one table");
  if (is_named_as_csv(request.target) || is_named_as_parquet(request.target) ||
      promised_format(request.target) != nullptr) {
    throw wrong_usage(request.target + ": --salvage makes a table, and the name is another file's");
  }
  if (!request.target.empty() && same_file(request.tables.front(), request.target)) {
    throw wrong_usage("the table and what is saved of it are one file: " + request.target);
  }
  verdict all = verdict::whole;
  try {
    all = verify_all(request);
  } catch (const std::exception& error) {
    throw no_comparison(words_of(error));
  }
  if (all == verdict::unread) throw no_comparison("not all tables could be read");
  if (all == verdict::not_whole) throw difference();
}

}  // namespace

void define_verify(const verb& program) {
  auto request = std::make_shared<verify_request>();
  const verb this_verb =
      program.add_verb("verify", "Tell whether tables are whole, and save what can be read");
  this_verb.footer(verify_help);
  this_verb.add_arguments("tables", request->tables, "table files").required();
  this_verb.add_option("--salvage", request->target, "a new table for what can be read").type_name("TABLE");
  this_verb.add_flag("--json", request->json, "as JSON");
  this_verb.callback([request] { run_verify(*request); });
}

}  // namespace command
