// A host's types and arrays, held against the layout that their formats promise before any value is read.
// The sizes of buffers are not told by anybody: a host that promises bytes that are not there is beyond
// help. Buffers may stand anywhere, whatever their values would like to be aligned to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "ovfile/arrow_abi.h"
#include "stream/refusal.h"

namespace ovf {

/// Types of values that are taken in.
enum class value_kind {
  nothing,
  boolean,
  int8,
  uint8,
  int16,
  uint16,
  int32,
  uint32,
  int64,
  uint64,
  half_float,
  single_float,
  double_float,
  text,
  large_text
};

constexpr bool is_integer(value_kind kind) noexcept {
  return kind >= value_kind::int8 && kind <= value_kind::uint64;
}
constexpr bool is_text(value_kind kind) noexcept { return kind >= value_kind::text; }

/// The type of a column: values, or integer indexes into a dictionary of values.
struct column_type {
  std::string name;
  value_kind kind = value_kind::nothing;
  bool has_dictionary = false;
  value_kind indexes = value_kind::nothing;
};

/// Whether `count` things of `bits` bits each can stand in a memory whose places differ by up to what
/// `Place` can tell: a text of 64-bit offsets may promise more than a system of 32 bits has.
template <class Place = std::ptrdiff_t>
constexpr bool fits_memory(std::int64_t count, std::int64_t bits) noexcept {
  return count / 8 < static_cast<std::int64_t>(std::numeric_limits<Place>::max()) / bits;
}

// These throw `refusal`.

/// The type of a child of a stream's structure.
column_type checked_type(const ArrowSchema& schema);
/// The stream has to be one of structures.
void check_structure(const ArrowSchema& schema);
/// The batch has to be a structure of `columns` columns and at most `room` rows, none of them null.
void check_batch(const ArrowArray& batch, std::size_t columns, std::uint64_t room);

/// The values of one array.
struct value_span {
  value_kind kind = value_kind::nothing;
  std::int64_t offset = 0;  ///< where value 0 stands in the buffers
  std::int64_t length = 0;
  const std::uint8_t* there = nullptr;  ///< one bit for each; null: all are there
  const void* values = nullptr;         ///< of a text: the characters

  // Of a text.
  const void* offsets = nullptr;
  std::int64_t first = 0;  ///< where the characters of all of them begin, and where they end
  std::int64_t last = 0;

  bool is_there(std::int64_t index) const noexcept {
    const std::int64_t bit = offset + index;
    return kind != value_kind::nothing && (there == nullptr || (there[bit / 8] >> (bit % 8) & 1) != 0);
  }
  template <class Value>
  Value at(std::int64_t index) const noexcept {
    return loaded<Value>(values, offset + index);
  }
  bool bit_at(std::int64_t index) const noexcept {
    const std::int64_t bit = offset + index;
    return (static_cast<const std::uint8_t*>(values)[bit / 8] >> (bit % 8) & 1) != 0;
  }
  /// Nothing when its offsets lead elsewhere.
  std::optional<std::string_view> text_at(std::int64_t index) const noexcept;
  /// Where a text begins, or with the index of the one behind, ends.
  std::int64_t text_begin(std::int64_t index) const noexcept {
    return kind == value_kind::text ? loaded<std::int32_t>(offsets, offset + index)
                                    : loaded<std::int64_t>(offsets, offset + index);
  }
  /// Of an integer kind; what is beyond 63 bits is negative.
  std::int64_t integer_at(std::int64_t index) const noexcept;

 private:
  template <class Value>
  static Value loaded(const void* from, std::int64_t index) noexcept {
    Value value;
    std::memcpy(&value, static_cast<const std::byte*>(from) + index * std::int64_t{sizeof(Value)},
                sizeof value);
    return value;
  }
};

/// A column of one batch.
struct column_span {
  value_span values;   ///< the dictionary's, where there is one
  value_span indexes;  ///< of kind `nothing` without a dictionary
  bool has_dictionary = false;

  static constexpr std::int64_t null = -1;
  /// Where among `values` the value of a row stands, or `null`. Throws bad_value for
  /// one outside the dictionary.
  std::int64_t place_of(std::int64_t row) const {
    if (!has_dictionary) return values.is_there(row) ? row : null;
    return place_in_dictionary(row);
  }
  /// Whether row i simply is value i.
  bool is_plain() const noexcept { return !has_dictionary && values.there == nullptr; }

 private:
  std::int64_t place_in_dictionary(std::int64_t row) const;
};

/// `rows` values of a child that stand behind the structure's `offset`. Throws `refusal`. Single texts are
/// held against their buffer when they are asked for, so that a large dictionary is not gone through for
/// every batch.
column_span checked_column(const column_type& type, const ArrowArray* column, std::int64_t offset,
                           std::int64_t rows);

}  // namespace ovf
