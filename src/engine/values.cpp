#include "engine/values.h"

#include <algorithm>

namespace ovf {
namespace {

/// A double-precision word takes 4 characters and shows what follows them in its last bytes: up to 8
/// characters are copied and the fifth is then overwritten by a NUL, where readers stop. Other programs
/// write these bytes so, and equal tables must be equal files.
void put_wide_word(std::byte* word, std::string_view rest) noexcept {
  constexpr std::size_t bytes = double_precision::word_bytes;
  std::memset(word, ' ', bytes);
  std::memcpy(word, rest.data(), std::min(rest.size(), bytes));
  word[format::text_word_chars] = std::byte{0};
}

template <class Precision>
void put_word(std::byte* word, std::string_view rest, bool all_empty) noexcept {
  if constexpr (Precision::is_double) {
    if (!all_empty) return put_wide_word(word, rest);
  }
  store_text<Precision>(word, rest);
}

std::string_view behind_one_word(std::string_view text) noexcept {
  text.remove_prefix(std::min(text.size(), format::text_word_chars));
  return text;
}

}  // namespace

std::string text_of(const field& from, const std::byte* record, std::size_t word_bytes) {
  std::string text;
  for (const atom& word : from.atoms) text += load_text(word_of(word, record, word_bytes));
  return text;
}

std::string default_text_of(const field& from) {
  std::string text;
  for (const atom& word : from.atoms) text += load_text(word.default_word.data());
  return text;
}

template <class Precision>
void put_text(const field& to, std::byte* record, std::string_view text) noexcept {
  const bool empty = text.empty();
  for (const atom& word : to.atoms) {
    if (word.position != 0) put_word<Precision>(place_of(word, record, Precision::word_bytes), text, empty);
    text = behind_one_word(text);
  }
}

template <class Precision>
void put_text(std::byte* first_word, std::size_t words, std::string_view text) noexcept {
  const bool empty = text.empty();
  for (std::size_t i = 0; i < words; ++i) {
    put_word<Precision>(first_word + i * Precision::word_bytes, text, empty);
    text = behind_one_word(text);
  }
}

template void put_text<single_precision>(const field&, std::byte*, std::string_view) noexcept;
template void put_text<double_precision>(const field&, std::byte*, std::string_view) noexcept;
template void put_text<single_precision>(std::byte*, std::size_t, std::string_view) noexcept;
template void put_text<double_precision>(std::byte*, std::size_t, std::string_view) noexcept;

}  // namespace ovf
