#include "storage/header_image.h"

namespace ovf {

template <class Precision>
bool header_image<Precision>::read(file& from) noexcept {
  std::size_t done = 0;
  return from.seek(0, seek_origin::begin) && from.read(bytes_, done) && done == bytes_.size();
}

template <class Precision>
void header_image<Precision>::set(std::size_t header_word, std::uint64_t value) noexcept {
  store_number<Precision>(bytes_.data() + header_word * Precision::word_bytes, static_cast<number>(value),
                          order_);
}

template <class Precision>
entry_span<Precision> header_image<Precision>::entry(std::size_t atom) noexcept {
  std::byte* bytes = bytes_.data() + format::entry_page(atom) * Precision::page_bytes +
                     format::entry_word_on_page(atom) * Precision::word_bytes;
  return entry_span<Precision>(bytes, format::entry_words * Precision::word_bytes);
}

template class header_image<single_precision>;
template class header_image<double_precision>;

}  // namespace ovf
