// Files in the registry's text form.
#pragma once

#include <string>

#include "platform/registry_document_linux.h"

namespace ovf {

/// The file's text; empty when it cannot be read.
registry_document read_registry_file(const std::string& name);

}  // namespace ovf
