#include "table/shared_methods.h"

#include <algorithm>
#include <iterator>

namespace ovf::shared {
namespace {

/// Copies a text into a fixed place with a terminating 0, cut where it does not fit.
template <std::size_t N>
void put_text(OLECHAR (&place)[N], const wide& text) {
  const std::size_t length = std::min(text.size(), N - 1);
  std::copy_n(text.begin(), length, std::begin(place));
  std::fill(std::begin(place) + length, std::end(place), OLECHAR{});
}

LONG narrow(std::uint64_t count) noexcept { return static_cast<LONG>(count); }

}  // namespace

HRESULT get_facts(const table_core& core, OvTableFacts* out) {
  if (out == nullptr) return E_POINTER;
  if (out->cbSize != sizeof(OvTableFacts)) return E_INVALIDARG;
  *out = {};
  out->cbSize = sizeof(OvTableFacts);
  table& opened = core.opened();
  const table_facts found = opened.facts();
  out->wordBytes = opened.isDouble() ? 8 : 4;
  out->byteOrder = static_cast<LONG>(found.order);
  out->atoms = narrow(found.atoms);
  out->headerPages = narrow(found.header_pages);
  out->recordWords = narrow(found.record_words);
  out->recordsPerPage = narrow(found.records_per_page);
  out->recordsInLastPage = narrow(found.records_in_last_page);
  out->pages = static_cast<long long>(found.pages);
  out->rows = static_cast<long long>(opened.getRowCount());
  out->fileBytes = static_cast<long long>(found.file_bytes);
  put_text(out->firstName, found.first_name);
  put_text(out->secondName, found.second_name);
  put_text(out->description, found.description);
  put_text(out->owner, found.owner);
  return S_OK;
}

}  // namespace ovf::shared
