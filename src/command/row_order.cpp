#include "row_order.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>

#include "progress.h"
#include "row_condition.h"

namespace command {
namespace {

/// A column's keys, one for each row: its numbers, or for each text its place among the different ones.
class key_column {
 public:
  explicit key_column(const field_view& field) : field_(field) {}

  void add(const table_view& view) {
    if (!field_.is_text) {
      keys_.push_back(view.number(field_));
      return;
    }
    text_.clear();
    view.append_text(text_, field_);
    const auto place = numbers_.emplace(ovfile::to_wide(text_), numbers_.size()).first;
    keys_.push_back(static_cast<double>(place->second));
  }

  /// After the last row: from the order of appearance to the order of the texts.
  void rank_texts() {
    if (!field_.is_text) return;
    using entry = std::unordered_map<ovfile::wide_string, std::size_t>::value_type;
    std::vector<const entry*> texts;
    for (const entry& text : numbers_) texts.push_back(&text);
    std::sort(texts.begin(), texts.end(),
              [](const entry* left, const entry* right) { return left->first < right->first; });
    std::vector<double> ranks(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) ranks[texts[i]->second] = static_cast<double>(i);
    for (double& key : keys_) key = ranks[static_cast<std::size_t>(key)];
    numbers_.clear();
  }

  double of(LONG row) const noexcept { return keys_[static_cast<std::size_t>(row) - 1]; }

 private:
  field_view field_;
  std::vector<double> keys_;
  std::unordered_map<ovfile::wide_string, std::size_t> numbers_;
  std::string text_;
};

bool goes_before(double left, double right) noexcept {
  if (std::isnan(left)) return false;
  return std::isnan(right) || left < right;
}

/// The first column's key stands beside the row: most comparisons need no more.
struct keyed_row {
  double key;
  LONG row;
};

/// Whether `left` stands before `right` by the keys; rows of equal keys keep their order.
class comparison {
 public:
  comparison(const std::vector<key_column>& columns, bool descending)
      : columns_(columns), descending_(descending) {}

  bool operator()(const keyed_row& left, const keyed_row& right) const noexcept {
    if (goes_before(left.key, right.key)) return !descending_;
    if (goes_before(right.key, left.key)) return descending_;
    for (std::size_t i = 1; i < columns_.size(); ++i) {
      const double one = columns_[i].of(left.row);
      const double other = columns_[i].of(right.row);
      if (goes_before(one, other)) return !descending_;
      if (goes_before(other, one)) return descending_;
    }
    return left.row < right.row;
  }

 private:
  const std::vector<key_column>& columns_;
  bool descending_;
};

}  // namespace

std::vector<LONG> sorted_rows(table_view& view, const std::vector<field_view>& columns, bool descending) {
  std::vector<key_column> keys(columns.begin(), columns.end());
  progress bar("sorting");
  for (row_walk walk(view); walk.next();) {
    for (key_column& column : keys) column.add(view);
    bar.at(static_cast<std::uint64_t>(walk.row()), static_cast<std::uint64_t>(view.rows()));
  }
  for (key_column& column : keys) column.rank_texts();
  std::vector<keyed_row> order;
  order.reserve(static_cast<std::size_t>(view.rows()));
  for (LONG row = 1; row <= view.rows(); ++row) order.push_back({keys.front().of(row), row});
  std::sort(order.begin(), order.end(), comparison(keys, descending));
  std::vector<LONG> rows;
  rows.reserve(order.size());
  for (const keyed_row& entry : order) rows.push_back(entry.row);
  return rows;
}

}  // namespace command
