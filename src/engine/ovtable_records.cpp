#include "engine/ovtable.h"
#include "engine/values.h"

namespace ovf {
namespace {

/// What is kept of a text that is read and put again.
std::string_view kept(std::string_view text) noexcept {
  return text.substr(0, text.find_last_not_of(" \t") + 1);
}

}  // namespace

template <class Precision>
void basic_ovtable<Precision>::readFreshRecord(std::byte* buffer) {
  const std::byte* words = record();
  for (const field& each : rows_.fields()) {
    if (!each.has_stored_words()) continue;
    if (each.kind == field_kind::numeric) {
      const std::byte* place = word_of(each.atoms.front(), words, Precision::word_bytes);
      store_number<Precision>(buffer, load_number<Precision>(place, rows_.order()), byte_order::native);
    } else {
      const std::string text = text_of(each, words, Precision::word_bytes);
      put_text<Precision>(buffer, each.atoms.size(), kept(text));
    }
    buffer += each.atoms.size() * Precision::word_bytes;
  }
}

template void basic_ovtable<single_precision>::readFreshRecord(std::byte*);
template void basic_ovtable<double_precision>::readFreshRecord(std::byte*);

}  // namespace ovf
