// One dictionary entry: the 7 words that describe one atom.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "storage/words.h"

namespace ovf {

/// The bytes of one entry on its header page.
template <class Precision>
using entry_span = std::span<std::byte, format::entry_words * Precision::word_bytes>;

template <class Precision>
using const_entry_span = std::span<const std::byte, format::entry_words * Precision::word_bytes>;

/// The field's name in the ANSI code page, without trailing blanks, ended by a NUL if it holds one.
template <class Precision>
std::string load_entry_name(const_entry_span<Precision> entry);

/// Writes a name of at most 8 characters (24 in double precision) with whatever marks a long one.
template <class Precision>
void store_entry_name(entry_span<Precision> entry, std::string_view name) noexcept;

/// Makes an entry anew: name and type ('A' or 'N'), everything else 0.
template <class Precision>
void start_entry(entry_span<Precision> entry, std::string_view name, char type) noexcept;

/// 'A' marks text; every other character is numeric.
template <class Precision>
bool is_alphanumeric(const_entry_span<Precision> entry) noexcept {
  return static_cast<char>(entry[format::entry_type * Precision::word_bytes]) == 'A';
}

/// A word of the entry.
template <class Precision>
std::byte* entry_word(entry_span<Precision> entry, std::size_t word) noexcept {
  return entry.data() + word * Precision::word_bytes;
}
template <class Precision>
const std::byte* entry_word(const_entry_span<Precision> entry, std::size_t word) noexcept {
  return entry.data() + word * Precision::word_bytes;
}

}  // namespace ovf
