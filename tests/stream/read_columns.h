// A stream that is read, taken apart into values that tests can compare.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ovfile/stream.h"

namespace ovtest {

/// The type of a column as its stream tells it.
struct read_type {
  std::string format;
  std::string name;
  bool nullable = false;
  std::map<std::string, std::string> metadata;
  std::string dictionary;  ///< its format
};

/// A value: none, bits of a number (of the stream's width), or a text.
struct read_cell {
  bool is_null = false;
  std::uint64_t bits = 0;
  std::string text;

  bool operator==(const read_cell&) const = default;
};

inline void PrintTo(const read_cell& cell, std::ostream* out) {
  *out << (cell.is_null ? "null" : "") << " bits " << std::hex << cell.bits << std::dec << " text \""
       << cell.text << "\"";
}

inline std::map<std::string, std::string> decoded_metadata(const char* place) {
  std::map<std::string, std::string> found;
  if (place == nullptr) return found;
  const auto number = [&] {
    std::int32_t value = 0;
    std::memcpy(&value, place, sizeof value);
    place += sizeof value;
    return value;
  };
  const auto text = [&] {
    const std::int32_t length = number();
    std::string value(place, static_cast<std::size_t>(length));
    place += length;
    return value;
  };
  for (std::int32_t left = number(); left > 0; --left) {
    const std::string key = text();
    found[key] = text();
  }
  return found;
}

inline read_type type_of(const ArrowSchema& schema) {
  return {schema.format, schema.name, (schema.flags & ARROW_FLAG_NULLABLE) != 0,
          decoded_metadata(schema.metadata), schema.dictionary == nullptr ? "" : schema.dictionary->format};
}

inline std::string text_at(const ArrowArray& texts, std::int64_t index) {
  const auto* offsets = static_cast<const std::int32_t*>(texts.buffers[1]) + texts.offset + index;
  return {static_cast<const char*>(texts.buffers[2]) + offsets[0],
          static_cast<std::size_t>(offsets[1] - offsets[0])};
}

inline read_cell cell_at(const ArrowArray& column, const read_type& type, std::int64_t index) {
  read_cell cell;
  const auto* there = static_cast<const std::uint8_t*>(column.buffers[0]);
  const std::int64_t bit = column.offset + index;
  cell.is_null = there != nullptr && (there[bit / 8] >> (bit % 8) & 1) == 0;
  if (cell.is_null) return cell;
  if (type.format == "g") {
    cell.bits = std::bit_cast<std::uint64_t>(ovfile::values_of<double>(column)[index]);
  } else if (type.format == "f") {
    cell.bits = std::bit_cast<std::uint32_t>(ovfile::values_of<float>(column)[index]);
  } else if (type.format == "i") {
    cell.text = text_at(*column.dictionary, ovfile::values_of<std::int32_t>(column)[index]);
  } else {
    cell.text = text_at(column, index);
  }
  return cell;
}

struct read_table {
  read_type type;
  std::vector<read_type> columns;
  std::vector<std::vector<read_cell>> cells;  ///< by column, then row
  std::vector<std::int64_t> batches;          ///< their rows
};

inline read_table read_all(ovfile::arrow_stream stream) {
  read_table found;
  const ovfile::arrow_schema schema = stream.schema();
  found.type = type_of(*schema);
  for (std::int64_t c = 0; c < schema->n_children; ++c)
    found.columns.push_back(type_of(*schema->children[c]));
  found.cells.resize(found.columns.size());
  for (const ovfile::arrow_array& batch : stream) {
    found.batches.push_back(batch->length);
    EXPECT_EQ(batch->n_children, schema->n_children);
    for (std::size_t c = 0; c < found.columns.size(); ++c) {
      const ArrowArray& column = *batch->children[c];
      EXPECT_EQ(column.length, batch->length);
      std::int64_t nulls = 0;
      for (std::int64_t i = 0; i < column.length; ++i) {
        found.cells[c].push_back(cell_at(column, found.columns[c], i));
        nulls += found.cells[c].back().is_null ? 1 : 0;
      }
      EXPECT_EQ(column.null_count, nulls);
    }
  }
  return found;
}

inline read_cell double_cell(double value) { return {false, std::bit_cast<std::uint64_t>(value), ""}; }
inline read_cell float_cell(float value) { return {false, std::bit_cast<std::uint32_t>(value), ""}; }
inline read_cell text_cell_of(std::string text) { return {false, 0, std::move(text)}; }
inline read_cell null_cell() { return {true, 0, ""}; }

}  // namespace ovtest
