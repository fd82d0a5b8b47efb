// Table files put together word by word, straight from the layout and without the library's code.
//
// A page has 512 words of 4 or 8 bytes. Header word w stands on page w / 504; entry i of the
// dictionary begins at header word (i + 4) * 7. A record page carries records in its first 508 words.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/file_bytes.h"

namespace ovtest {

/// Size of a word in bytes and the byte-order code of its numbers.
struct word_format {
  std::size_t size = 4;
  int order = 0;
};
inline constexpr word_format single_words{4, 0};
inline constexpr word_format double_words{8, 0};

inline constexpr std::size_t words_per_page = 512;
inline constexpr std::size_t header_words_per_page = 504;

/// The absolute word in the file that holds header word `w`.
inline std::size_t header_word(std::size_t w) {
  return w / header_words_per_page * words_per_page + w % header_words_per_page;
}

/// Which byte of the number each of the 4 bytes on disk is.
inline std::array<std::size_t, 4> byte_places(int order) {
  switch (order) {
    case 256:
      return {1, 0, 3, 2};
    case 1024:
      return {2, 3, 0, 1};
    case 1280:
      return {3, 2, 1, 0};
    default:
      return {0, 1, 2, 3};
  }
}

/// Puts a pattern as the low bytes first, each half of 4 bytes rearranged by the byte order.
inline void put_bits(bytes& file, std::size_t word, std::uint64_t bits, word_format format) {
  const auto places = byte_places(format.order);
  for (std::size_t i = 0; i < format.size; ++i) {
    const std::size_t from = i / 4 * 4 + places[i % 4];
    file.at(word * format.size + i) = static_cast<unsigned char>(bits >> (8 * from));
  }
}

inline void put_number(bytes& file, std::size_t word, double value, word_format format) {
  const std::uint64_t bits = format.size == 4 ? std::bit_cast<std::uint32_t>(static_cast<float>(value))
                                              : std::bit_cast<std::uint64_t>(value);
  put_bits(file, word, bits, format);
}

/// Raw bytes of one word, as many as it has.
inline void put_raw(bytes& file, std::size_t word, std::string_view raw, word_format format) {
  for (std::size_t i = 0; i < raw.size() && i < format.size; ++i) {
    file.at(word * format.size + i) = static_cast<unsigned char>(raw[i]);
  }
}

/// Text in words of 4 characters; a long word has 4 blanks after them.
inline void put_text(bytes& file, std::size_t word, std::size_t words, std::string_view text,
                     word_format format) {
  for (std::size_t i = 0; i < words; ++i) {
    std::string raw(text.substr(std::min(text.size(), 4 * i), 4));
    raw.resize(8, ' ');
    put_raw(file, word + i, raw, format);
  }
}

/// One atom of the dictionary.
struct atom {
  std::string name;
  char type = 'N';
  int position = 0;  ///< word of the record, 0: implicit
  int ordinal = 1;
  double number = 0;
  std::string text = "    ";
};

inline atom number_atom(std::string name, int position, double default_number = 0) {
  return {std::move(name), 'N', position, 1, default_number, ""};
}

/// The atoms of one text field, stored from `position` on, or implicit (0).
inline void add_text_atoms(std::vector<atom>& atoms, const std::string& name, int words, int position,
                           std::string text = "") {
  text.resize(4 * static_cast<std::size_t>(words), ' ');
  for (int i = 0; i < words; ++i) {
    atoms.push_back({name, 'A', position == 0 ? 0 : position + i, position == 0 ? i + 2 : i + 1, 0,
                     text.substr(4 * static_cast<std::size_t>(i), 4)});
  }
}

/// The name words of an entry, the mark of a long name and its rest.
inline void put_atom_name(bytes& file, std::size_t first, const atom& entry, word_format format) {
  std::string name = entry.name;
  const bool is_long = format.size == 8 && name.size() > 8;
  name.resize(24, ' ');
  std::string type(1, entry.type);
  type += is_long ? std::string("   LONG") : std::string("   \0\0\0\0", 7);
  put_raw(file, first, name.substr(0, 4) + (is_long ? name.substr(8, 4) : "    "), format);
  put_raw(file, first + 1, name.substr(4, 4) + (is_long ? name.substr(12, 4) : "    "), format);
  put_raw(file, first + 2, type, format);
  if (is_long) put_raw(file, first + 5, name.substr(16, 8), format);
}

inline void put_atom(bytes& file, std::size_t index, const atom& entry, word_format format) {
  const std::size_t first = header_word((index + 4) * 7);
  put_atom_name(file, first, entry, format);
  put_number(file, first + 3, entry.position, format);
  put_number(file, first + 4, entry.ordinal, format);
  if (entry.type == 'A') {
    put_text(file, first + 6, 1, entry.text, format);
  } else {
    put_number(file, first + 6, entry.number, format);
  }
}

/// The file header and its counts, as a case may want to bend them.
struct header_words {
  std::string names = "                ";
  std::string description;
  std::string owner = "SYSTEM  ";
  double version = 2;
  double mark = 0;  ///< 0: the mark of the precision
  double pages = 1;
  double records_in_last_page = 0;
};

inline double precision_mark(word_format format) { return format.size == 4 ? 987654.0 : 456789.0; }

/// Header pages of a table with these atoms.
inline bytes make_header(const header_words& words, const std::vector<atom>& atoms, word_format format) {
  const std::size_t pages = ((atoms.size() + 4) * 7 + header_words_per_page - 1) / header_words_per_page;
  bytes file(pages * words_per_page * format.size);
  put_text(file, 0, 4, words.names, format);
  put_text(file, 4, 16, words.description, format);
  put_text(file, 20, 2, words.owner, format);
  put_number(file, 23, words.version, format);
  put_number(file, 24, words.mark != 0 ? words.mark : precision_mark(format), format);
  put_number(file, 25, static_cast<double>(atoms.size()), format);
  put_number(file, 26, words.pages, format);
  put_number(file, 27, words.records_in_last_page, format);
  for (std::size_t i = 0; i < atoms.size(); ++i) put_atom(file, i, atoms[i], format);
  return file;
}

inline void add_page(bytes& file, word_format format) {
  file.resize(file.size() + words_per_page * format.size);
}

/// The file's word that holds word `position` (from 1) of record `record` (from 0) on page `page`.
inline std::size_t record_word(std::size_t page, std::size_t record, std::size_t record_words,
                               std::size_t position) {
  return page * words_per_page + record * record_words + position - 1;
}

}  // namespace ovtest
