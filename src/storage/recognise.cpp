#include "storage/recognise.h"

#include <cmath>
#include <optional>

#include "base/file.h"
#include "storage/file_error.h"
#include "storage/words.h"

namespace ovf {
namespace {

/// A file whose words cannot be read at all: not the same as one that ends early.
struct unreadable {
  system_code code = last_system_error();
};

/// One word of the file header; nothing when the file ends before it.
template <class Precision>
struct header_word {
  std::byte bytes[Precision::word_bytes];

  typename Precision::number as(byte_order order) const { return load_number<Precision>(bytes, order); }
};

template <class Precision>
std::optional<header_word<Precision>> read_word(file& opened, std::size_t word) {
  header_word<Precision> found;
  std::size_t done = 0;
  const auto position = static_cast<std::int64_t>(word * Precision::word_bytes);
  if (!opened.seek(position, seek_origin::begin) || !opened.read(found.bytes, done)) throw unreadable();
  if (done != sizeof found.bytes) return std::nullopt;
  return found;
}

template <class Precision>
std::optional<byte_order> find_mark(file& opened) {
  const auto word = read_word<Precision>(opened, format::mark_word);
  if (!word) return std::nullopt;
  for (const byte_order order : tried_orders) {
    if (word->as(order) == Precision::mark) return order;
  }
  return std::nullopt;
}

bool is_field_count(float value) noexcept {
  return value >= 0 && value <= static_cast<float>(single_precision::max_atoms) && value == std::trunc(value);
}

/// The first byte order in which a count of fields is a plausible one.
std::optional<byte_order> order_of_count(const header_word<single_precision>& word) noexcept {
  for (const byte_order order : tried_orders) {
    if (is_field_count(word.as(order))) return order;
  }
  return std::nullopt;
}

/// The older probe: files from before the mark show themselves by their field count.
byte_order find_field_count(file& opened) {
  const auto word = read_word<single_precision>(opened, format::atoms_word);
  if (!word) fail_not_a_table();
  if (const auto order = order_of_count(*word)) return *order;
  if (word->as(byte_order::native) > static_cast<float>(single_precision::max_atoms)) fail_unrecognised();
  fail_not_a_table();
}

}  // namespace

recognition recognise(wide_view name) {
  const auto opened = files().open(name, open_mode::read);
  try {
    if (opened == nullptr) throw unreadable();
    if (const auto order = find_mark<single_precision>(*opened)) return {false, *order};
    if (const auto order = find_mark<double_precision>(*opened)) return {true, *order};
    return {false, find_field_count(*opened)};
  } catch (const unreadable& failure) {
    throw file_error(wide(OLESTR("cannot open file ")).append(name), failure.code);
  }
}

bool count_tells_order(std::size_t atoms, byte_order order) noexcept {
  header_word<single_precision> word;
  store_number<single_precision>(word.bytes, static_cast<float>(atoms), order);
  return order_of_count(word) == order;
}

}  // namespace ovf
