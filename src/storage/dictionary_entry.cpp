#include "storage/dictionary_entry.h"

#include <algorithm>
#include <iterator>

namespace ovf {
namespace {

constexpr std::size_t half = 4;  // bytes of the half words over which names are spread
constexpr std::string_view long_mark = "LONG";

/// Where the half words of a long name stand in an entry, in the order of the name's characters: the
/// first halves of the two name words, then their second halves, then word 5.
constexpr std::size_t long_name_halves[] = {0, 8, 4, 12, 40, 44};

}  // namespace

template <class Precision>
std::string load_entry_name(const_entry_span<Precision> entry) {
  const auto* characters = reinterpret_cast<const char*>(entry.data());
  std::string name;
  if constexpr (Precision::is_double) {
    const std::size_t mark_at = format::entry_type * Precision::word_bytes + half;
    const bool is_long = std::string_view(characters + mark_at, half) == long_mark;
    const std::size_t halves = is_long ? std::size(long_name_halves) : 2;
    for (std::size_t i = 0; i < halves; ++i) name.append(characters + long_name_halves[i], half);
  } else {
    name.assign(characters, format::short_name_chars);
  }
  name.erase(std::min(name.find('\0'), name.size()));
  name.erase(name.find_last_not_of(' ') + 1);
  return name;
}

template <class Precision>
void store_entry_name(entry_span<Precision> entry, std::string_view name) noexcept {
  store_texts<Precision>(entry.data(), format::name_words, name.substr(0, format::short_name_chars));
  if constexpr (Precision::is_double) {
    const bool is_long = name.size() > format::short_name_chars;
    std::byte* mark = entry_word<Precision>(entry, format::entry_type) + half;
    std::byte* tail = entry_word<Precision>(entry, format::entry_long_name);
    std::memset(mark, 0, half);
    std::memset(tail, 0, Precision::word_bytes);
    if (!is_long) return;
    std::memcpy(mark, long_mark.data(), half);
    std::string padded(name);
    padded.resize(format::long_name_chars, ' ');
    for (std::size_t i = 0; i < std::size(long_name_halves); ++i) {
      std::memcpy(entry.data() + long_name_halves[i], padded.data() + i * half, half);
    }
  }
}

template <class Precision>
void start_entry(entry_span<Precision> entry, std::string_view name, char type) noexcept {
  std::memset(entry.data(), 0, entry.size());
  std::byte* type_word = entry.data() + format::entry_type * Precision::word_bytes;
  std::memset(type_word, ' ', format::text_word_chars);
  *type_word = static_cast<std::byte>(type);
  store_entry_name<Precision>(entry, name);
}

template std::string load_entry_name<single_precision>(const_entry_span<single_precision>);
template std::string load_entry_name<double_precision>(const_entry_span<double_precision>);
template void store_entry_name<single_precision>(entry_span<single_precision>, std::string_view) noexcept;
template void store_entry_name<double_precision>(entry_span<double_precision>, std::string_view) noexcept;
template void start_entry<single_precision>(entry_span<single_precision>, std::string_view, char) noexcept;
template void start_entry<double_precision>(entry_span<double_precision>, std::string_view, char) noexcept;

}  // namespace ovf
