// The cursor of a table that is walked for the library's own ends: afterwards it stands where it stood.
#pragma once

#include "table/table_core.h"

namespace ovf {

class kept_cursor {
 public:
  /// The core has a table open, and outlives this.
  explicit kept_cursor(table_core& core)
      : core_(core),
        row_(core.opened().currentRow()),
        at_end_(core.at_end),
        at_beginning_(core.at_beginning) {}
  ~kept_cursor() {
    if (!core_.is_open() || is_given_up_) return;
    core_.at_end = at_end_;
    core_.at_beginning = at_beginning_;
    try {
      if (row_ != 0) core_.opened().goToRow(row_);
    } catch (...) {
      // The next access says why.
    }
  }
  kept_cursor(const kept_cursor&) = delete;
  kept_cursor& operator=(const kept_cursor&) = delete;

  /// The cursor stays where it is now.
  void give_up() noexcept { is_given_up_ = true; }

 private:
  table_core& core_;
  std::uint64_t row_;
  bool at_end_;
  bool at_beginning_;
  bool is_given_up_ = false;
};

}  // namespace ovf
