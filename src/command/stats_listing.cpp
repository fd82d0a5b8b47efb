#include "stats_listing.h"

#include <algorithm>

#include "csv_text.h"
#include "encoding.h"
#include "number_text.h"
#include "shown_text.h"
#include "words.h"

namespace command {
namespace {

constexpr std::size_t frequent_texts = 5;
constexpr std::size_t longest_shown = 24;

using stats_line = std::vector<std::string>;

std::size_t length_of(std::string_view utf8) { return look_at_utf8(utf8).characters; }

/// The first cell of each line stands at the left, so does the last; the others stand at the right.
void append_aligned(std::string& out, const std::vector<stats_line>& lines) {
  std::vector<std::size_t> widths(lines.front().size());
  for (const stats_line& cells : lines) {
    for (std::size_t i = 0; i < cells.size(); ++i) widths[i] = std::max(widths[i], length_of(cells[i]));
  }
  for (const stats_line& cells : lines) {
    const std::size_t begin = out.size();
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string blanks(widths[i] - length_of(cells[i]), ' ');
      const bool right = i > 0 && i + 1 < cells.size();
      out += (i > 0 ? "  " : "") + (right ? blanks + cells[i] : cells[i] + blanks);
    }
    out.erase(std::max(out.find_last_not_of(' ') + 1, begin));
    out += '\n';
  }
}

/// A number of the column as the table keeps it.
std::string kept_text(double value, bool single) {
  return single ? number_text(static_cast<float>(value)) : number_text(value);
}

/// A number that was calculated: no more digits than anybody reads.
std::string readable(double value, bool single) {
  return single ? number_text(static_cast<float>(value)) : fmt::format("{:.10g}", value);
}

stats_line number_line(const column_stats& column, bool single) {
  const number_stats& stats = column.numbers;
  const bool any = stats.values() > 0;
  return {column.field.name,
          std::to_string(stats.values()),
          std::to_string(stats.absent()),
          std::to_string(stats.trace()),
          std::to_string(stats.special()),
          any ? kept_text(stats.min(), single) : "",
          any ? kept_text(stats.max(), single) : "",
          any ? readable(stats.mean(), single) : "",
          stats.values() > 1 ? readable(stats.deviation(), single) : "",
          stats.bars()};
}

/// What may stand on a terminal, not too long.
std::string shortened(std::string_view utf8) {
  std::string out;
  bool valid = true;
  for (std::size_t length = 0; !utf8.empty(); ++length) {
    if (length == longest_shown) return out + "…";
    const std::string_view before = utf8;
    const std::uint32_t c = ovfile::take_utf8(utf8, valid);
    out += is_control(c) ? "." : before.substr(0, before.size() - utf8.size());
  }
  return out;
}

stats_line text_line(const column_stats& column) {
  const text_counter& stats = column.texts;
  std::string frequent;
  for (const auto& [text, count] : stats.most_frequent(frequent_texts)) {
    if (!frequent.empty()) frequent += ", ";
    append_csv_cell(frequent, shortened(text));
    frequent += fmt::format(" {}", count);
  }
  return {column.field.name, std::to_string(stats.values()), std::to_string(stats.blank()),
          fmt::format("{}{}", stats.exact() ? "" : "more than ", stats.distinct()), frequent};
}

std::string json_number(double value, bool there, bool single) {
  return there ? kept_text(value, single) : "null";
}

std::string bin_counts(const number_stats& stats) {
  std::string out;
  for (const std::uint64_t count : stats.histogram()) {
    out += (out.empty() ? "" : ", ") + std::to_string(count);
  }
  return out;
}

std::string json_of(const number_stats& stats, bool single) {
  const bool any = stats.values() > 0;
  return fmt::format(
      R"("values": {}, "absent": {}, "trace": {}, "special": {}, "min": {}, "max": {}, "mean": {}, )"
      R"("deviation": {}, "histogram": [{}])",
      stats.values(), stats.absent(), stats.trace(), stats.special(), json_number(stats.min(), any, single),
      json_number(stats.max(), any, single), json_number(stats.mean(), any, single),
      json_number(stats.values() > 1 ? stats.deviation() : 0, stats.values() > 1, single),
      any ? bin_counts(stats) : "");
}

std::string json_of(const text_counter& stats) {
  std::string frequent;
  for (const auto& [text, count] : stats.most_frequent(frequent_texts)) {
    frequent +=
        fmt::format(R"({}{{"text": {}, "rows": {}}})", frequent.empty() ? "" : ", ", json_text(text), count);
  }
  return fmt::format(R"("values": {}, "blank": {}, "distinct": {}, "exact": {}, "most_frequent": [{}])",
                     stats.values(), stats.blank(), stats.distinct(), stats.exact(), frequent);
}

}  // namespace

void append_stats_words(std::string& out, const table_view& view, const table_stats& stats) {
  std::vector<stats_line> numbers = {
      {"number", "values", "absent", "trace", "special", "min", "max", "mean", "deviation", "histogram"}};
  std::vector<stats_line> texts = {{"text", "values", "blank", "distinct", "most frequent"}};
  for (const column_stats& column : stats.columns) {
    column.field.is_text ? texts.push_back(text_line(column))
                         : numbers.push_back(number_line(column, view.is_single()));
  }
  out += fmt::format("{} of {}\n", stats.rows, counted(view.rows(), "row"));
  for (const auto* lines : {&numbers, &texts}) {
    if (lines->size() == 1) continue;
    out += '\n';
    append_aligned(out, *lines);
  }
}

void append_stats_json(std::string& out, const table_view& view, const table_stats& stats) {
  out += fmt::format("{{\n  \"file\": {},\n  \"rows\": {},\n  \"rows_in_table\": {},\n  \"columns\": [",
                     json_text(view.file()), stats.rows, view.rows());
  const char* separator = "\n    ";
  for (const column_stats& column : stats.columns) {
    out +=
        fmt::format(R"({}{{"name": {}, "type": "{}", {}}})", separator, json_text(column.field.name),
                    column.field.is_text ? "text" : "number",
                    column.field.is_text ? json_of(column.texts) : json_of(column.numbers, view.is_single()));
    separator = ",\n    ";
  }
  out += stats.columns.empty() ? "]\n}\n" : "\n  ]\n}\n";
}

}  // namespace command
