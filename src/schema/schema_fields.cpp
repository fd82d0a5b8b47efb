#include "schema/schema_fields.h"

#include <algorithm>
#include <atomic>

namespace ovf {

std::uint64_t schema_fields::new_stamp() noexcept {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

void schema_fields::reserve(std::size_t slots) noexcept { reserved_ = std::max(reserved_, slots); }

bool schema_fields::has_slot(LONG index, std::size_t& position) const noexcept {
  if (index < 1) return false;
  position = static_cast<std::size_t>(index) - 1;
  return position < reserved_;
}

const schema_field* schema_fields::readable(LONG index) const noexcept {
  static const schema_field empty;
  std::size_t position = 0;
  if (!has_slot(index, position)) return nullptr;
  return position < fields_.size() ? &fields_[position] : &empty;
}

schema_field* schema_fields::writable(LONG index) {
  std::size_t position = 0;
  if (!has_slot(index, position) || position > fields_.size()) return nullptr;
  stamp_ = new_stamp();
  if (position == fields_.size()) fields_.emplace_back();
  return &fields_[position];
}

std::size_t schema_fields::find(std::string_view name) const noexcept {
  const auto found = std::find_if(fields_.begin(), fields_.end(),
                                  [name](const schema_field& field) { return field.name == name; });
  return found == fields_.end() ? 0 : static_cast<std::size_t>(found - fields_.begin()) + 1;
}

void schema_fields::clear() noexcept {
  stamp_ = new_stamp();
  fields_.clear();
  reserved_ = 0;
}

}  // namespace ovf
