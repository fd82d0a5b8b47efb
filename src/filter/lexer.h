// Cuts an expression into tokens.
#pragma once

#include "filter/characters.h"

namespace ovf::filter {

enum class token_kind {
  end,
  number,
  text,
  name,  ///< as it stands, or in brackets
  left_paren,
  right_paren,
  comma,
  plus,
  minus,
  times,
  divided,
  power,
  equal,
  unequal,
  less,
  less_or_equal,
  greater,
  greater_or_equal,
  and_word,  ///< also &&
  or_word,   ///< also ||
  not_word,  ///< also !
  in_word,
  between_word,
  like_word,
  is_word,
  absent_word
};

struct token {
  token_kind kind = token_kind::end;
  std::size_t position = 0;  ///< from 0
  wide_view source;          ///< as it stands in the expression
  wide text;                 ///< a text or a name without its quotes or brackets
  double number = 0;
  bool is_bracketed = false;
};

class lexer {
 public:
  /// Looks into `expression` for as long as it lives.
  /// A byte order mark at its beginning does not count.
  explicit lexer(wide_view expression);

  /// Reads the next token into `current`. Throws expression_error.
  void next(token& current);

 private:
  void read_number(token& current);
  void read_quoted(token& current, OLECHAR close, const char* missing);
  void read_name(token& current);
  void read_operator(token& current);
  bool at(std::size_t index, unsigned code) const noexcept {
    return index < expression_.size() && code_of(expression_[index]) == code;
  }
  std::size_t digits_end(std::size_t from) const noexcept;

  wide_view expression_;
  std::size_t at_ = 0;
};

}  // namespace ovf::filter
