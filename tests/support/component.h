// What the tests need of the component model beyond the hosts' own owners: the library's objects without
// any registration, variants by kind, and the thread's error information as a text.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

#include "ovfile/smart.h"
#include "support/wide_path.h"

namespace ovtest {

using wide = ovfile::wide_string;
using bstr = ovfile::text;
using variant = ovfile::variant;
using ovfile::to_utf8;

/// A path as a text for `Open` and `Create`.
inline bstr path_text(const std::filesystem::path& path) { return bstr(ovfile::wide_view(wide_path(path))); }

/// Holds one reference, and is used like the object.
template <class Interface>
class owned : public ovfile::pointer<Interface> {
 public:
  owned() = default;
  owned(ovfile::pointer<Interface> held) : ovfile::pointer<Interface>(std::move(held)) {}
  Interface& operator*() const { return *this->get(); }
};

inline variant text_variant(std::string_view utf8) { return variant(bstr(utf8)); }

/// Adds a reference.
inline variant object_variant(IDispatch* object) {
  variant made;
  VARIANT* raw = made.out();
  raw->vt = VT_DISPATCH;
  raw->pdispVal = object;
  if (object != nullptr) object->AddRef();
  return made;
}

inline void clear_error() { SetErrorInfo(0, nullptr); }

/// Takes the thread's error information; empty when there is none.
inline std::string take_error_text() {
  ovfile::pointer<IErrorInfo> info;
  if (GetErrorInfo(0, info.out()) != S_OK) return {};
  bstr description;
  info->GetDescription(description.out());
  return description.utf8();
}

template <class Interface, class Object>
owned<Interface> query(Object& object) {
  return ovfile::pointer<Object>(&object).template query<Interface>();
}

inline owned<IOvTable> make_table() { return ovfile::create_table(); }
inline owned<IOvSchema> make_schema() { return ovfile::create_schema(); }

}  // namespace ovtest
