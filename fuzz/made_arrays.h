// Types and arrays of streams out of an input's bytes, well made or bent. Nobody tells how large a buffer is,
// so a bent array still has the bytes that it promises, or promises what can be seen to be impossible.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "ovfile/stream.h"

namespace ovfuzz {

/// The input, byte by byte; zeros behind its end.
class input_bytes {
 public:
  input_bytes(const std::uint8_t* data, std::size_t size) : at_(data), left_(size) {}

  std::uint8_t take() {
    if (left_ == 0) return 0;
    --left_;
    return *at_++;
  }
  bool is_empty() const { return left_ == 0; }
  /// One of 256 / `in`.
  bool rarely(unsigned in) { return take() % in == in - 1; }
  template <class Value, std::size_t N>
  Value one_of(const std::array<Value, N>& from) {
    return from[take() % N];
  }
  /// `size` bytes: up to 31 of the input's over and over.
  std::vector<std::uint8_t> fill(std::size_t size) {
    std::vector<std::uint8_t> pattern(1 + take() % 31U);
    for (std::uint8_t& each : pattern) each = take();
    std::vector<std::uint8_t> bytes(size);
    for (std::size_t i = 0; i < size; ++i) bytes[i] = pattern[i % pattern.size()];
    return bytes;
  }

 private:
  const std::uint8_t* at_;
  std::size_t left_;
};

/// The type of a column, as the stream told it.
struct made_type {
  std::string name;
  std::string format;
  std::string dictionary;  ///< the format of its values; empty: none
};

/// A structure of the interface with what it owns; counts in `alive` until it is released.
template <class Structure>
struct holder {
  int* alive = nullptr;
  made_type type;
  std::vector<Structure> children;
  std::vector<Structure*> pointers;
  Structure dictionary{};
  std::vector<std::vector<std::uint8_t>> memory;
  std::array<const void*, 4> buffers{};

  static holder& in(Structure& out, int& alive) {
    auto* made = new holder;
    made->alive = &alive;
    ++alive;
    out = {};
    out.private_data = made;
    out.release = [](Structure* held) {
      auto* owner = static_cast<holder*>(held->private_data);
      for (Structure& each : owner->children) {
        if (each.release != nullptr) each.release(&each);
      }
      if (owner->dictionary.release != nullptr) owner->dictionary.release(&owner->dictionary);
      --*owner->alive;
      held->release = nullptr;
      delete owner;
    };
    return *made;
  }
  void tell(Structure& out) {
    for (Structure& each : children) pointers.push_back(&each);
    out.children = pointers.data();
    out.n_children = static_cast<std::int64_t>(pointers.size());
    out.dictionary = dictionary.release == nullptr ? nullptr : &dictionary;
  }
};

class array_maker {
 public:
  array_maker(input_bytes& input, int& alive) : input_(input), alive_(alive) {}

  void make_types(const std::vector<made_type>& types, ArrowSchema& out) {
    auto& made = holder<ArrowSchema>::in(out, alive_);
    made.children.resize(types.size());
    for (std::size_t i = 0; i < types.size(); ++i) make_type(types[i], made.children[i]);
    made.tell(out);
    out.format = "+s";
    if (input_.rarely(32)) bend(out);
  }

  void make_batch(const std::vector<made_type>& types, ArrowArray& out) {
    auto& made = holder<ArrowArray>::in(out, alive_);
    out.length = input_.rarely(8) ? input_.take() * std::int64_t{37} : input_.take() % 24;
    out.offset = input_.rarely(8) ? input_.take() % 16 : 0;
    made.children.resize(types.size());
    for (std::size_t i = 0; i < types.size(); ++i) {
      make_column(types[i], out.offset + out.length, made.children[i]);
    }
    made.tell(out);
    out.n_buffers = 1;
    out.buffers = made.buffers.data();
    if (input_.rarely(16)) set_validity(out, made, out.offset + out.length);
    if (input_.rarely(16)) bend_batch(out);
  }

 private:
  void make_type(const made_type& type, ArrowSchema& out) {
    auto& made = holder<ArrowSchema>::in(out, alive_);
    made.type = type;
    if (!type.dictionary.empty()) make_type({"", type.dictionary, ""}, made.dictionary);
    made.tell(out);
    out.format = made.type.format.c_str();
    out.name = made.type.name.c_str();
    out.flags = ARROW_FLAG_NULLABLE;
    if (input_.rarely(64)) bend(out);
  }

  void bend(ArrowSchema& out) {
    switch (input_.take() % 7) {
      case 0:
        out.format = nullptr;
        break;
      case 1:
        out.name = nullptr;
        break;
      case 2:
        out.n_children = -1;
        break;
      case 3:
        out.children = nullptr;
        out.n_children = 0;
        break;
      case 4:
        out.format = "+l";
        break;
      case 5:
        if (out.n_children > 0) out.children[0] = nullptr;
        break;
      default:
        if (out.n_children > 0) out.children[0]->release(out.children[0]);
    }
  }

