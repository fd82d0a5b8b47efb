// Files in the registry's text form.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/registry_document_linux.h"

namespace ovf {

/// The file's text; empty when it cannot be read.
registry_document read_registry_file(const std::string& name);

/// The user's registry; empty where somebody else than the user or the superuser can have written it. For
/// what leads to code that is run.
registry_document trusted_registry();

/// As `change_registry`; fails with `EBUSY` when others hold the file's lock for longer than that.
bool change_registry_within(std::chrono::milliseconds longest_wait,
                            const std::vector<registry_change>& changes);

}  // namespace ovf
