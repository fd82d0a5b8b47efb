#include "row_order.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "distinct_texts.h"
#include "progress.h"
#include "row_condition.h"

namespace command {
namespace {

/// A whole number that compares as the number does; what is none comes last, and -0 is 0.
std::uint64_t key_of(double number) noexcept {
  if (std::isnan(number)) return std::numeric_limits<std::uint64_t>::max();
  constexpr std::uint64_t sign = std::uint64_t{1} << 63;
  const auto bits = std::bit_cast<std::uint64_t>(number == 0 ? 0.0 : number);
  return (bits & sign) != 0 ? ~bits : bits | sign;
}

/// A column's keys, one for each row, the smallest for the row that comes first: of its numbers, or for each
/// text its place among the different ones.
class key_column {
 public:
  key_column(const field_view& field, LONG rows) : field_(field) {
    keys_.reserve(static_cast<std::size_t>(rows));
  }

  void add(const table_view& view) {
    if (!field_.is_text) {
      keys_.push_back(key_of(view.number(field_)));
      return;
    }
    view.read_text(text_, field_);
    keys_.push_back(texts_.number_of(without_end_blanks(text_.view())));
  }

  /// After the last row.
  void finish(bool descending) {
    if (field_.is_text) {
      const std::vector<std::uint32_t> places = texts_.places();
      for (std::uint64_t& key : keys_) key = places[static_cast<std::size_t>(key)];
      texts_ = {};
    }
    if (!descending) return;
    for (std::uint64_t& key : keys_) key = ~key;
  }

  std::uint64_t of(LONG row) const noexcept { return keys_[static_cast<std::size_t>(row) - 1]; }

 private:
  field_view field_;
  std::vector<std::uint64_t> keys_;
  distinct_texts texts_;
  ovfile::text text_;
};

/// The first column's key stands beside the row: most comparisons need no more.
struct keyed_row {
  std::uint64_t key;
  LONG row;
};

/// Whether `left` stands before `right` by the keys; rows of equal keys keep their order.
class comparison {
 public:
  explicit comparison(const std::vector<key_column>& columns) : columns_(columns) {}

  bool operator()(const keyed_row& left, const keyed_row& right) const noexcept {
    if (left.key != right.key) return left.key < right.key;
    for (std::size_t i = 1; i < columns_.size(); ++i) {
      const std::uint64_t one = columns_[i].of(left.row);
      const std::uint64_t other = columns_[i].of(right.row);
      if (one != other) return one < other;
    }
    return left.row < right.row;
  }

 private:
  const std::vector<key_column>& columns_;
};

std::vector<key_column> read_keys(table_view& view, const std::vector<field_view>& columns, bool descending) {
  std::vector<key_column> keys;
  keys.reserve(columns.size());
  for (const field_view& column : columns) keys.emplace_back(column, view.rows());
  progress bar("sorting");
  for (row_walk walk(view); walk.next();) {
    for (key_column& column : keys) column.add(view);
    bar.at(static_cast<std::uint64_t>(walk.row()), static_cast<std::uint64_t>(view.rows()));
  }
  for (key_column& column : keys) column.finish(descending);
  return keys;
}

/// The keys go away with the end of this, before the table is written anew.
std::vector<keyed_row> ordered(table_view& view, const std::vector<field_view>& columns, bool descending) {
  view.require_whole_file();
  const std::vector<key_column> keys = read_keys(view, columns, descending);
  std::vector<keyed_row> order;
  order.reserve(static_cast<std::size_t>(view.rows()));
  for (LONG row = 1; row <= view.rows(); ++row) order.push_back({keys.front().of(row), row});
  std::sort(order.begin(), order.end(), comparison(keys));
  return order;
}

}  // namespace

std::vector<LONG> sorted_rows(table_view& view, const std::vector<field_view>& columns, bool descending) {
  const std::vector<keyed_row> order = ordered(view, columns, descending);
  std::vector<LONG> rows;
  rows.reserve(order.size());
  for (const keyed_row& entry : order) rows.push_back(entry.row);
  return rows;
}

}  // namespace command
