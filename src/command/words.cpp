#include "words.h"

#include <cstdio>

#include "shown_text.h"

namespace command {

void say(std::string_view words, std::string_view lines) {
  std::string line = "ovfile: ";
  // One message is one line, whatever the library's text looks like.
  std::string text(words);
  for (char& c : text) {
    if (c == '\n' || c == '\r') c = ' ';
  }
  append_shown(line, text);
  line.push_back('\n');
  line += shown_lines(lines);
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
    } else if (static_cast<unsigned char>(c) < 0x20 || c == '\x7F') {
      out += fmt::format("\\u{:04x}", static_cast<unsigned>(c));
    } else {
      out.push_back(c);
    }
  }
  out.push_back('"');
  return out;
}

}  // namespace command
