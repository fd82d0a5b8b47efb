#include "platform/class_registry_linux.h"

#include <dlfcn.h>

#include "base/file.h"
#include "platform/debug_channel.h"
#include "platform/module_path.h"
#include "platform/registry_file_linux.h"

namespace ovf {

namespace {

/// The folder of this module's file, behind links, with its slash.
std::string module_folder() {
  wide path = module_path();
  (void)files().resolve(path, path);
  return utf8_from_wide(folder_of(path));
}

registry_document beside_the_library() {
  return read_registry_file(module_folder() + "ovfile-components.reg");
}

wide text_of(REFCLSID id) {
  OLECHAR text[40];
  StringFromGUID2(id, text, 40);
  return text;
}

registry_key class_key(REFCLSID id, wide_view below) {
  return {registry_root::classes, wide(u"CLSID\\").append(text_of(id)).append(u"\\").append(below)};
}

}  // namespace

std::optional<std::string> registered_module(REFCLSID id) {
  const registry_key key = class_key(id, u"InprocServer32");
  if (const auto path = trusted_registry().text(key, {})) return utf8_from_wide(*path);
  const auto path = beside_the_library().text(key, {});
  if (!path) return {};
  // In that file a name without a slash is a neighbour.
  const bool is_neighbour = path->find(u'/') == wide::npos;
  return (is_neighbour ? module_folder() : std::string()) + utf8_from_wide(*path);
}

std::optional<CLSID> registered_class(wide_view programmatic_id) {
  const registry_key key{registry_root::classes, wide(programmatic_id).append(u"\\CLSID")};
  std::optional<wide> text = registry_text(key, {});
  if (!text) text = beside_the_library().text(key, {});
  CLSID id{};
  // A braced text only: a name here would lead on to the next name.
  if (!text || !text->starts_with(u'{') || FAILED(CLSIDFromString(text->c_str(), &id))) return {};
  return id;
}

std::optional<wide> registered_name(REFCLSID id) {
  const registry_key key = class_key(id, u"ProgID");
  std::optional<wide> name = registry_text(key, {});
  return name ? name : beside_the_library().text(key, {});
}

HRESULT class_object_of_module(const std::string& path, REFCLSID id, REFIID iid, void** out) {
  // What a relative path leads to is not for the registry to say.
  if (!path.starts_with('/')) {
    debug_output(wide_from_utf8(path + ": a module is registered with its whole path"));
    return CO_E_DLLNOTFOUND;
  }
  // Modules stay loaded: nobody can tell when the last of their objects is gone.
  void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) {
    const char* reason = dlerror();
    debug_output(wide_from_utf8(reason != nullptr ? reason : path));
    return CO_E_DLLNOTFOUND;
  }
  using entry_point = HRESULT (*)(REFCLSID, REFIID, void**);
  const auto get_class_object = reinterpret_cast<entry_point>(dlsym(module, "DllGetClassObject"));
  if (get_class_object == nullptr) return CO_E_ERRORINDLL;
  return get_class_object(id, iid, out);
}

}  // namespace ovf
