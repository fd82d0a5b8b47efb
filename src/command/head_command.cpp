// ovfile head: some rows of a table, in columns to read.
#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>

#include "absent.h"
#include "commands.h"
#include "failure.h"
#include "row_condition.h"
#include "shown_text.h"
#include "table_options.h"
#include "table_view.h"
#include "text_output.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* head_help =
    "Shows rows of a table in aligned columns: numbers in their shortest form, absent ones empty.\n"
    "With a CONDITION like \"AU > 1 AND ROCK = 'ORE'\" the rows that meet it are counted alone.";

struct head_request {
  row_options options;
  LONG count = 10;
  LONG from = 1;
};

/// Shows rows in two walks, one to find the columns' widths and one to print: memory does not grow with
/// the number of rows.
class row_printer {
 public:
  row_printer(const head_request& request, table_view& view)
      : request_(request),
        view_(view),
        absent_(written_absent(request.options.absent)),
        condition_(make_condition(view, request.options.where)),
        fields_(view.choose(request.options.columns)),
        widths_(fields_.size()) {}

  void print(text_output& output) {
    const auto measure = [&](std::size_t i, bool) { widths_[i] = std::max(widths_[i], length_); };
    const auto write = [&](std::size_t i, bool is_text) { append_padded(output.text(), i, is_text); };
    for_each_line(measure, [] {});
    for_each_line(write, [&] { end_line(output); });
  }

 private:
  template <class Cell, class End>
  void for_each_line(Cell cell, End end) {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      take(fields_[i].name);
      cell(i, fields_[i].is_text);
    }
    end();
    row_walk walk(view_, condition_);
    std::int64_t passed = leave_out(walk);
    const std::int64_t last = std::int64_t{request_.from} + request_.count - 1;
    while (passed < last && walk.next()) {
      if (++passed < request_.from) continue;
      for (std::size_t i = 0; i < fields_.size(); ++i) {
        raw_.clear();
        view_.append_cell(raw_, fields_[i], absent_);
        take(raw_);
        cell(i, fields_[i].is_text);
      }
      end();
    }
    if (condition_ && request_.from > 1 && passed < std::min<std::int64_t>(request_.from, last)) {
      throw failure(fmt::format("{} has no row {} that meets the condition; {} {}", view_.file(),
                                request_.from, passed, passed == 1 ? "does" : "do"));
    }
  }

  /// Where every row counts, the first ones need not be looked at. Returns how many are left out.
  LONG leave_out(row_walk& walk) const {
    if (condition_ || request_.from > view_.rows()) return 0;
    walk.start_before(request_.from);
    return request_.from - 1;
  }

  void take(std::string_view utf8) {
    cell_.clear();
    length_ = append_shown(cell_, utf8);
  }

  void append_padded(std::string& line, std::size_t i, bool is_text) const {
    if (i > 0) line += "  ";
    if (!is_text) line.append(widths_[i] - length_, ' ');
    line += cell_;
    if (is_text && i + 1 < fields_.size()) line.append(widths_[i] - length_, ' ');
  }

  static void end_line(text_output& output) {
    output.text() += '\n';
    output.pass_on();
  }

  const head_request& request_;
  table_view& view_;
  std::string absent_;
  std::optional<row_condition> condition_;
  std::vector<field_view> fields_;
  std::vector<std::size_t> widths_;
  std::string raw_;
  std::string cell_;
  std::size_t length_ = 0;
};

void run_head(const head_request& request) {
  table_view view(request.options.table);
  if (!request.options.where && request.from > std::max<LONG>(view.rows(), 1)) {
    throw failure(fmt::format("{} has no row {}; it has {}", view.file(), request.from, view.rows()));
  }
  text_output output;
  row_printer(request, view).print(output);
  output.finish();
}

}  // namespace

void define_head(const verb& program) {
  auto request = std::make_shared<head_request>();
  const verb this_verb = program.add_verb("head", "Show rows of a table");
  this_verb.footer(head_help);
  add_table_argument(this_verb, request->options.table);
  this_verb.add_number("-n,--rows", request->count, {.least = 0}, "how many rows")
      .type_name("N")
      .shows_default();
  this_verb.add_number("--from", request->from, {.least = 1}, "the first row to show")
      .type_name("ROW")
      .shows_default();
  add_row_options(this_verb, request->options);
  this_verb.callback([request] { run_head(*request); });
}

}  // namespace command
