#include "words.h"

#include <cstdint>
#include <cstdio>

#include "ovfile/smart.h"
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
  while (!utf8.empty()) {
    if (utf8.front() == '"' || utf8.front() == '\\') out.push_back('\\');
    take_json_character(out, utf8);
  }
  out.push_back('"');
  return out;
}

void take_json_character(std::string& out, std::string_view& utf8) {
  const std::string_view before = utf8;
  bool valid = true;
  const std::uint32_t c = ovfile::take_utf8(utf8, valid);
  if (is_control(c)) {
    out += fmt::format("\\u{:04x}", c);
  } else {
    out += before.substr(0, before.size() - utf8.size());
  }
}

}  // namespace command
