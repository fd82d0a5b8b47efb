// A host's types and arrays, held against the layout that their formats promise before any value is read.
// The sizes of buffers are not told by anybody: a host that promises bytes that are not there is beyond
// help.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ovfile/arrow_abi.h"
#include "platform/text.h"

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

/// The type of a child of a stream's structure. Throws MyExceptionClass without a prefix: what is wrong
/// with it.
column_type checked_type(const ArrowSchema& schema);
/// Throws for a stream that is not one of structures.
void check_structure(const ArrowSchema& schema);
/// Throws for a batch that is no structure of `columns` columns.
void check_batch(const ArrowArray& batch, std::size_t columns);

/// The values of one array.
struct value_span {
  value_kind kind = value_kind::nothing;
  std::int64_t offset = 0;  ///< where value 0 stands in the buffers
  std::int64_t length = 0;
  const std::uint8_t* there = nullptr;  ///< one bit for each; null: all are there
  const void* values = nullptr;         ///< of a text: the characters
  const void* offsets = nullptr;        ///< of a text

  bool is_there(std::int64_t index) const noexcept {
    const std::int64_t bit = offset + index;
    return kind != value_kind::nothing && (there == nullptr || (there[bit / 8] >> (bit % 8) & 1) != 0);
  }
  template <class Value>
  Value at(std::int64_t index) const noexcept {
    return static_cast<const Value*>(values)[offset + index];
  }
  bool bit_at(std::int64_t index) const noexcept {
    const std::int64_t bit = offset + index;
    return (static_cast<const std::uint8_t*>(values)[bit / 8] >> (bit % 8) & 1) != 0;
  }
  std::string_view text_at(std::int64_t index) const noexcept;
  /// Of an integer kind; what is beyond 63 bits is negative.
  std::int64_t integer_at(std::int64_t index) const noexcept;
};

/// A value that the column cannot hold, of a row of the batch.
struct bad_value {
  std::int64_t row;
  wide reason;
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

/// `rows` values of a child that stand behind the structure's `offset`. Throws MyExceptionClass without a
/// prefix.
column_span checked_column(const column_type& type, const ArrowArray* column, std::int64_t offset,
                           std::int64_t rows);

}  // namespace ovf
