// Values of one record: how numbers and texts stand in its words.
#pragma once

#include <string>

#include "engine/field.h"

namespace ovf {

/// The word of an atom: in the record, or its default when it has no place there.
inline const std::byte* word_of(const atom& word, const std::byte* record, std::size_t word_bytes) noexcept {
  return word.position == 0 ? word.default_word.data() : record + (word.position - 1) * word_bytes;
}

/// Where an atom that has a place in the record stands there.
inline std::byte* place_of(const atom& word, std::byte* record, std::size_t word_bytes) noexcept {
  return record + (word.position - 1) * word_bytes;
}

/// The number of a numeric field. An implicit field reads its default as the file holds it, in whatever
/// byte order: that is how these files have always read.
template <class Precision>
typename Precision::number number_of(const field& from, const std::byte* record, byte_order order) noexcept {
  const atom& word = from.atoms.front();
  return load_number<Precision>(word_of(word, record, Precision::word_bytes),
                                word.position == 0 ? byte_order::native : order);
}

/// The characters of a text field, each word up to its first NUL, trailing blanks kept.
std::string text_of(const field& from, const std::byte* record, std::size_t word_bytes);

/// The same of its default.
std::string default_text_of(const field& from);

/// Puts a text into a field's words. What goes beyond the width is dropped; implicit words are skipped.
template <class Precision>
void put_text(const field& to, std::byte* record, std::string_view text) noexcept;

/// The same into `words` words that stand one behind the other.
template <class Precision>
void put_text(std::byte* first_word, std::size_t words, std::string_view text) noexcept;

}  // namespace ovf
