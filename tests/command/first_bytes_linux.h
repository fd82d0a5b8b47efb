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
/// `folder`; the folder that has it. Empty when the program ends before.
inline std::filesystem::path goes_on_to_first_bytes(started_program& program,
                                                    const std::filesystem::path& folder) {
  if (!program.goes_on_to(folder_change::creation, folder)) return {};
  std::filesystem::path changing = folder;
  if (const auto unfinished = unfinished_in(folder); std::filesystem::is_directory(unfinished)) {
    if (!program.goes_on_to(folder_change::creation, unfinished)) return {};
    changing = std::filesystem::directory_iterator(unfinished)->path();
  }
  return program.goes_on_to(folder_change::writing, changing) ? changing : std::filesystem::path();
}

/// Up to the first of its bytes that come of rows; a mark stands before them. False when the program ends
/// before.
inline bool goes_on_to_first_rows(started_program& program, const std::filesystem::path& folder) {
  const std::filesystem::path changing = goes_on_to_first_bytes(program, folder);
  return !changing.empty() && program.goes_on_to(folder_change::writing, changing);
}

}  // namespace ovtest
