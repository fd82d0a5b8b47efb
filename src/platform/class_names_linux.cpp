// Programmatic identifiers of classes, and classes by them: the library's own, then registered ones.
#include <algorithm>

#include "platform/caught.h"
#include "platform/class_registry_linux.h"
#include "platform/own_classes.h"
#include "platform/text_case.h"

namespace ovf {
namespace {

const own_class* own_class_named(wide_view name) {
  for (const own_class& candidate : own_classes) {
    if (equal_without_case(name, candidate.name) || equal_without_case(name, candidate.versioned)) {
      return &candidate;
    }
  }
  return nullptr;
}

HRESULT class_named(wide_view name, CLSID& id) {
  if (const own_class* own = own_class_named(name)) {
    id = own->id;
    return S_OK;
  }
  const std::optional<CLSID> found = registered_class(name);
  id = found.value_or(CLSID_NULL);
  return found ? S_OK : CO_E_CLASSSTRING;
}

HRESULT task_copy(wide_view text, LPOLESTR* out) {
  const std::size_t size = (text.size() + 1) * sizeof(OLECHAR);
  *out = static_cast<LPOLESTR>(CoTaskMemAlloc(size));
  if (*out == nullptr) return E_OUTOFMEMORY;
  std::copy(text.begin(), text.end(), *out);
  (*out)[text.size()] = 0;
  return S_OK;
}

HRESULT name_of(REFCLSID id, LPOLESTR* out) {
  if (const own_class* own = find_own_class(id)) return task_copy(own->versioned, out);
  const std::optional<wide> name = registered_name(id);
  return name ? task_copy(*name, out) : REGDB_E_CLASSNOTREG;
}

}  // namespace
}  // namespace ovf

HRESULT CLSIDFromProgID(LPCOLESTR progId, CLSID* pclsid) {
  if (pclsid == nullptr) return E_POINTER;
  *pclsid = CLSID_NULL;
  if (progId == nullptr) return E_INVALIDARG;
  return ovf::caught([&] { return ovf::class_named(progId, *pclsid); });
}

HRESULT ProgIDFromCLSID(REFCLSID clsid, LPOLESTR* pprogId) {
  if (pprogId == nullptr) return E_POINTER;
  *pprogId = nullptr;
  return ovf::caught([&] { return ovf::name_of(clsid, pprogId); });
}
