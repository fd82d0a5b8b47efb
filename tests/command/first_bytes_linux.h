// The moment at which a command has begun to write.
#pragma once

#include <algorithm>
#include <filesystem>

#include "support/started_program_linux.h"

namespace ovtest {

/// What the programs write that is to take a place in the folder; empty where there is nothing.
inline std::filesystem::path unfinished_in(const std::filesystem::path& folder) {
  const std::filesystem::directory_iterator entries(folder);
  const auto found = std::find_if(begin(entries), end(entries), [](const auto& entry) {
    return entry.path().filename().string().starts_with(".NEW");
  });
  return found == end(entries) ? std::filesystem::path() : found->path();
}

/// Up to the first bytes of a file, or of a file in a folder of the new folder, that takes a place in
/// `folder`. False when the program ends before.
inline bool goes_on_to_first_bytes(started_program& program, const std::filesystem::path& folder) {
  if (!program.goes_on_to(folder_change::creation, folder)) return false;
  const std::filesystem::path unfinished = unfinished_in(folder);
  if (!std::filesystem::is_directory(unfinished)) return program.goes_on_to(folder_change::writing, folder);
  return program.goes_on_to(folder_change::creation, unfinished) &&
         program.goes_on_to(folder_change::writing, std::filesystem::directory_iterator(unfinished)->path());
}

}  // namespace ovtest
