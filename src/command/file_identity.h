// Whether a name still stands for the same file as before, unchanged.
#pragma once

#include <string>

namespace command {

/// A text that differs when another file has the name, or the file's size or last write differ; empty when
/// there is no such file. Systems note writes in steps of some milliseconds: a change within one of them that
/// keeps the size goes unseen.
std::string file_identity(const std::string& name);

}  // namespace command