  void make_column(const made_type& type, std::int64_t rows, ArrowArray& out) {
    auto& made = holder<ArrowArray>::in(out, alive_);
    out.length = rows;
    out.offset = input_.rarely(8) ? input_.take() % 16 : 0;
    put_values(type.format, out, made);
    if (!type.dictionary.empty()) make_column({"", type.dictionary, ""}, input_.take() % 16, made.dictionary);
    made.tell(out);
    if (input_.rarely(32)) bend_column(out);
  }

  void put_values(const std::string& format, ArrowArray& out, holder<ArrowArray>& made) {
    const auto count = static_cast<std::size_t>(out.offset + out.length);
    out.buffers = made.buffers.data();
    if (format == "u") {
      put_texts<std::int32_t>(count, made);
    } else if (format == "U") {
      put_texts<std::int64_t>(count, made);
    } else {
      put_buffer(1, input_.fill(count * 8), made);
    }
    out.n_buffers = format == "n" ? 0 : format == "u" || format == "U" ? 3 : 2;
    if (input_.rarely(4)) set_validity(out, made, out.offset + out.length);
  }

  template <class Offset>
  void put_texts(std::size_t count, holder<ArrowArray>& made) {
    constexpr Offset most = 4096;
    std::vector<Offset> offsets(count + 1);
    if (input_.rarely(8)) {
      const std::vector<std::uint8_t> bytes = input_.fill(offsets.size() * sizeof(Offset));
      std::memcpy(offsets.data(), bytes.data(), bytes.size());
    } else {
      const std::vector<std::uint8_t> lengths = input_.fill(count);
      for (std::size_t i = 0; i < count; ++i)
        offsets[i + 1] = static_cast<Offset>(offsets[i] + lengths[i] % 12);
    }
    // All characters up to the last one's end are there, unless it says that there are too many.
    if (offsets.back() > most && count > most) offsets.back() = 0;
    if (offsets.back() > most) offsets.back() = static_cast<Offset>(offsets.back() % most);
    const Offset characters = std::max<Offset>(offsets.back(), 0);
    std::vector<std::uint8_t> bytes(offsets.size() * sizeof(Offset));
    std::memcpy(bytes.data(), offsets.data(), bytes.size());
    put_buffer(1, std::move(bytes), made);
    put_buffer(2, input_.fill(static_cast<std::size_t>(characters)), made);
  }

  /// At an odd place now and then.
  void put_buffer(std::size_t index, std::vector<std::uint8_t> bytes, holder<ArrowArray>& made) {
    const std::size_t skipped = input_.rarely(16) ? 1 : 0;
    bytes.insert(bytes.begin(), skipped, 0);
    bytes.shrink_to_fit();
    made.memory.push_back(std::move(bytes));
    made.buffers[index] = made.memory.back().data() + skipped;
  }

  void set_validity(ArrowArray& out, holder<ArrowArray>& made, std::int64_t count) {
    put_buffer(0, input_.fill(static_cast<std::size_t>(count + 7) / 8), made);
    out.null_count = -1;
  }

  void bend_batch(ArrowArray& out) {
    constexpr std::int64_t most_rows = std::numeric_limits<std::int32_t>::max();
    switch (input_.take() % 7) {
      case 0:
        out.length = -1;
        break;
      case 1:
        out.length = most_rows + std::int64_t{1};
        break;
      case 2:
        out.length = out.offset = std::numeric_limits<std::int64_t>::max();
        break;
      case 3:
        out.offset = -1;
        break;
      case 4:
        ++out.n_children;
        break;
      case 5:
        out.n_children = -1;
        break;
      default:
        if (out.n_children > 0) out.children[input_.take() % out.n_children] = nullptr;
    }
  }

  void bend_column(ArrowArray& out) {
    switch (input_.take() % 8) {
      case 0:
        out.length = input_.take() % 2 == 0 ? -1 : 0;
        break;
      case 1:
        out.offset = input_.take() % 2 == 0 ? -1 : std::numeric_limits<std::int64_t>::max();
        break;
      case 2:
        out.n_buffers = input_.take() % 5 - 1;
        break;
      case 3:
        out.buffers[input_.take() % 3] = nullptr;
        break;
      case 4:
        out.buffers = nullptr;
        break;
      case 5:
        out.null_count = 1;
        break;
      case 6:
        out.n_children = 1;
        break;
      default:
        if (out.dictionary != nullptr) {
          out.dictionary->release(out.dictionary);
        } else {
          out.release(&out);
        }
    }
  }

  input_bytes& input_;
  int& alive_;
};

}  // namespace ovfuzz
