// The fields of a schema in order, and the number of slots reserved for them. A host may make a field by
// setting something of the one just behind the last, as long as a slot is reserved for it. Indexes count
// from 1 and are taken as hosts give them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ovfile/ovfile.h"
#include "schema/schema_field.h"

namespace ovf {

class schema_fields {
 public:
  std::size_t count() const noexcept { return fields_.size(); }
  std::size_t reserved() const noexcept { return reserved_; }
  /// Raises the number of slots, never lowers it. Takes no memory: a host may ask for billions.
  void reserve(std::size_t slots) noexcept;

  /// The field to read: an empty one for a reserved slot without a field, null beyond the slots.
  const schema_field* readable(LONG index) const noexcept;
  /// The field to change, appended when `index` is the one behind the last; null when it cannot be.
  schema_field* writable(LONG index);
  /// The first field of exactly this name, 0 when there is none.
  std::size_t find(std::string_view name) const noexcept;

  auto begin() const noexcept { return fields_.begin(); }
  auto end() const noexcept { return fields_.end(); }

  void clear() noexcept;

  /// Changes whenever a field may have changed; no two lists of fields ever show the same one.
  std::uint64_t stamp() const noexcept { return stamp_; }

 private:
  /// Whether a slot is reserved for the index; `position` counts from 0.
  bool has_slot(LONG index, std::size_t& position) const noexcept;
  static std::uint64_t new_stamp() noexcept;

  std::vector<schema_field> fields_;
  std::size_t reserved_ = 0;
  std::uint64_t stamp_ = new_stamp();
};

}  // namespace ovf
