// How a stream finds its table, which a host may close or replace at any time.
#pragma once

#include "engine/table.h"

namespace ovf {

/// Keeps the object alive that holds the table, but not the table.
class table_owner {
 public:
  table_owner() = default;
  table_owner(const table_owner&) = delete;
  table_owner& operator=(const table_owner&) = delete;
  virtual ~table_owner() = default;

  /// The table that is open now; null when none is.
  virtual table* opened() const noexcept = 0;

  /// The table in that state; null when it is another one, or in another state.
  table* in_state(table_version version) const noexcept {
    table* found = opened();
    return found != nullptr && found->version() == version ? found : nullptr;
  }
};

}  // namespace ovf
