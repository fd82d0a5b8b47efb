#include "words.h"

#include <cstdio>

namespace command {

void say(std::string_view words, std::string_view lines) {
  std::string line = "ovfile: ";
  // One message is one line, whatever the library's text looks like.
  for (const char c : words) line.push_back(c == '\n' || c == '\r' ? ' ' : c);
  line.push_back('\n');
  line += lines;
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
}

std::string counted(long long count, std::string_view thing) {
  return fmt::format("{} {}{}", count, thing, count == 1 ? "" : "s");
}

std::string joined(const std::vector<std::string>& texts, std::string_view separator) {
  std::string out;
  for (const std::string& text : texts) {
    if (&text != &texts.front()) out += separator;
    out += text;
  }
  return out;
}

std::string json_text(std::string_view utf8) {
  std::string out = "\"";
  for (const char c : utf8) {
    if (c == '"' || c == '\\') {
      out += {'\\', c};
    } else if (static_cast<unsigned char>(c) < 0x20) {
      out += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    } else {
      out.push_back(c);
    }
  }
  out.push_back('"');
  return out;
}

}  // namespace command
