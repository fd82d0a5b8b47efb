// What kinds of table are called.
#pragma once

#include <string>

#include "ovfile/ovfile.h"

namespace command {

/// A hint of `TypeHint`, or a kind without its bit for tables in general, in plain words ("block model");
/// "table" where no kind was recognised, "kind 0x4000" for a kind without a name.
std::string kind_words(OvFileType hint);

}  // namespace command
