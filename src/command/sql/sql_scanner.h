// The pieces of a text in SQL.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "decimal.h"

namespace command {

inline bool is_letter(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}
inline bool is_blank(char c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// The bytes of a blank beyond ASCII, which the library takes for one too; 0 where there is none.
inline std::size_t wide_blank_length(std::string_view rest) noexcept {
  if (static_cast<unsigned char>(rest.front()) < 0x80) return 0;
  for (const std::string_view blank :
       {"\xC2\xA0", "\xE2\x80\xAF", "\xE2\x81\x9F", "\xE2\x81\xA0", "\xE3\x80\x80", "\xEF\xBB\xBF"}) {
    if (rest.starts_with(blank)) return blank.size();
  }
  const bool is_space = rest.starts_with("\xE2\x80") && rest.size() > 2 && rest[2] <= '\x8D';
  return is_space ? 3 : 0;
}

/// Goes through a text piece by piece: a quote, a comment, or one character.
class sql_scanner {
 public:
  explicit sql_scanner(std::string_view sql) noexcept : sql_(sql) {}

  bool is_at_end() const noexcept { return at_ >= sql_.size(); }
  std::size_t at() const noexcept { return at_; }
  char here() const noexcept { return sql_[at_]; }

  /// Over one piece; true when it is something that a statement consists of.
  bool go_on() noexcept {
    const std::string_view rest = sql_.substr(at_);
    const char c = rest.front();
    if (const std::size_t blank = wide_blank_length(rest); blank > 0) return skip_comment(blank);
    if (rest.starts_with("--")) return skip_comment(past(rest.find('\n'), 1));
    if (rest.starts_with("/*")) return skip_comment(comment_length(rest));
    if (c == '\'') return skip(is_escaping() ? escaped_length(rest) : quoted_length(rest));
    if (c == '"') return skip(quoted_length(rest));
    if (c == '$' && !follows_word()) return skip(dollar_length(rest));
    ++at_;
    return !is_blank(c);
  }

 private:
  bool skip(std::size_t length) noexcept {
    at_ += std::min(length, sql_.size() - at_);
    return true;
  }
  bool skip_comment(std::size_t length) noexcept {
    skip(length);
    return false;
  }
  static std::size_t past(std::size_t found, std::size_t length) noexcept {
    return found == std::string_view::npos ? found : found + length;
  }
  /// Comments may hold comments.
  static std::size_t comment_length(std::string_view rest) noexcept {
    std::size_t at = 2;
    for (std::size_t depth = 1; depth > 0; at += 2) {
      at = std::min(rest.find("/*", at), rest.find("*/", at));
      if (at >= rest.size()) return rest.size();
      rest[at] == '/' ? ++depth : --depth;
    }
    return at;
  }
  bool follows_word() const noexcept {
    return at_ > 0 && (is_letter(sql_[at_ - 1]) || is_digit(sql_[at_ - 1]));
  }
  /// E'...', where a backslash takes the next character along.
  bool is_escaping() const noexcept {
    const bool after_e = at_ > 0 && (sql_[at_ - 1] == 'e' || sql_[at_ - 1] == 'E');
    return after_e && (at_ == 1 || !(is_letter(sql_[at_ - 2]) || is_digit(sql_[at_ - 2])));
  }
  /// A quote that is doubled begins the next piece at once, which comes to the same.
  static std::size_t quoted_length(std::string_view rest) noexcept {
    return past(rest.find(rest.front(), 1), 1);
  }
  static std::size_t escaped_length(std::string_view rest) noexcept {
    for (std::size_t i = 1; i < rest.size(); ++i) {
      if (rest[i] == '\\') {
        ++i;
      } else if (rest[i] == '\'') {
        return i + 1;
      }
    }
    return rest.size();
  }
  /// $$...$$ or $tag$...$tag$; a dollar alone, as in $1, is one character.
  static std::size_t dollar_length(std::string_view rest) noexcept {
    const auto inside = [](char c) { return is_letter(c) || is_digit(c); };
    const auto* const end = std::find_if_not(rest.begin() + 1, rest.end(), inside);
    const auto tag = static_cast<std::size_t>(end - rest.begin()) + 1;
    if (end == rest.end() || *end != '$' || (tag > 2 && is_digit(rest[1]))) return 1;
    return past(rest.find(rest.substr(0, tag), tag), tag);
  }

  std::string_view sql_;
  std::size_t at_ = 0;
};

}  // namespace command
