// The rule of comparisons.
#include <optional>
#include <vector>

#include "filter/parser.h"
#include "filter/pattern.h"

namespace ovf::filter {

namespace {

std::optional<relation> relation_of(token_kind kind) noexcept {
  switch (kind) {
    case token_kind::equal:
      return relation::equal;
    case token_kind::unequal:
      return relation::unequal;
    case token_kind::less:
      return relation::less;
    case token_kind::less_or_equal:
      return relation::less_or_equal;
    case token_kind::greater:
      return relation::greater;
    case token_kind::greater_or_equal:
      return relation::greater_or_equal;
    default:
      return {};
  }
}

bool begins_comparison(token_kind kind) noexcept {
  return relation_of(kind) || kind == token_kind::in_word || kind == token_kind::between_word ||
         kind == token_kind::like_word || kind == token_kind::is_word || kind == token_kind::not_word;
}

}  // namespace

operand parser::comparison() {
  operand left = sum();
  const std::size_t position = current_.position;
  if (const auto asked = relation_of(current_.kind)) {
    advance();
    left = builder_.compare(*asked, left, sum(), position);
  } else if (accept(token_kind::is_word)) {
    const bool wanted = !accept(token_kind::not_word);
    expect(token_kind::absent_word, "ABSENT");
    left = builder_.is_absent(left, wanted);
  } else {
    const bool wanted = !accept(token_kind::not_word);
    if (accept(token_kind::in_word)) {
      left = one_of(left, wanted);
    } else if (accept(token_kind::between_word)) {
      left = between(left, wanted);
    } else if (accept(token_kind::like_word)) {
      left = like(left, wanted);
    } else if (!wanted) {
      missing("IN, BETWEEN or LIKE");
    }
  }
  if (begins_comparison(current_.kind)) {
    throw expression_error("comparisons do not follow each other without AND, OR or parentheses",
                           current_.position);
  }
  return left;
}

/// IN is `=` with one of the values, NOT IN is `<>` with all of them.
operand parser::one_of(const operand& left, bool wanted) {
  const relation asked = wanted ? relation::equal : relation::unequal;
  std::vector<std::size_t> decided;
  expect(token_kind::left_paren, "'('");
  for (;;) {
    const operand item = sum();
    if (accept(token_kind::comma)) {
      decided.push_back(builder_.compare_keep(asked, left, item, wanted, item.position));
      continue;
    }
    expect(token_kind::right_paren, "')'");
    // Not calculated even when all of it is constant: the jumps lead here.
    const operand result = builder_.compare_last(asked, left, item, item.position);
    for (const std::size_t jump : decided) builder_.land(jump);
    return result;
  }
}

/// BETWEEN is `>=` the first and `<=` the second, NOT BETWEEN is `<` the first or `>` the second; neither
/// holds when one of the three is absent.
operand parser::between(const operand& left, bool wanted) {
  const operand low = sum();
  expect(token_kind::and_word, "AND");
  return builder_.between(left, low, sum(), wanted);
}

operand parser::like(const operand& left, bool wanted) {
  if (current_.kind != token_kind::text) missing("the text of a pattern");
  if (current_.text.size() > longest_pattern) {
    throw expression_error("a pattern of more than " + std::to_string(longest_pattern) + " characters",
                           current_.position);
  }
  const wide written(without_end_blanks(current_.text));
  const std::size_t position = current_.position;
  if (wanted && written.empty()) {
    throw expression_error("nothing is like an empty text, absence is asked for by IS ABSENT", position);
  }
  advance();
  const std::optional<OLECHAR> escape = escape_character();
  auto asked = read_pattern(written, escape);
  if (!asked) throw expression_error("an escape character stands before %, _ or itself alone", position);
  return builder_.like(left, *std::move(asked), wanted);
}

/// ESCAPE is a word behind a pattern alone, and may name a field everywhere else.
std::optional<OLECHAR> parser::escape_character() {
  if (current_.kind != token_kind::name || current_.is_bracketed) return {};
  if (!equal_without_case(current_.text, "escape")) return {};
  advance();
  if (current_.kind != token_kind::text) missing("the text of an escape character");
  if (current_.text.size() != 1 || is_blank(current_.text.front())) {
    throw expression_error("an escape character is one character other than a blank", current_.position);
  }
  const OLECHAR escape = current_.text.front();
  advance();
  return escape;
}

}  // namespace ovf::filter
