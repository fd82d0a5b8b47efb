#include "storage/header_pages.h"

#include <cstring>

namespace ovf {

template <class Precision>
auto header_pages<Precision>::get(std::size_t header_word) -> number {
  return load_number<Precision>(page(0) + header_word * Precision::word_bytes, order_);
}

template <class Precision>
void header_pages<Precision>::set(std::size_t header_word, std::uint64_t value) {
  store_number<Precision>(page(0) + header_word * Precision::word_bytes, static_cast<number>(value), order_);
  mark_changed();
}

template <class Precision>
std::string header_pages<Precision>::texts(std::size_t header_word, std::size_t words) {
  return load_texts<Precision>(page(0) + header_word * Precision::word_bytes, words);
}

template <class Precision>
std::string header_pages<Precision>::characters(std::size_t header_word, std::size_t words) {
  return load_characters<Precision>(page(0) + header_word * Precision::word_bytes, words);
}

template <class Precision>
std::vector<std::byte> header_pages<Precision>::words(std::size_t header_word, std::size_t count) {
  const std::byte* first = page(0) + header_word * Precision::word_bytes;
  return {first, first + count * Precision::word_bytes};
}

template <class Precision>
entry_span<Precision> header_pages<Precision>::entry(std::size_t atom) {
  std::byte* bytes =
      page(format::entry_page(atom)) + format::entry_word_on_page(atom) * Precision::word_bytes;
  return entry_span<Precision>(bytes, format::entry_words * Precision::word_bytes);
}

template <class Precision>
void header_pages<Precision>::flush() {
  if (!map_.dirty()) return;
  if (before_write_) before_write_();
  map_.flush();
  note_page();
}

template <class Precision>
void header_pages<Precision>::turn_to(file& target) noexcept {
  file_ = &target;
  known_.fill(std::nullopt);
  map_.turn_to(target);
}

template <class Precision>
void header_pages<Precision>::note_page() noexcept {
  const auto index = static_cast<std::size_t>(map_.segment());
  if (index < known_.size()) std::memcpy(known_[index].emplace().data(), map_.data(), sizeof(page_bytes));
}

template <class Precision>
void header_pages<Precision>::remember(std::uint64_t pages) {
  for (std::uint64_t index = pages; index-- > 0;) page(index);
}

template <class Precision>
header_state header_pages<Precision>::state_in_file() noexcept {
  for (std::size_t index = 0; index < known_.size(); ++index) {
    if (!known_[index]) continue;
    page_bytes now{};
    std::size_t done = 0;
    const auto position = static_cast<std::int64_t>(index * now.size());
    if (!file_->seek(position, seek_origin::begin) || !file_->read(now, done) || done != now.size()) {
      return header_state::unreadable;
    }
    if (now != *known_[index]) return header_state::changed;
  }
  return header_state::known;
}

template <class Precision>
std::byte* header_pages<Precision>::page(std::uint64_t index) {
  if (map_.segment() != index) {
    flush();
    map_.load(index, {Precision::page_bytes, Precision::page_bytes}, Precision::page_bytes, 0);
    // The first reading counts: a later one may find what others have written since.
    if (index < known_.size() && !known_[static_cast<std::size_t>(index)]) note_page();
  }
  return map_.data();
}

template class header_pages<single_precision>;
template class header_pages<double_precision>;

}  // namespace ovf
