// What hosts find in the system's registry: the classes by their names and identifiers, the type library,
// and the two categories by which browsers and scripts know a component that they may use.
#include <new>

#include "base/system_error.h"
#include "platform/caught.h"
#include "platform/module_path.h"
#include "platform/own_classes.h"
#include "platform/registry.h"
#include "platform/type_library.h"

namespace ovf {

namespace {

using action = registry_change::action;
using changes = std::vector<registry_change>;

/// When the classes are entered, but not their categories.
constexpr HRESULT class_registration_failed = static_cast<HRESULT>(0x80040201U);

struct category {
  GUID id;
  wide_view description;
};

constexpr category categories[] = {
    {{0x7DD95801, 0x9882, 0x11CF, {0x9F, 0xA9, 0x00, 0xAA, 0x00, 0x6C, 0x42, 0xC4}},
     OLESTR("Controls that are safely scriptable")},
    {{0x7DD95802, 0x9882, 0x11CF, {0x9F, 0xA9, 0x00, 0xAA, 0x00, 0x6C, 0x42, 0xC4}},
     OLESTR("Controls safely initializable from persistent data")},
};
/// Descriptions are kept by language: US English.
constexpr wide_view category_language = OLESTR("409");

wide text_of(REFGUID id) {
  OLECHAR text[40] = {};
  StringFromGUID2(id, text, 40);
  return text;
}

wide class_path(REFCLSID id) { return wide(OLESTR("CLSID\\")).append(text_of(id)); }

wide below(const wide& path, wide_view step) { return wide(path).append(OLESTR("\\")).append(step); }

registry_change set(wide path, wide_view text, wide_view name = {}) {
  return {.what = action::set_text,
          .key = {registry_root::classes, std::move(path)},
          .name = wide(name),
          .text = wide(text)};
}

registry_change on_key(action what, wide path) {
  return {.what = what, .key = {registry_root::classes, std::move(path)}};
}

void enter_names(const own_class& entered, changes& list) {
  const wide versioned(entered.versioned);
  const wide name(entered.name);
  list.push_back(set(versioned, entered.description));
  list.push_back(set(below(versioned, OLESTR("CLSID")), text_of(entered.id)));
  list.push_back(set(name, entered.description));
  list.push_back(set(below(name, OLESTR("CLSID")), text_of(entered.id)));
  list.push_back(set(below(name, OLESTR("CurVer")), entered.versioned));
}

void enter_class(const own_class& entered, const wide& module, changes& list) {
  const wide path = class_path(entered.id);
  // Nothing of an earlier version stays.
  list.push_back(on_key(action::delete_tree, path));
  list.push_back(set(path, entered.description));
  list.push_back(set(below(path, OLESTR("ProgID")), entered.versioned));
  list.push_back(set(below(path, OLESTR("VersionIndependentProgID")), entered.name));
  list.push_back(on_key(action::make_key, below(path, OLESTR("Programmable"))));
  const wide server = below(path, OLESTR("InprocServer32"));
  list.push_back(set(server, module));
  list.push_back(set(server, OLESTR("Apartment"), OLESTR("ThreadingModel")));
  list.push_back(set(below(path, OLESTR("TypeLib")), text_of(LIBID_OvFileLib)));
}

/// A name that something else was entered below keeps it, and stays.
void remove_names(const own_class& removed, changes& list) {
  const wide versioned(removed.versioned);
  const wide name(removed.name);
  for (const wide& path : {below(versioned, OLESTR("CLSID")), versioned, below(name, OLESTR("CLSID")),
                           below(name, OLESTR("CurVer")), name}) {
    list.push_back(on_key(action::delete_leaf, path));
  }
}

HRESULT make(const changes& list) {
  set_last_system_error(0);
  return change_registry(list) ? S_OK : last_error_status();
}

HRESULT register_classes() {
  const wide module = module_path();
  if (module.empty()) return E_FAIL;
  changes list;
  for (const own_class& each : own_classes) {
    enter_names(each, list);
    enter_class(each, module, list);
  }
  return make(list);
}

HRESULT unregister_classes() {
  changes list;
  for (const own_class& each : own_classes) {
    remove_names(each, list);
    list.push_back(on_key(action::delete_tree, class_path(each.id)));
  }
  return make(list);
}

HRESULT register_categories() {
  changes list;
  for (const category& each : categories) {
    list.push_back(
        set(below(OLESTR("Component Categories"), text_of(each.id)), each.description, category_language));
  }
  return make(list);
}

HRESULT implement_categories() {
  changes list;
  for (const CLSID& id : {CLSID_OvSchema, CLSID_OvTable, CLSID_OvTableADO}) {
    const wide implemented = below(class_path(id), OLESTR("Implemented Categories"));
    for (const category& each : categories) {
      list.push_back(on_key(action::make_key, below(implemented, text_of(each.id))));
    }
  }
  return make(list);
}

HRESULT register_all() {
  HRESULT status = register_classes();
  if (SUCCEEDED(status)) status = register_type_library();
  if (FAILED(status)) return status;
  const bool categorized = SUCCEEDED(register_categories()) && SUCCEEDED(implement_categories());
  return categorized ? status : class_registration_failed;
}

HRESULT unregister_all() {
  const HRESULT classes = unregister_classes();
  const HRESULT types = unregister_type_library();
  return FAILED(classes) ? classes : types;
}

}  // namespace

}  // namespace ovf

extern "C" HRESULT STDAPICALLTYPE DllRegisterServer() { return ovf::caught(&ovf::register_all); }

extern "C" HRESULT STDAPICALLTYPE DllUnregisterServer() { return ovf::caught(&ovf::unregister_all); }
