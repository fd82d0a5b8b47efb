#include "diff_rows.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "csv_text.h"
#include "progress.h"
#include "row_choice.h"

namespace command {
namespace {

/// For the rows of the old table that are compared at one time.
constexpr std::size_t piece_bytes = std::size_t{256} << 20;

/// Rows by their keys; those with one key in their order.
class key_index {
 public:
  /// Rows come in their order.
  void add(const std::string& key, LONG row) {
    next_.resize(static_cast<std::size_t>(row) + 1);
    const auto [place, is_new] = chains_.try_emplace(key, chain{row, row});
    if (is_new) return;
    next_[static_cast<std::size_t>(place->second.last)] = row;
    place->second.last = row;
  }
  /// Takes the first row that has the key and was not taken before; 0: there is none.
  LONG take(const std::string& key) {
    const auto found = chains_.find(key);
    if (found == chains_.end()) return 0;
    const LONG row = found->second.first;
    if (row != 0) found->second.first = next_[static_cast<std::size_t>(row)];
    return row;
  }

 private:
  struct chain {
    LONG first;
    LONG last;
  };
  std::unordered_map<std::string, chain> chains_;
  std::vector<LONG> next_;  ///< by row: the next one with its key; 0: it is the last
};

std::string names_of(const std::vector<column_pair>& columns) {
  std::string names;
  for (const column_pair& pair : columns) {
    if (!names.empty()) names += ',';
    append_csv_cell(names, pair.before.name);
  }
  return names;
}

}  // namespace

/// The rows that are read, of all that will be.
class row_comparison::steps {
 public:
  explicit steps(std::uint64_t all) : bar_("comparing"), all_(all) {}
  void step() { bar_.at(++done_, all_); }

 private:
  progress bar_;
  std::uint64_t all_;
  std::uint64_t done_ = 0;
};

/// Rows of the old table that wait for those of the new one.
class row_comparison::piece {
 public:
  struct entry {
    LONG before;
    LONG after;                ///< 0: there is none
    std::string differs = {};  ///< the line of the new table when it does
  };

  explicit piece(const diff_side& side)
      : columns_(side.columns()),
        most_(std::max<std::size_t>(piece_bytes / (side.bytes_of_row() + sizeof(entry)), 1)) {}

  bool is_full() const noexcept { return entries_.size() == most_; }
  void add(const diff_side& side, LONG before, LONG after) {
    entries_.push_back({before, after});
    if (cells_.size() < entries_.size() * columns_) cells_.resize(entries_.size() * columns_);
    side.read(cells(entries_.size() - 1));
  }
  void clear() noexcept { entries_.clear(); }

  std::size_t size() const noexcept { return entries_.size(); }
  entry& operator[](std::size_t index) noexcept { return entries_[index]; }
  diff_cell* cells(std::size_t index) noexcept { return cells_.data() + index * columns_; }

  /// The entries that have a row of the new table, in the order of these.
  std::vector<std::size_t> in_order_of_after() const {
    std::vector<std::size_t> order;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      if (entries_[i].after != 0) order.push_back(i);
    }
    std::sort(order.begin(), order.end(), [this](std::size_t left, std::size_t right) {
      return entries_[left].after < entries_[right].after;
    });
    return order;
  }

 private:
  std::size_t columns_;
  std::size_t most_;
  std::vector<entry> entries_;
  std::vector<diff_cell> cells_;
};

row_comparison::row_comparison(table_view& before, table_view& after, const std::vector<column_pair>& columns,
                               double tolerance, diff_output& out)
    : before_(before, columns, &column_pair::before, before.is_single() != after.is_single()),
      after_(after, columns, &column_pair::after, before.is_single() != after.is_single()),
      tolerance_(tolerance),
      out_(out) {
  out_.begin(columns.empty() ? "rows" : "rows: " + names_of(columns));
}

bool row_comparison::same(const diff_cell* before, const diff_cell* after) const {
  for (std::size_t i = 0; i < before_.columns(); ++i) {
    if (before_.is_text(i)) {
      if (before[i].text != after[i].text) return false;
      continue;
    }
    const double one = before[i].number;
    const double other = after[i].number;
    const bool absent = before_.is_absent_here(one);
    if (absent != after_.is_absent_here(other)) return false;
    if (absent || one == other || (std::isnan(one) && std::isnan(other))) continue;
    if (!(std::fabs(one - other) <= tolerance_)) return false;
  }
  return true;
}

void row_comparison::compare_in_order() {
  const LONG rows = std::max(before_.rows(), after_.rows());
  std::vector<diff_cell> one(before_.columns());
  std::vector<diff_cell> other(after_.columns());
  steps work(static_cast<std::uint64_t>(rows));
  for (LONG row = 1; row <= rows; ++row) {
    const bool in_before = row <= before_.rows();
    const bool in_after = row <= after_.rows();
    if (in_before) {
      before_.go_to(row);
      before_.read(one.data());
    }
    if (in_after) {
      after_.go_to(row);
      after_.read(other.data());
    }
    work.step();
    if (in_before && in_after && same(one.data(), other.data())) continue;
    if (in_before) out_.add('-', before_.line(row, one.data()));
    if (in_after) out_.add('+', after_.line(row, other.data()));
  }
}

void row_comparison::compare_piece(piece& rows, steps& work) {
  std::vector<diff_cell> other(after_.columns());
  for (const std::size_t i : rows.in_order_of_after()) {
    after_.go_to(rows[i].after);
    after_.read(other.data());
    if (!same(rows.cells(i), other.data())) rows[i].differs = after_.line(rows[i].after, other.data());
    work.step();
  }
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].after != 0 && rows[i].differs.empty()) continue;
    out_.add('-', before_.line(rows[i].before, rows.cells(i)));
    if (rows[i].after != 0) out_.add('+', rows[i].differs);
  }
  rows.clear();
}

void row_comparison::compare_by_key(const std::vector<column_pair>& key) {
  key_index index;
  row_choice met;
  std::string words;
  // The new table's rows are read once for their keys and once for their cells.
  steps work(static_cast<std::uint64_t>(before_.rows()) + 2 * static_cast<std::uint64_t>(after_.rows()));
  for (LONG row = 1; row <= after_.rows(); ++row) {
    after_.go_to(row);
    after_.read_key(words, key);
    index.add(words, row);
    work.step();
  }
  piece rows(before_);
  for (LONG row = 1; row <= before_.rows(); ++row) {
    before_.go_to(row);
    before_.read_key(words, key);
    const LONG other = index.take(words);
    if (other != 0) met.choose(other);
    rows.add(before_, row, other);
    if (rows.is_full()) compare_piece(rows, work);
    work.step();
  }
  compare_piece(rows, work);
  std::vector<diff_cell> cells(after_.columns());
  for (LONG row = 1; row <= after_.rows(); ++row) {
    if (met.has(row)) continue;
    after_.go_to(row);
    after_.read(cells.data());
    out_.add('+', after_.line(row, cells.data()));
    work.step();
  }
}

}  // namespace command
