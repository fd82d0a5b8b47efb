// ovfile stats: what the columns of a table hold, in figures.
#include <memory>

#include "commands.h"
#include "progress.h"
#include "row_condition.h"
#include "stats_listing.h"
#include "table_options.h"
#include "text_output.h"

namespace command {
namespace {

constexpr const char* stats_help =
    "Tells of each column of numbers how many there are, the range, the mean, the standard deviation (of a\n"
    "sample) and a histogram from the smallest to the largest; of each column of texts how many different\n"
    "ones there are and the most frequent. Numbers from 1e30 on, up or down, and trace (1e-30) are counted\n"
    "by themselves. A CONDITION is like \"AU > 1 AND ROCK = 'ORE'\".";

struct stats_request {
  row_options options;
  bool json = false;
};

void count(table_view& view, const std::optional<row_condition>& condition, table_stats& stats) {
  progress bar("counting");
  std::string text;
  for (row_walk walk(view, condition); walk.next();) {
    ++stats.rows;
    for (column_stats& column : stats.columns) {
      if (column.field.is_text) {
        text.clear();
        view.append_text(text, column.field);
        column.texts.add(text);
      } else {
        column.numbers.add(view.number(column.field), view.is_single());
      }
    }
    bar.at(static_cast<std::uint64_t>(walk.row()), static_cast<std::uint64_t>(view.rows()));
  }
}

void fill_histograms(table_view& view, const std::optional<row_condition>& condition, table_stats& stats) {
  progress bar("drawing");
  for (row_walk walk(view, condition); walk.next();) {
    for (column_stats& column : stats.columns) {
      if (column.field.is_text) continue;
      column.numbers.add_to_histogram(view.number(column.field), view.is_single());
    }
    bar.at(static_cast<std::uint64_t>(walk.row()), static_cast<std::uint64_t>(view.rows()));
  }
}

void run_stats(const stats_request& request) {
  table_view view(request.options.table);
  text_counter::room room;
  table_stats stats;
  for (const field_view& field : view.choose(request.options.columns)) {
    stats.columns.push_back({field, {}, text_counter(room)});
  }
  const std::optional<row_condition> condition = make_condition(view, request.options.where);
  count(view, condition, stats);
  fill_histograms(view, condition, stats);
  text_output output(request.json ? meant_for::programs : meant_for::people);
  request.json ? append_stats_json(output.text(), view, stats)
               : append_stats_words(output.text(), view, stats);
  output.finish();
}

}  // namespace

void define_stats(const verb& program) {
  auto request = std::make_shared<stats_request>();
  const verb this_verb = program.add_verb("stats", "Tell what the columns of a table hold");
  this_verb.footer(stats_help);
  add_table_argument(this_verb, request->options.table);
  add_names_option(this_verb, "--columns", request->options.columns, "these columns alone, in this order");
  add_where_option(this_verb, request->options.where);
  this_verb.add_flag("--json", request->json, "as JSON");
  this_verb.callback([request] { run_stats(*request); });
}

}  // namespace command
