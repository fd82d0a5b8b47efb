// Streams as other programs make them, put together by the tests value by value, whole or bent.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ovfile/stream.h"

namespace ovtest {

using buffer = std::vector<std::uint8_t>;

/// One column with its type. The buffers are what the layout of the format wants.
struct made_column {
  std::string name;
  std::string format;
  std::int64_t length = 0;
  std::int64_t offset = 0;
  std::int64_t nulls = 0;
  std::vector<std::optional<buffer>> buffers;  ///< none: a null pointer
  std::shared_ptr<made_column> dictionary;
};

template <class Value>
buffer bytes_of(const std::vector<Value>& values) {
  buffer bytes(values.size() * sizeof(Value));
  if (!bytes.empty()) std::memcpy(bytes.data(), values.data(), bytes.size());
  return bytes;
}

inline buffer bits_of(const std::vector<bool>& values) {
  buffer bits((values.size() + 7) / 8);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i]) bits[i / 8] = static_cast<std::uint8_t>(bits[i / 8] | 1U << i % 8);
  }
  return bits;
}

template <class Value>
made_column numbers(std::string name, std::string format, const std::vector<Value>& values) {
  const auto length = static_cast<std::int64_t>(values.size());
  return {std::move(name), std::move(format), length, 0, 0, {std::nullopt, bytes_of(values)}, nullptr};
}

inline made_column truths(std::string name, const std::vector<bool>& values) {
  const auto length = static_cast<std::int64_t>(values.size());
  return {std::move(name), "b", length, 0, 0, {std::nullopt, bits_of(values)}, nullptr};
}

template <class Offset = std::int32_t>
made_column texts(std::string name, const std::vector<std::string>& values) {
  std::string characters;
  std::vector<Offset> offsets{0};
  for (const std::string& each : values) {
    characters += each;
    offsets.push_back(static_cast<Offset>(characters.size()));
  }
  const auto length = static_cast<std::int64_t>(values.size());
  return {std::move(name),
          sizeof(Offset) == 4 ? "u" : "U",
          length,
          0,
          0,
          {std::nullopt, bytes_of(offsets), buffer(characters.begin(), characters.end())},
          nullptr};
}

inline made_column nothing(std::string name, std::int64_t length) {
  return {std::move(name), "n", length, 0, length, {}, nullptr};
}

inline made_column with_nulls(made_column column, const std::vector<bool>& there) {
  column.buffers[0] = bits_of(there);
  column.nulls = -1;
  return column;
}

/// The same memory without its first values.
inline made_column sliced(made_column column, std::int64_t skipped) {
  column.offset += skipped;
  column.length -= skipped;
  return column;
}

inline made_column with_dictionary(made_column indexes, made_column values) {
  indexes.dictionary = std::make_shared<made_column>(std::move(values));
  return indexes;
}

using made_batch = std::vector<made_column>;

/// A stream of batches, whose first gives the types. What it hands out counts in `alive` until it is
/// released.
class made_stream {
 public:
  explicit made_stream(std::vector<made_batch> batches) : batches_(std::move(batches)) {
    stream.get_schema = [](ArrowArrayStream* of, ArrowSchema* out) { return self(of).give_schema(out); };
    stream.get_next = [](ArrowArrayStream* of, ArrowArray* out) { return self(of).give_next(out); };
    stream.get_last_error = [](ArrowArrayStream* of) -> const char* {
      self(of).tell(self(of).at_words);
      return self(of).words.empty() ? nullptr : self(of).words.c_str();
    };
    stream.release = [](ArrowArrayStream* of) {
      --self(of).alive;
      of->release = nullptr;
      self(of).tell(self(of).at_release);
    };
    stream.private_data = this;
  }
  made_stream(const made_stream&) = delete;
  made_stream& operator=(const made_stream&) = delete;

