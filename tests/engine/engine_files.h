// Small table files for the engine's tests, and the engine opened on them.
#pragma once

#include "engine/open_table.h"
#include "support/failing_files.h"
#include "support/scratch_folder.h"
#include "support/table_bytes.h"

namespace ovtest {

/// Holes of a drillhole set: BHID (8 characters), DEPTH, DENSITY (implicit, 2.75), LITH (implicit text).
/// Row r holds "H<r>" and r + 0.25.
inline bytes hole_table(int rows, word_format format) {
  std::vector<atom> atoms;
  add_text_atoms(atoms, "BHID", 2, 1, "none");
  atoms.push_back(number_atom("DEPTH", 3, -1));
  atoms.push_back(number_atom("DENSITY", 0, 2.75));
  add_text_atoms(atoms, "LITH", 1, 0, "ore");
  constexpr int per_page = 169;  // 3 words a record
  header_words words;
  words.description = "holes";
  const int record_pages = (rows + per_page - 1) / per_page;
  words.pages = 1 + record_pages;
  words.records_in_last_page = rows == 0 ? 0 : rows - (record_pages - 1) * per_page;
  bytes file = make_header(words, atoms, format);
  for (int row = 0; row < rows; ++row) {
    if (row % per_page == 0) add_page(file, format);
    const std::size_t page = 1 + static_cast<std::size_t>(row / per_page);
    const auto record = static_cast<std::size_t>(row % per_page);
    std::string name = "H" + std::to_string(row + 1);
    put_text(file, record_word(page, record, 3, 1), 2, name, format);
    put_number(file, record_word(page, record, 3, 3), row + 1.25, format);
  }
  return file;
}

/// A table of one text field of `width` words, one row of `text`.
inline bytes text_table(int width, const std::string& text, word_format format) {
  std::vector<atom> atoms;
  add_text_atoms(atoms, "TEXT", width, 1);
  header_words words;
  words.pages = 2;
  words.records_in_last_page = 1;
  bytes file = make_header(words, atoms, format);
  add_page(file, format);
  put_text(file, record_word(1, 0, static_cast<std::size_t>(width), 1), static_cast<std::size_t>(width), text,
           format);
  return file;
}

class engine_files {
 public:
  /// Writes the bytes and opens them.
  std::unique_ptr<ovf::table> open(const bytes& content, bool read_only = false) {
    write_bytes(path_, content);
    return reopen(read_only);
  }
  std::unique_ptr<ovf::table> reopen(bool read_only = false) { return ovf::open_table(name(), read_only); }
  ovf::wide name() const { return wide_path(path_); }
  bytes content() const { return read_bytes(path_); }
  const std::filesystem::path& path() const { return path_; }

 private:
  scratch_folder folder_;
  std::filesystem::path path_ = folder_ / "table.ovt";
};

/// The raw bytes of a record word.
inline std::string raw_word(const bytes& file, std::size_t word, word_format format) {
  return {reinterpret_cast<const char*>(file.data()) + word * format.size, format.size};
}

inline std::string utf8(const ovf::wide& text) { return ovf::utf8_from_wide(text); }

}  // namespace ovtest
