#include "verify/table_header.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <utility>

#include "encoding.h"
#include "raw_file.h"

namespace command {
namespace {

constexpr std::size_t words_of_entry = 7;
constexpr std::size_t entries_before = 4;  ///< what stands before the dictionary is as long
constexpr std::size_t used_words = 504;    ///< of the 512 of a header page
constexpr std::size_t page_words = 512;
constexpr std::size_t description_word = 4;
constexpr std::size_t mark_word = 24;
constexpr std::size_t atoms_word = 25;
constexpr std::size_t most_atoms = 256;
constexpr double single_mark = 987654;
constexpr double double_mark = 456789;

/// Which byte of four a number's bytes come from, for each order of bytes that tables have.
constexpr std::size_t byte_orders[][4] = {{0, 1, 2, 3}, {1, 0, 3, 2}, {3, 2, 1, 0}, {2, 3, 0, 1}};

class header_words {
 public:
  header_words(std::string bytes, bool is_double) : bytes_(std::move(bytes)), word_(is_double ? 8 : 4) {}

  bool is_double() const noexcept { return word_ == 8; }
  const std::string& bytes() const noexcept { return bytes_; }
  /// Whether the file has the word.
  bool has(std::size_t word) const noexcept { return (place_of(word) + 1) * word_ <= bytes_.size(); }
  const char* at(std::size_t word) const noexcept { return bytes_.data() + place_of(word) * word_; }

  double number(std::size_t word) const noexcept {
    char ordered[8] = {};
    for (std::size_t i = 0; i < word_; ++i) ordered[i] = at(word)[i / 4 * 4 + byte_orders[order_][i % 4]];
    if (word_ == 8) return read<double>(ordered);
    return static_cast<double>(read<float>(ordered));
  }
  /// Four characters.
  void put_text(std::size_t word, const char* text) noexcept {
    std::memcpy(bytes_.data() + place_of(word) * word_, text, 4);
  }
  void put_number(std::size_t word, double number) noexcept {
    char plain[8] = {};
    const auto small = static_cast<float>(number);
    std::memcpy(plain, word_ == 8 ? static_cast<const void*>(&number) : &small, word_);
    char* const there = bytes_.data() + place_of(word) * word_;
    for (std::size_t i = 0; i < word_; ++i) there[i / 4 * 4 + byte_orders[order_][i % 4]] = plain[i];
  }

  /// Takes the order of bytes in which the mark reads as it must; false where there is none.
  bool find_order(double mark) noexcept {
    for (order_ = 0; has(mark_word) && order_ < std::size(byte_orders); ++order_) {
      if (number(mark_word) == mark) return true;
    }
    order_ = 0;
    return false;
  }

 private:
  template <class Number>
  static Number read(const char* bytes) noexcept {
    Number value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
  }

  static std::size_t place_of(std::size_t word) noexcept {
    return word / used_words * page_words + word % used_words;
  }

