#include "stream/array_import.h"

namespace ovf {
namespace {

constexpr wide_view impossible_length = OLESTR("its length or offset cannot be");
constexpr wide_view impossible_batch = OLESTR("a batch has a length or offset that cannot be");
constexpr wide_view outside = OLESTR("the index lies outside its dictionary");

constexpr std::int64_t most_elements = std::numeric_limits<std::int64_t>::max();

bool is_countable(const ArrowArray& array) noexcept {
  return array.length >= 0 && array.offset >= 0 && array.length <= most_elements - array.offset - 1;
}

constexpr std::int64_t bits_of(value_kind kind) noexcept {
  switch (kind) {
    case value_kind::nothing:
    case value_kind::boolean:
      return 1;
    case value_kind::int8:
    case value_kind::uint8:
      return 8;
    case value_kind::int16:
    case value_kind::uint16:
    case value_kind::half_float:
      return 16;
    case value_kind::int32:
    case value_kind::uint32:
    case value_kind::single_float:
    case value_kind::text:  // its offsets
      return 32;
    default:
      return 64;
  }
}

std::int64_t buffers_of(value_kind kind) noexcept {
  if (kind == value_kind::nothing) return 0;
  return is_text(kind) ? 3 : 2;
}

void take_texts(const void* offsets, value_span& texts) {
  if (offsets == nullptr) refuse(OLESTR("its texts have no offsets"));
  texts.offsets = offsets;
  texts.first = texts.text_begin(0);
  texts.last = texts.text_begin(texts.length);
  if (texts.first < 0) refuse(OLESTR("its texts begin before their buffer"));
  if (texts.last < texts.first) refuse(OLESTR("the offsets of its texts fall"));
  if (!fits_memory(texts.last, 8)) refuse(OLESTR("its texts are longer than memory can be"));
  if (texts.values == nullptr && texts.first != texts.last) refuse(OLESTR("its texts have no buffer"));
}

/// The values of an array from `skipped` on.
value_span checked_values(value_kind kind, const ArrowArray& array, std::int64_t skipped,
                          std::int64_t length) {
  value_span found;
  found.kind = kind;
  found.offset = array.offset + skipped;
  found.length = length;
  const std::int64_t buffers = buffers_of(kind);
  if (array.n_buffers != buffers) refuse(OLESTR("it has a wrong number of buffers"));
  if (array.n_children != 0) refuse(OLESTR("it has children"));
  if (buffers == 0 || length == 0) return found;
  if (array.buffers == nullptr) refuse(OLESTR("it has no buffers"));
  if (!fits_memory(array.offset + array.length + 1, bits_of(kind))) refuse(impossible_length);
  if (array.null_count != 0) found.there = static_cast<const std::uint8_t*>(array.buffers[0]);
  if (array.null_count > 0 && found.there == nullptr) {
    refuse(OLESTR("it has nulls and does not tell which"));
  }
  found.values = array.buffers[buffers - 1];
  if (is_text(kind)) {
    take_texts(array.buffers[1], found);
  } else if (found.values == nullptr) {
    refuse(OLESTR("it has no values"));
  }
  return found;
}

void check_alive(const ArrowArray* array) {
  if (array == nullptr || array->release == nullptr) refuse(OLESTR("it is not there"));
  if (!is_countable(*array)) refuse(impossible_length);
}

value_kind kind_of(const char* format) noexcept {
  constexpr std::string_view letters = "nbcCsSiIlLefguU";
  if (format == nullptr || format[0] == 0 || format[1] != 0) return value_kind::nothing;
  const std::size_t place = letters.find(format[0]);
  return place == std::string_view::npos ? value_kind::nothing : static_cast<value_kind>(place);
}

value_kind checked_kind(const char* format) {
  const value_kind kind = kind_of(format);
  if (kind != value_kind::nothing || (format != nullptr && std::string_view(format) == "n")) return kind;
  const std::string_view shown = format == nullptr ? std::string_view("(none)") : std::string_view(format);
  refuse(OLESTR("its type \"") + wide_from_utf8(shown) + OLESTR("\" is none that a table can take in"));
}

}  // namespace

void check_structure(const ArrowSchema& schema) {
  if (schema.release == nullptr || schema.format == nullptr || std::string_view(schema.format) != "+s" ||
      schema.n_children < 0 || (schema.n_children > 0 && schema.children == nullptr)) {
    refuse(OLESTR("the stream is not one of columns"));
  }
}

column_type checked_type(const ArrowSchema& schema) {
  column_type type;
  type.name = schema.name == nullptr ? "" : schema.name;
  type.kind = checked_kind(schema.format);
  if (schema.n_children != 0) refuse(OLESTR("its type has children"));
  if (schema.dictionary == nullptr) return type;
  type.has_dictionary = true;
  type.indexes = type.kind;
  if (!is_integer(type.indexes)) refuse(OLESTR("the indexes of its dictionary are no integers"));
  type.kind = checked_kind(schema.dictionary->format);
  if (schema.dictionary->n_children != 0 || schema.dictionary->dictionary != nullptr) {
    refuse(OLESTR("its dictionary is not one of plain values"));
  }
  return type;
}

void check_batch(const ArrowArray& batch, std::size_t columns, std::uint64_t room) {
  if (!is_countable(batch)) refuse(impossible_batch);
  if (static_cast<std::uint64_t>(batch.length) > room) {
    refuse(wide_format(OLESTR("a batch has %d rows, and the table has room for %d more"))
               .arg(static_cast<long long>(batch.length))
               .arg(static_cast<long long>(room))
               .text());
  }
  if (batch.n_children < 0 || static_cast<std::uint64_t>(batch.n_children) != columns ||
      (columns != 0 && batch.children == nullptr)) {
    refuse(OLESTR("a batch has another number of columns than the stream"));
  }
  const bool has_nulls =
      batch.null_count != 0 && batch.n_buffers > 0 && batch.buffers != nullptr && batch.buffers[0] != nullptr;
  if (!has_nulls) return;
  if (!fits_memory(batch.offset + batch.length, 1)) refuse(impossible_batch);
  const auto* there = static_cast<const std::uint8_t*>(batch.buffers[0]);
  for (std::int64_t bit = batch.offset; bit < batch.offset + batch.length; ++bit) {
    if ((there[bit / 8] >> (bit % 8) & 1) == 0) refuse(OLESTR("a batch has rows that are null"));
  }
}

column_span checked_column(const column_type& type, const ArrowArray* column, std::int64_t offset,
                           std::int64_t rows) {
  check_alive(column);
  if (offset > column->length || rows > column->length - offset) {
    refuse(OLESTR("it has fewer rows than its batch"));
  }
  column_span found;
  if (!type.has_dictionary) {
    found.values = checked_values(type.kind, *column, offset, rows);
    return found;
  }
  found.has_dictionary = true;
  found.indexes = checked_values(type.indexes, *column, offset, rows);
  check_alive(column->dictionary);
  found.values = checked_values(type.kind, *column->dictionary, 0, column->dictionary->length);
  return found;
}

std::optional<std::string_view> value_span::text_at(std::int64_t index) const noexcept {
  const std::int64_t begin = text_begin(index);
  const std::int64_t end = text_begin(index + 1);
  if (begin < first || end < begin || end > last) return std::nullopt;
  if (begin == end) return std::string_view();
  return std::string_view(static_cast<const char*>(values) + begin, static_cast<std::size_t>(end - begin));
}

std::int64_t value_span::integer_at(std::int64_t index) const noexcept {
  switch (kind) {
    case value_kind::int8:
      return at<std::int8_t>(index);
    case value_kind::uint8:
      return at<std::uint8_t>(index);
    case value_kind::int16:
      return at<std::int16_t>(index);
    case value_kind::uint16:
      return at<std::uint16_t>(index);
    case value_kind::int32:
      return at<std::int32_t>(index);
    case value_kind::uint32:
      return at<std::uint32_t>(index);
    default:
      return at<std::int64_t>(index);
  }
}

std::int64_t column_span::place_in_dictionary(std::int64_t row) const {
  if (!indexes.is_there(row)) return null;
  const std::int64_t place = indexes.integer_at(row);
  if (place < 0 || place >= values.length) throw bad_value{row, wide(outside)};
  return values.is_there(place) ? place : null;
}

}  // namespace ovf
