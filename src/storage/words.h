// Words in and out of a page's bytes.
#pragma once

#include <bit>
#include <cstring>
#include <string>
#include <string_view>

#include "storage/byte_order.h"
#include "storage/precision.h"

namespace ovf {

/// The number that a word holds.
template <class Precision>
typename Precision::number load_number(const std::byte* word, byte_order order) noexcept {
  typename Precision::bits bits;
  std::memcpy(&bits, word, sizeof bits);
  return std::bit_cast<typename Precision::number>(rearranged(bits, order));
}

template <class Precision>
void store_number(std::byte* word, typename Precision::number value, byte_order order) noexcept {
  const auto bits = rearranged(std::bit_cast<typename Precision::bits>(value), order);
  std::memcpy(word, &bits, sizeof bits);
}

/// The up to 4 characters of a text word, ended by its first NUL. The view lies in the page.
inline std::string_view load_text(const std::byte* word) noexcept {
  const auto* characters = reinterpret_cast<const char*>(word);
  std::size_t length = 0;
  while (length < format::text_word_chars && characters[length] != 0) ++length;
  return {characters, length};
}

/// A text word of headers and new fields: 4 characters, blanks to the end of the word.
template <class Precision>
void store_text(std::byte* word, std::string_view text) noexcept {
  std::memset(word, ' ', Precision::word_bytes);
  const std::string_view part = text.substr(0, format::text_word_chars);
  if (!part.empty()) std::memcpy(word, part.data(), part.size());
}

/// Spreads a text over `words` text words, cut or filled with blanks.
template <class Precision>
void store_texts(std::byte* first_word, std::size_t words, std::string_view text) noexcept {
  for (std::size_t i = 0; i < words; ++i) {
    const std::size_t begin = i * format::text_word_chars;
    store_text<Precision>(first_word + i * Precision::word_bytes,
                          begin < text.size() ? text.substr(begin) : std::string_view());
  }
}

/// The texts of consecutive words, each up to its first NUL, joined.
template <class Precision>
std::string load_texts(const std::byte* first_word, std::size_t words) {
  std::string text;
  for (std::size_t i = 0; i < words; ++i) text += load_text(first_word + i * Precision::word_bytes);
  return text;
}

/// The characters of consecutive words as they stand, NULs and all.
template <class Precision>
std::string load_characters(const std::byte* first_word, std::size_t words) {
  std::string text;
  for (std::size_t i = 0; i < words; ++i) {
    text.append(reinterpret_cast<const char*>(first_word + i * Precision::word_bytes),
                format::text_word_chars);
  }
  return text;
}

}  // namespace ovf