  std::string bytes_;
  std::size_t word_;
  std::size_t order_ = 0;
};

/// Up to `count` bytes from `position` on, fewer where the file ends.
std::string bytes_at(raw_file& file, std::uint64_t position, std::size_t count) {
  std::string bytes(count, '\0');
  file.go_to(position);
  std::size_t done = 0;
  while (done < count) {
    const std::size_t now = file.read(bytes.data() + done, count - done);
    if (now == 0) break;
    done += now;
  }
  bytes.resize(done);
  return bytes;
}

/// As far as a header can reach, with the precision and the order of bytes that its mark tells.
header_words read_words(raw_file& file, std::uint64_t& size) {
  if (!file.is_regular(size)) throw not_a_table();
  constexpr std::size_t most = 4 * page_words * 8;
  const std::string bytes = bytes_at(file, 0, static_cast<std::size_t>(std::min<std::uint64_t>(size, most)));
  header_words words(bytes, false);
  if (words.find_order(single_mark)) return words;
  words = header_words(bytes, true);
  if (!words.find_order(double_mark)) throw not_a_table();
  return words;
}

std::string name_of(const char* entry, bool is_double) {
  const std::size_t word = is_double ? 8 : 4;
  std::string name(entry, 4);
  name.append(entry + word, 4);
  const bool is_long = is_double && std::memcmp(entry + 2 * word + 4, "LONG", 4) == 0;
  if (is_long) {
    name.append(entry + 4, 4).append(entry + word + 4, 4).append(entry + 5 * word, 8);
  }
  name.erase(name.find_last_not_of(' ') + 1);
  return to_utf8(name, encoding::windows_1252);
}

}  // namespace

std::uint64_t table_header::header_pages() const noexcept {
  const auto words = (entries.size() + entries_before) * words_of_entry;
  return (words + used_words - 1) / used_words;
}

std::uint64_t table_header::record_words() const noexcept {
  return static_cast<std::uint64_t>(
      std::count_if(entries.begin(), entries.end(), [](const auto& each) { return each.position != 0; }));
}

std::vector<header_field> fields_in(const std::vector<dictionary_entry>& entries) {
  const auto is_stored = [](const dictionary_entry& entry) { return entry.position >= 1; };
  std::vector<header_field> fields;
  const dictionary_entry* first = nullptr;  // of the field
  for (const dictionary_entry& entry : entries) {
    const bool goes_on =
        first != nullptr && first->type == 'A' && entry.type == 'A' && first->name == entry.name;
    if (!goes_on) {
      first = &entry;
      fields.push_back({entry.name});
    } else if (!is_stored(*first) && is_stored(entry)) {
      fields.back().is_partly_stored = true;
    }
  }
  return fields;
}

bool begins_as_table(std::string_view bytes) {
  return header_words(std::string(bytes), false).find_order(single_mark) ||
         header_words(std::string(bytes), true).find_order(double_mark);
}

table_header read_table_header(const std::string& file) {
  table_header header;
  raw_file opened = raw_file::open_regular(file);
  const header_words words = read_words(opened, header.bytes);
  header.is_double = words.is_double();
  header.is_cut = !words.has(atoms_word + 2);
  if (header.is_cut) return header;
  header.atoms = words.number(atoms_word);
  header.pages = words.number(atoms_word + 1);
  header.records_in_last = words.number(atoms_word + 2);
  const bool is_count = header.atoms >= 0 && header.atoms <= static_cast<double>(most_atoms);
  const auto atoms = is_count ? static_cast<std::size_t>(header.atoms) : 0;
  for (std::size_t i = 0; i < atoms; ++i) {
    const std::size_t word = (i + entries_before) * words_of_entry;
    if (!words.has(word + words_of_entry - 1)) {
      header.is_cut = true;
      break;
    }
    header.entries.push_back({name_of(words.at(word), header.is_double), *words.at(word + 2),
                              words.number(word + 3), words.number(word + 4)});
  }
  header.is_cut = header.is_cut || header.bytes < header.header_pages() * header.page_bytes();
  return header;
}

std::string table_of_page(const std::string& file, std::uint64_t page, std::uint64_t records) {
  const table_header header = read_table_header(file);
  raw_file opened = raw_file::open_regular(file);
  std::uint64_t size = 0;
  header_words words = read_words(opened, size);
  words.put_number(atoms_word + 1, static_cast<double>(header.header_pages() + 1));
  words.put_number(atoms_word + 2, static_cast<double>(records));
  words.put_text(description_word, "    ");
  const std::uint64_t page_bytes = header.page_bytes();
  std::string table = words.bytes();
  table.resize(static_cast<std::size_t>(header.header_pages() * page_bytes));
  table += bytes_at(opened, page * page_bytes, static_cast<std::size_t>(page_bytes));
  table.resize(static_cast<std::size_t>((header.header_pages() + 1) * page_bytes));
  return table;
}

}  // namespace command
