#include "filter/parser.h"

#include <algorithm>

namespace ovf::filter {

void parser::unexpected() const {
  if (current_.kind == token_kind::end) throw expression_error("a value is missing", current_.position);
  if (current_.kind == token_kind::absent_word) {
    throw expression_error("absence is asked for by IS ABSENT", current_.position);
  }
  constexpr std::size_t longest = 24;
  wide message(current_.source.substr(0, longest));
  // What is not to be seen would end the message, or hide it.
  std::replace_if(
      message.begin(), message.end(), [](OLECHAR c) { return code_of(c) < ' '; }, static_cast<OLECHAR>(' '));
  message.append(current_.source.size() > longest ? OLESTR("...") : OLESTR(""))
      .append(OLESTR(" is not expected"));
  throw expression_error(std::move(message), current_.position);
}

operand parser::expression() {
  operand left = conjunction();
  while (current_.kind == token_kind::or_word) {
    const std::size_t cut = builder_.short_cut(left, true);
    advance();
    left = builder_.joined(left, conjunction(), cut);
  }
  return left;
}

operand parser::conjunction() {
  operand left = negation();
  while (current_.kind == token_kind::and_word) {
    const std::size_t cut = builder_.short_cut(left, false);
    advance();
    left = builder_.joined(left, negation(), cut);
  }
  return left;
}

operand parser::negation() {
  if (current_.kind != token_kind::not_word) return comparison();
  const level deeper(*this);
  advance();
  return builder_.opposite(negation());
}

operand parser::sum() {
  operand left = product();
  while (current_.kind == token_kind::plus || current_.kind == token_kind::minus) {
    const opcode code = current_.kind == token_kind::plus ? opcode::add : opcode::subtract;
    advance();
    left = builder_.binary(code, left, product());
  }
  return left;
}

operand parser::product() {
  operand left = with_sign();
  while (current_.kind == token_kind::times || current_.kind == token_kind::divided) {
    const opcode code = current_.kind == token_kind::times ? opcode::multiply : opcode::divide;
    advance();
    left = builder_.binary(code, left, with_sign());
  }
  return left;
}

operand parser::with_sign() {
  const bool is_minus = current_.kind == token_kind::minus;
  if (!is_minus && current_.kind != token_kind::plus) return power();
  const level deeper(*this);
  advance();
  const operand of = with_sign();
  return builder_.unary(is_minus ? opcode::negate : opcode::same, of);
}

/// From the right: 2^3^2 is 2^9. The sign before it comes later: -2^2 is -4.
operand parser::power() {
  const operand base = primary();
  if (current_.kind != token_kind::power) return base;
  const level deeper(*this);
  advance();
  return builder_.binary(opcode::power, base, with_sign());
}

operand parser::primary() {
  const std::size_t position = current_.position;
  switch (current_.kind) {
    case token_kind::number: {
      const double number = current_.number;
      advance();
      return builder_.number(number, position);
    }
    case token_kind::text: {
      const operand made = builder_.text(current_.text, position);
      advance();
      return made;
    }
    case token_kind::name:
      return named();
    case token_kind::left_paren: {
      const level deeper(*this);
      advance();
      const operand inner = expression();
      expect(token_kind::right_paren, "')'");
      return inner;
    }
    default:
      unexpected();
  }
}

/// A name is a function's where a parenthesis follows, else a field's.
operand parser::named() {
  const wide name = current_.text;
  const std::size_t position = current_.position;
  const bool is_bracketed = current_.is_bracketed;
  advance();
  if (is_bracketed || current_.kind != token_kind::left_paren) return builder_.variable(name, position);
  const function* called = find_function(name);
  if (called == nullptr) throw expression_error("there is no function of this name", position);
  const level deeper(*this);
  advance();
  const operand result = call(*called, position);
  expect(token_kind::right_paren, "')'");
  return result;
}

operand parser::call(const function& called, std::size_t position) {
  operand result = called.arguments == arity::condition ? conditional() : expression();
  if (called.arguments == arity::one) {
    result = builder_.unary(called.code, result);
  } else if (called.arguments != arity::condition) {
    do {
      expect(token_kind::comma, "',' and another value");
      result = builder_.binary(called.code, result, expression());
    } while (called.arguments == arity::many && current_.kind == token_kind::comma);
  }
  result.position = position;
  return result;
}

/// if(condition, value, other value)
operand parser::conditional() {
  const operand condition = expression();
  expect(token_kind::comma, "','");
  const std::size_t to_second = builder_.jump_if(condition, false);
  const operand first = expression();
  expect(token_kind::comma, "','");
  const std::size_t to_end = builder_.jump();
  builder_.land(to_second);
  builder_.begin_other_branch();
  const operand second = expression();
  builder_.land(to_end);
  return builder_.either_branch(condition, first, second);
}

program compile(wide_view expression) { return parser(expression).parse(); }

}  // namespace ovf::filter
