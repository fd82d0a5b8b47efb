#include "words.h"

#include <cstdio>

#include "shown_text.h"

namespace command {

message::message(std::string_view words, std::string_view lines) : text_("ovfile: ") {
  // One message is one line, whatever the library's text looks like.
  std::string text(words);
  for (char& c : text) {
    if (c == '\n' || c == '\r') c = ' ';
  }
  append_shown(text_, text);
  text_.push_back('\n');
  text_ += shown_lines(lines);
}

void message::say() const noexcept {
  std::fwrite(text_.data(), 1, text_.size(), stderr);
  std::fflush(stderr);
}

void say(std::string_view words, std::string_view lines) { message(words, lines).say(); }

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
