#include "stream/array_export.h"

#include <cstring>

#include "platform/object.h"

namespace ovf {
namespace {

/// What is handed out points into the library.
struct module_lock {
  module_lock() noexcept { ++module_lock_count(); }
  module_lock(const module_lock&) = delete;
  module_lock& operator=(const module_lock&) = delete;
  ~module_lock() { --module_lock_count(); }
};

/// The children of an exported structure, those released that nobody has moved out.
template <class Structure>
class family {
 public:
  family() = default;
  family(const family&) = delete;
  family& operator=(const family&) = delete;
  ~family() {
    for (Structure& each : members_) release(each);
    release(dictionary_);
  }

  void make(std::size_t children) {
    members_.resize(children);
    for (Structure& each : members_) pointers_.push_back(&each);
  }
  Structure& child(std::size_t index) noexcept { return members_[index]; }
  Structure& dictionary() noexcept { return dictionary_; }

  void tell(Structure& owner) noexcept {
    owner.n_children = static_cast<std::int64_t>(members_.size());
    owner.children = pointers_.empty() ? nullptr : pointers_.data();
    owner.dictionary = dictionary_.release != nullptr ? &dictionary_ : nullptr;
  }

 private:
  static void release(Structure& each) noexcept {
    if (each.release != nullptr) each.release(&each);
  }

  std::vector<Structure> members_;
  std::vector<Structure*> pointers_;
  Structure dictionary_{};
};

struct exported_type {
  module_lock lock;
  std::string format;
  std::string name;
  std::string metadata;
  family<ArrowSchema> parts;
};

struct exported_values {
  module_lock lock;
  column_data values;
  std::array<const void*, 3> buffers{};
  family<ArrowArray> parts;
};

template <class Owner, class Structure>
void release_owner(Structure* held) noexcept {
  held->release = nullptr;
  delete static_cast<Owner*>(std::exchange(held->private_data, nullptr));
}

void append_number(std::string& to, std::size_t number) {
  const auto value = static_cast<std::int32_t>(number);
  char bytes[sizeof value];
  std::memcpy(bytes, &value, sizeof value);
  to.append(bytes, sizeof bytes);
}

std::string encoded(const std::vector<std::pair<std::string, std::string>>& metadata) {
  std::string bytes;
  append_number(bytes, metadata.size());
  for (const auto& [key, value] : metadata) {
    for (const std::string* text : {&key, &value}) {
      append_number(bytes, text->size());
      bytes += *text;
    }
  }
  return bytes;
}

/// The array of one column; of a structure when it has no buffers of its own but a validity.
void export_values(column_data values, std::vector<column_data> children, ArrowArray& out) {
  auto owner = std::make_unique<exported_values>();
  owner->values = std::move(values);
  owner->parts.make(children.size());
  for (std::size_t i = 0; i < children.size(); ++i) {
    export_values(std::move(children[i]), {}, owner->parts.child(i));
  }
  const column_data& held = owner->values;
  if (held.dictionary != nullptr) {
    export_values(std::move(*held.dictionary), {}, owner->parts.dictionary());
  }
  for (std::size_t i = 0; i < held.buffer_count; ++i) owner->buffers[i] = held.buffers[i].data();
  ArrowArray made{};
  made.length = held.length;
  made.null_count = held.nulls;
  made.n_buffers = static_cast<std::int64_t>(held.buffer_count);
  made.buffers = owner->buffers.data();
  owner->parts.tell(made);
  made.release = &release_owner<exported_values, ArrowArray>;
  made.private_data = owner.release();
  out = made;
}

}  // namespace

void export_type(const type_description& type, ArrowSchema& out) {
  auto owner = std::make_unique<exported_type>();
  owner->format = type.format;
  owner->name = type.name;
  if (!type.metadata.empty()) owner->metadata = encoded(type.metadata);
  owner->parts.make(type.children.size());
  for (std::size_t i = 0; i < type.children.size(); ++i) {
    export_type(type.children[i], owner->parts.child(i));
  }
  if (type.dictionary != nullptr) export_type(*type.dictionary, owner->parts.dictionary());
  ArrowSchema made{};
  made.format = owner->format.c_str();
  made.name = owner->name.c_str();
  made.metadata = owner->metadata.empty() ? nullptr : owner->metadata.data();
  made.flags = type.nullable ? ARROW_FLAG_NULLABLE : 0;
  owner->parts.tell(made);
  made.release = &release_owner<exported_type, ArrowSchema>;
  made.private_data = owner.release();
  out = made;
}

void export_batch(std::vector<column_data> columns, std::int64_t rows, ArrowArray& out) {
  column_data structure;
  structure.length = rows;
  structure.buffer_count = 1;
  export_values(std::move(structure), std::move(columns), out);
}

}  // namespace ovf
