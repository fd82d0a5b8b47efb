// Table files before and after their fields change, written word by word.
#pragma once

#include <array>

#include "engine_files.h"

namespace ovtest {

/// n stored numbers N1 … Nn.
inline std::vector<atom> stored_numbers(int n) {
  std::vector<atom> atoms;
  for (int i = 1; i <= n; ++i) atoms.push_back(number_atom("N" + std::to_string(i), i, i + 0.5));
  return atoms;
}

/// An added number: no place in the record.
inline atom added_number(std::string name, double value) { return {std::move(name), 'N', 0, 1, value, ""}; }

/// An added text: word 4 counts from 1.
inline void add_added_text(std::vector<atom>& atoms, const std::string& name, int words, std::string text) {
  text.resize(4 * static_cast<std::size_t>(words), ' ');
  for (int i = 0; i < words; ++i) {
    atoms.push_back({name, 'A', 0, i + 1, 0, text.substr(4 * static_cast<std::size_t>(i), 4)});
  }
}

/// The default word of an added text holds its 4 characters and then zeros.
inline void end_defaults_with_zeros(bytes& file, std::size_t first_entry, std::size_t words,
                                    word_format format) {
  if (format.size == 4) return;
  for (std::size_t i = first_entry; i < first_entry + words; ++i) {
    const std::size_t at = header_word((i + 4) * 7 + 6) * 8;
    std::fill_n(file.begin() + static_cast<std::ptrdiff_t>(at) + 4, 4, static_cast<unsigned char>(0));
  }
}

/// A table of these atoms, the first `stored` of them numbers in the record. Row r (from 1) holds
/// 1000 r + k in word k.
inline bytes numbers_table(const std::vector<atom>& atoms, int stored, int rows, int header_pages,
                           word_format format) {
  const int per_page = 508 / stored;
  const int record_pages = (rows + per_page - 1) / per_page;
  header_words words;
  words.description = "block model";
  words.pages = header_pages + record_pages;
  words.records_in_last_page = rows == 0 ? 0 : rows - (record_pages - 1) * per_page;
  bytes file = make_header(words, atoms, format);
  for (int row = 1; row <= rows; ++row) {
    const int index = row - 1;
    if (index % per_page == 0) add_page(file, format);
    for (int k = 1; k <= stored; ++k) {
      const std::size_t word = record_word(static_cast<std::size_t>(header_pages + index / per_page),
                                           static_cast<std::size_t>(index % per_page),
                                           static_cast<std::size_t>(stored), static_cast<std::size_t>(k));
      put_number(file, word, 1000.0 * row + k, format);
    }
  }
  return file;
}

inline constexpr std::array<word_format, 4> single_orders = {word_format{4, 0}, word_format{4, 256},
                                                             word_format{4, 1024}, word_format{4, 1280}};
inline constexpr std::array<word_format, 5> all_formats = {
    word_format{4, 0}, word_format{4, 256}, word_format{4, 1024}, word_format{4, 1280}, word_format{8, 0}};

inline std::string format_name(word_format format) {
  return (format.size == 4 ? "single" : "double") + std::to_string(format.order);
}

/// Names in a folder, sorted.
inline std::vector<std::string> names_in(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& each : std::filesystem::directory_iterator(folder)) {
    names.push_back(each.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace ovtest
