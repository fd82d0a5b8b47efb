#include "platform/registry.h"

namespace ovf {

bool set_registry_number(const registry_key& key, wide_view name, std::uint32_t number) {
  return change_registry(
      {{.what = registry_change::action::set_number, .key = key, .name = wide(name), .number = number}});
}

bool set_registry_text(const registry_key& key, wide_view name, wide_view text) {
  return change_registry(
      {{.what = registry_change::action::set_text, .key = key, .name = wide(name), .text = wide(text)}});
}

bool make_registry_key(const registry_key& key) {
  return change_registry({{.what = registry_change::action::make_key, .key = key}});
}

bool delete_registry_tree(const registry_key& key) {
  return change_registry({{.what = registry_change::action::delete_tree, .key = key}});
}

}  // namespace ovf
