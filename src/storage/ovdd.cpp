#include "storage/ovdd.h"

#include <algorithm>

#include "ovfile/exception.h"

namespace ovf {
namespace {

constexpr std::string_view owner = "SYSTEM  ";

/// Where a header word stands among the bytes of the header pages.
template <class Precision>
constexpr std::size_t byte_of(std::size_t header_word) noexcept {
  return header_word / format::header_page_words * Precision::page_bytes +
         header_word % format::header_page_words * Precision::word_bytes;
}

}  // namespace

template <class Precision>
basic_ovdd<Precision>::basic_ovdd() : pages_(Precision::page_bytes) {
  store_texts<Precision>(word(format::first_name_word), 2 * format::name_words, {});
  store_texts<Precision>(word(format::description_word), format::description_words, {});
  store_texts<Precision>(word(format::owner_word), format::name_words, owner);
  store_number<Precision>(word(format::two_word), 2, byte_order::native);
  store_number<Precision>(word(format::mark_word), Precision::mark, byte_order::native);
}

template <class Precision>
void basic_ovdd<Precision>::set_description(std::string_view text) {
  store_texts<Precision>(word(format::description_word), format::description_words, text);
}

template <class Precision>
void basic_ovdd<Precision>::add_number(std::string_view name, number default_value, bool stored) {
  require_room(1);
  const auto entry = add_atom(name, 'N', stored);
  store_number<Precision>(entry_word<Precision>(entry, format::entry_ordinal), 1, byte_order::native);
  store_number<Precision>(entry_word<Precision>(entry, format::entry_default), default_value,
                          byte_order::native);
}

template <class Precision>
void basic_ovdd<Precision>::add_text(std::string_view name, std::string_view default_text, bool stored) {
  const std::size_t words =
      std::max<std::size_t>(1, (default_text.size() + format::text_word_chars - 1) / format::text_word_chars);
  require_room(words);
  for (std::size_t i = 0; i < words; ++i) {
    const auto entry = add_atom(name, 'A', stored);
    // Atoms of implicit fields count from 2 here: every writer of these files does it, readers ignore it.
    const std::size_t ordinal = i + (stored ? 1 : 2);
    const std::size_t begin = i * format::text_word_chars;
    store_number<Precision>(entry_word<Precision>(entry, format::entry_ordinal), static_cast<number>(ordinal),
                            byte_order::native);
    store_text<Precision>(entry_word<Precision>(entry, format::entry_default),
                          begin < default_text.size() ? default_text.substr(begin) : std::string_view());
  }
}

template <class Precision>
const std::vector<std::byte>& basic_ovdd<Precision>::finished() {
  // A new file is its header: as many pages as the dictionary takes, and no records.
  const std::size_t header_pages = pages_.size() / Precision::page_bytes;
  store_number<Precision>(word(format::atoms_word), static_cast<number>(atoms_), byte_order::native);
  store_number<Precision>(word(format::pages_word), static_cast<number>(header_pages), byte_order::native);
  return pages_;
}

template <class Precision>
std::byte* basic_ovdd<Precision>::word(std::size_t header_word) noexcept {
  return pages_.data() + byte_of<Precision>(header_word);
}

template <class Precision>
entry_span<Precision> basic_ovdd<Precision>::add_atom(std::string_view name, char type, bool stored) {
  const std::size_t first_word = (atoms_ + format::file_header_entries) * format::entry_words;
  ++atoms_;
  pages_.resize(format::header_pages(atoms_) * Precision::page_bytes);
  const entry_span<Precision> entry(word(first_word), format::entry_words * Precision::word_bytes);
  start_entry<Precision>(entry, name, type);
  const std::size_t position = stored ? ++stored_words_ : 0;
  store_number<Precision>(entry_word<Precision>(entry, format::entry_position), static_cast<number>(position),
                          byte_order::native);
  return entry;
}

template <class Precision>
void basic_ovdd<Precision>::require_room(std::size_t more) const {
  if (more > Precision::max_atoms - atoms_) throw MyExceptionClass(wide(Precision::too_many_atoms));
}

template class basic_ovdd<single_precision>;
template class basic_ovdd<double_precision>;

}  // namespace ovf
