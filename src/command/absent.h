// The number that means "no value".
#pragma once

#include <string>

namespace command {

inline constexpr double absent_number = -1.0e30;

inline bool is_absent(double value) noexcept { return value == absent_number; }
inline bool is_absent(float value) noexcept { return value == static_cast<float>(absent_number); }

/// What stands in text for an absent number where the user asks for this word: nothing for "null", the number
/// itself for "keep", else the word.
std::string written_absent(const std::string& word);

}  // namespace command
