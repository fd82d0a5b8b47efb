// The table file, in words. A word is 4 bytes in single and 8 bytes in double precision; a page is 512
// words. Header pages come first: the file header (words 0 to 27) and then one 7-word dictionary entry
// for each atom, that is, for each word of a field; 72 entries a page. Record pages follow: records of
// equal length, as many as fit into 508 words.
#pragma once

#include <cstddef>

namespace ovf::format {

inline constexpr std::size_t page_words = 512;
inline constexpr std::size_t entry_words = 7;
inline constexpr std::size_t header_page_words = 504;  ///< of a header page; the other 8 are zero
inline constexpr std::size_t record_page_words = 508;  ///< of a record page; the other 4 carry nothing
inline constexpr std::size_t file_header_entries = 4;  ///< entries that the file header takes
inline constexpr std::size_t text_word_chars = 4;      ///< characters of one text word

/// Words of the file header.
inline constexpr std::size_t first_name_word = 0;
inline constexpr std::size_t second_name_word = 2;
inline constexpr std::size_t name_words = 2;
inline constexpr std::size_t description_word = 4;
inline constexpr std::size_t description_words = 16;
inline constexpr std::size_t description_words_read = 15;  ///< what readers show of them
inline constexpr std::size_t owner_word = 20;
inline constexpr std::size_t text_words = 22;  ///< names, description and owner
inline constexpr std::size_t zero_word = 22;
inline constexpr std::size_t two_word = 23;
inline constexpr std::size_t mark_word = 24;
inline constexpr std::size_t atoms_word = 25;
inline constexpr std::size_t pages_word = 26;         ///< pages of the file, header pages included
inline constexpr std::size_t last_records_word = 27;  ///< records in the last page

/// Words of a dictionary entry.
inline constexpr std::size_t entry_name = 0;
inline constexpr std::size_t entry_type = 2;
inline constexpr std::size_t entry_position = 3;  ///< 1-based word of the record, 0 for implicit
inline constexpr std::size_t entry_ordinal = 4;   ///< 1-based word of the field; readers ignore it
inline constexpr std::size_t entry_long_name = 5;
inline constexpr std::size_t entry_default = 6;

inline constexpr std::size_t short_name_chars = 8;
inline constexpr std::size_t long_name_chars = 24;

/// Header pages that `atoms` dictionary entries need.
constexpr std::size_t header_pages(std::size_t atoms) noexcept {
  return ((atoms + file_header_entries) * entry_words + header_page_words - 1) / header_page_words;
}
static_assert(header_pages(64) == 1 && header_pages(68) == 1 && header_pages(69) == 2);
static_assert(header_pages(140) == 2 && header_pages(141) == 3);

/// Where the dictionary entry of an atom stands: its header page, and its first word there.
constexpr std::size_t entry_page(std::size_t atom) noexcept {
  return (atom + file_header_entries) * entry_words / header_page_words;
}
constexpr std::size_t entry_word_on_page(std::size_t atom) noexcept {
  return (atom + file_header_entries) * entry_words % header_page_words;
}
static_assert(entry_page(67) == 0 && entry_page(68) == 1 && entry_word_on_page(68) == 0);

/// Records of `record_words` words each that fit a page; 0 for a record without words.
constexpr std::size_t records_per_page(std::size_t record_words) noexcept {
  return record_words == 0 ? 0 : record_page_words / record_words;
}

}  // namespace ovf::format