  ArrowArrayStream stream{};
  int alive = 1;                                ///< the stream itself, its types, its batches
  std::function<void(ArrowSchema&)> bend_type;  ///< before the types are handed out
  std::function<void(ArrowArray&)> bend_batch;  ///< before a batch is
  std::function<void()> meanwhile;              ///< when a batch is asked for
  std::function<void()> at_types;               ///< when the types are asked for
  std::function<void()> at_words;               ///< when the reason of a failure is
  std::function<void()> at_release;             ///< when the stream, the types or a batch are released
  std::optional<std::size_t> fails_at;          ///< the batch
  bool fails_with_types = false;
  std::string words;

 private:
  struct held_type {
    made_stream* from;
    std::vector<ArrowSchema> children;
    std::vector<ArrowSchema*> pointers;
  };
  struct held_array {
    made_stream* from;
    std::vector<const void*> buffers;
    std::vector<ArrowArray> children;
    std::vector<ArrowArray*> pointers;
  };

  static made_stream& self(ArrowArrayStream* stream) {
    return *static_cast<made_stream*>(stream->private_data);
  }

  template <class Held, class Structure>
  static void release(Structure* part) {
    auto* held = static_cast<Held*>(part->private_data);
    for (Structure& each : held->children) {
      if (each.release != nullptr) each.release(&each);
    }
    made_stream& from = *held->from;
    --from.alive;
    delete held;
    part->release = nullptr;
    from.tell(from.at_release);
  }

  /// Room for children, the last of which is the dictionary.
  template <class Held, class Structure>
  Held* begin(Structure& out, std::size_t children, bool dictionary) {
    auto* held = new Held;
    held->from = this;
    held->children.resize(children + (dictionary ? 1 : 0));
    for (std::size_t i = 0; i < children; ++i) held->pointers.push_back(&held->children[i]);
    out = {};
    out.n_children = static_cast<std::int64_t>(children);
    out.children = held->pointers.data();
    if (dictionary) out.dictionary = &held->children.back();
    out.release = &release<Held, Structure>;
    out.private_data = held;
    ++alive;
    return held;
  }

  void give_type(const made_column& column, ArrowSchema& out) {
    begin<held_type>(out, 0, column.dictionary != nullptr);
    out.format = column.format.c_str();
    out.name = column.name.c_str();
    out.flags = ARROW_FLAG_NULLABLE;
    if (column.dictionary) give_type(*column.dictionary, *out.dictionary);
  }

  void give_array(const made_column& column, ArrowArray& out) {
    auto* held = begin<held_array>(out, 0, column.dictionary != nullptr);
    for (const auto& each : column.buffers) held->buffers.push_back(each ? each->data() : nullptr);
    out.length = column.length;
    out.offset = column.offset;
    out.null_count = column.nulls;
    out.n_buffers = static_cast<std::int64_t>(held->buffers.size());
    out.buffers = held->buffers.data();
    if (column.dictionary) give_array(*column.dictionary, *out.dictionary);
  }

  static void tell(const std::function<void()>& whom) {
    if (whom) whom();
  }

  int give_schema(ArrowSchema* out) {
    tell(at_types);
    if (fails_with_types) return 5;
    const made_batch& first = batches_.front();
    auto* held = begin<held_type>(*out, first.size(), false);
    out->format = "+s";
    for (std::size_t i = 0; i < first.size(); ++i) give_type(first[i], held->children[i]);
    if (bend_type) bend_type(*out);
    return 0;
  }

  int give_next(ArrowArray* out) {
    *out = {};
    tell(meanwhile);
    if (fails_at && next_ == *fails_at) return 5;
    if (next_ == batches_.size()) return 0;
    const made_batch& batch = batches_[next_++];
    auto* held = begin<held_array>(*out, batch.size(), false);
    for (std::size_t i = 0; i < batch.size(); ++i) give_array(batch[i], held->children[i]);
    held->buffers.push_back(nullptr);
    out->n_buffers = 1;
    out->buffers = held->buffers.data();
    out->length = batch.empty() ? 0 : batch.front().length;
    if (bend_batch) bend_batch(*out);
    return 0;
  }

  std::vector<made_batch> batches_;
  std::size_t next_ = 0;
};

}  // namespace ovtest
