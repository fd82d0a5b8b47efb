// The registry: keys below a root, each with named values and a default value (the empty name). The
// system's own on Windows, one text file on Linux. Keys and names ignore case; a path's steps are parted
// by backslashes. Reading never throws for what is stored; a missing key or value is simply not there.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/text.h"

namespace ovf {

enum class registry_root { classes, current_user };

struct registry_key {
  registry_root root;
  wide path;
};

/// The value, or nothing when it is missing or of another type.
std::optional<std::uint32_t> registry_number(const registry_key& key, wide_view name);
std::optional<wide> registry_text(const registry_key& key, wide_view name);
bool registry_key_exists(const registry_key& key);

/// One change; all changes of a call are made together on Linux, in order on Windows.
struct registry_change {
  enum class action {
    make_key,
    set_number,
    set_text,
    delete_tree,  ///< the key with everything below it
    delete_leaf   ///< the key with its values, unless there are keys below it
  };

  action what;
  registry_key key;
  wide name = {};            ///< set_number, set_text
  std::uint32_t number = 0;  ///< set_number
  wide text = {};            ///< set_text
};

/// Makes the changes, keys that are missing with them. Deleting a key that is not there succeeds. False
/// when one cannot be made; the reason is the system's last error.
bool change_registry(const std::vector<registry_change>& changes);

bool set_registry_number(const registry_key& key, wide_view name, std::uint32_t number);
bool set_registry_text(const registry_key& key, wide_view name, wide_view text);
bool make_registry_key(const registry_key& key);
/// Deletes the key with everything below it.
bool delete_registry_tree(const registry_key& key);

}  // namespace ovf
