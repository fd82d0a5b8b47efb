// Text formatting for messages and output. fmt/format.h is slow to compile and for number_text.cpp and
// formatting.cpp alone.
#pragma once

#include <fmt/core.h>

#include <string>
#include <string_view>
#include <vector>

namespace command {

/// A line on standard error that begins with the program's name, and `lines` below it, which end with LF.
class message {
 public:
  explicit message(std::string_view words, std::string_view lines = {});
  /// Needs no memory.
  void say() const noexcept;

 private:
  std::string text_;
};

/// Makes one and says it.
void say(std::string_view words, std::string_view lines = {});

/// "1 row", "2 rows".
std::string counted(long long count, std::string_view thing);

/// The texts in one, apart by `separator`.
std::string joined(const std::vector<std::string>& texts, std::string_view separator);

/// A JSON string, quotes included. All control characters, DEL and C1 as well, are in it by their numbers.
std::string json_text(std::string_view utf8);
/// Takes the first character off a text, which is not empty, and appends it as it is within a JSON string
/// where it is neither a quote nor a backslash.
void take_json_character(std::string& out, std::string_view& utf8);

}  // namespace command
