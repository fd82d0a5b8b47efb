#include "row_choice.h"

#include <algorithm>
#include <charconv>

#include "failure.h"
#include "progress.h"
#include "row_condition.h"
#include "words.h"

namespace command {
namespace {

struct row_range {
  LONG first = 0;
  LONG last = 0;
};

[[noreturn]] void refuse(const std::string& list, std::string_view piece, std::string_view problem) {
  throw wrong_usage(fmt::format("--rows {}: \"{}\": {}", list, piece, problem));
}

/// The row that a piece or one end of it names.
LONG row_in(std::string_view text, std::string_view piece, const std::string& list) {
  LONG row = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), row);
  const bool whole = !text.empty() && text.front() != '-' && read.ptr == text.data() + text.size();
  if (!whole || read.ec == std::errc::invalid_argument)
    refuse(list, piece, "expected a row or a range like 10-20");
  if (read.ec != std::errc()) refuse(list, piece, "no table has so many rows");
  if (row == 0) refuse(list, piece, "rows count from 1");
  return row;
}

row_range range_in(std::string_view piece, const std::string& list) {
  const std::size_t dash = piece.find('-');
  if (piece.empty()) refuse(list, piece, "a row or a range is missing");
  row_range range;
  range.first = row_in(piece.substr(0, dash), piece, list);
  range.last = dash == piece.npos ? range.first : row_in(piece.substr(dash + 1), piece, list);
  if (range.last < range.first) refuse(list, piece, "the range ends before it begins");
  return range;
}

}  // namespace

row_choice rows_that_pass(table_view& view, const std::optional<std::string>& condition) {
  row_choice rows;
  if (!condition) {
    view.require_whole_file();
    for (LONG row = 1; row <= view.rows(); ++row) rows.choose(row);
    return rows;
  }
  const std::optional<row_condition> meets = make_condition(view, condition);
  progress bar("looking");
  for (row_walk walk(view, meets); walk.next();) {
    rows.choose(walk.row());
    bar.at(static_cast<std::uint64_t>(walk.row()), static_cast<std::uint64_t>(view.rows()));
  }
  return rows;
}

row_choice listed_rows(const table_view& view, const std::string& list) {
  std::vector<row_range> ranges;  // a mistake anywhere in the list is told before a row that is not there
  std::size_t begin = 0;
  while (begin <= list.size()) {
    const std::size_t end = std::min(list.find(',', begin), list.size());
    ranges.push_back(range_in(std::string_view(list).substr(begin, end - begin), list));
    begin = end + 1;
  }
  row_choice rows;
  for (const row_range& range : ranges) {
    if (range.last > view.rows()) {
      const LONG missing = std::max(range.first, view.rows() + 1);
      throw failure(fmt::format("{} has no row {}; it has {}", view.file(), missing, view.rows()));
    }
    for (LONG row = range.first; row <= range.last; ++row) rows.choose(row);
  }
  return rows;
}

}  // namespace command
