// From the text of an expression to its program.
//
// expression  = conjunction { OR conjunction }
// conjunction = negation { AND negation }
// negation    = NOT negation | comparison
// comparison  = sum [ relation sum | [NOT] IN ( sum {, sum} ) | [NOT] BETWEEN sum AND sum
//                   | [NOT] LIKE text [ESCAPE text] | IS [NOT] ABSENT ]
// sum         = product { (+ | -) product }
// product     = signed { (* | /) signed }
// signed      = (- | +) signed | power
// power       = primary [ ^ signed ]
// primary     = number | text | name | function ( … ) | ( expression )
#pragma once

#include <optional>
#include <string>

#include "filter/expression_error.h"
#include "filter/functions.h"
#include "filter/lexer.h"
#include "filter/program_builder.h"

namespace ovf::filter {

/// Parentheses, calls, NOT, signs and powers inside each other.
constexpr std::size_t deepest_nesting = 100;

/// Throws expression_error.
program compile(wide_view expression);

/// One function for each rule; each leaves the instructions of one value behind.
class parser {
 public:
  explicit parser(wide_view expression) : lexer_(expression) { advance(); }

  program parse() {
    const operand result = expression();
    if (current_.kind != token_kind::end) unexpected();
    return builder_.finish(result);
  }

 private:
  /// One level more for as long as it lives.
  class level {
   public:
    explicit level(parser& owner) : owner_(owner) {
      if (++owner.depth_ > deepest_nesting) {
        throw expression_error("nested more than " + std::to_string(deepest_nesting) + " deep",
                               owner.current_.position);
      }
    }
    level(const level&) = delete;
    level& operator=(const level&) = delete;
    ~level() { --owner_.depth_; }

   private:
    parser& owner_;
  };

  void advance() { lexer_.next(current_); }
  bool accept(token_kind kind) {
    if (current_.kind != kind) return false;
    advance();
    return true;
  }
  void expect(token_kind kind, const char* what) {
    if (!accept(kind)) missing(what);
  }
  [[noreturn]] void missing(const char* what) const {
    throw expression_error(std::string(what) + " is missing", current_.position);
  }
  [[noreturn]] void unexpected() const;

  operand expression();
  operand conjunction();
  operand negation();
  operand comparison();  // this one and the next four: parser_comparisons.cpp
  operand one_of(const operand& left, bool wanted);
  operand between(const operand& left, bool wanted);
  operand like(const operand& left, bool wanted);
  std::optional<OLECHAR> escape_character();
  operand sum();
  operand product();
  operand with_sign();
  operand power();
  operand primary();
  operand named();
  operand call(const function& called, std::size_t position);
  operand conditional();

  lexer lexer_;
  token current_;
  program_builder builder_;
  std::size_t depth_ = 0;
};

}  // namespace ovf::filter
