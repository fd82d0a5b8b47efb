#include "filter/lexer.h"

#include <algorithm>
#include <utility>

#include "filter/expression_error.h"
#include "filter/number_text.h"

namespace ovf::filter {

namespace {

struct word {
  std::string_view text;
  token_kind kind;
};

constexpr word words[] = {
    {"and", token_kind::and_word}, {"or", token_kind::or_word},           {"not", token_kind::not_word},
    {"in", token_kind::in_word},   {"between", token_kind::between_word}, {"like", token_kind::like_word},
    {"is", token_kind::is_word},   {"absent", token_kind::absent_word},
};

/// A longer sign stands before those that it begins with.
constexpr word signs[] = {
    {"<>", token_kind::unequal},       {"!=", token_kind::unequal},
    {"<=", token_kind::less_or_equal}, {">=", token_kind::greater_or_equal},
    {"==", token_kind::equal},         {"&&", token_kind::and_word},
    {"||", token_kind::or_word},       {"=", token_kind::equal},
    {"<", token_kind::less},           {">", token_kind::greater},
    {"!", token_kind::not_word},       {"(", token_kind::left_paren},
    {")", token_kind::right_paren},    {",", token_kind::comma},
    {"+", token_kind::plus},           {"-", token_kind::minus},
    {"*", token_kind::times},          {"/", token_kind::divided},
    {"^", token_kind::power},
};

bool begins_with(wide_view text, std::string_view ascii) noexcept {
  if (text.size() < ascii.size()) return false;
  return std::equal(ascii.begin(), ascii.end(), text.begin(),
                    [](char wanted, OLECHAR c) { return code_of(c) == static_cast<unsigned char>(wanted); });
}

token_kind kind_of_name(wide_view name) noexcept {
  for (const word& candidate : words) {
    if (equal_without_case(name, candidate.text)) return candidate.kind;
  }
  return token_kind::name;
}

[[noreturn]] void refuse_sign(OLECHAR c, std::size_t position) {
  const unsigned code = code_of(c);
  if (code == '&') throw expression_error("& alone is no operator, write && or AND", position);
  if (code == '|') throw expression_error("| alone is no operator, write || or OR", position);
  if (const std::string_view hint = hint_for(code); !hint.empty()) throw expression_error(hint, position);
  wide message(OLESTR("unknown character"));
  if (code > ' ') message.append(OLESTR(" ")).push_back(c);
  throw expression_error(std::move(message), position);
}

/// Words of other languages. Unknown fields are absent, so that `AU = NULL` would never pass and nobody
/// would know why.
void refuse_foreign_word(wide_view name, std::size_t position) {
  constexpr std::pair<std::string_view, const char*> foreign[] = {
      {"null", "there is no NULL, write IS ABSENT (a field of this name goes in brackets)"},
      {"true", "there is no TRUE, write 1 or the condition alone (a field of this name goes in brackets)"},
      {"false", "there is no FALSE, write 0 or NOT (a field of this name goes in brackets)"},
  };
  for (const auto& [word, message] : foreign) {
    if (equal_without_case(name, word)) throw expression_error(message, position);
  }
}

}  // namespace

lexer::lexer(wide_view expression) : expression_(expression) {
  if (at(0, byte_order_mark)) at_ = 1;
}

void lexer::next(token& current) {
  while (at_ < expression_.size() && is_space(expression_[at_])) ++at_;
  current.position = at_;
  current.is_bracketed = false;
  if (at_ == expression_.size()) {
    current.kind = token_kind::end;
  } else if (const OLECHAR c = expression_[at_]; code_of(c) == '\'' || code_of(c) == '"') {
    current.kind = token_kind::text;
    read_quoted(current, c, "a text without its closing quote");
  } else if (code_of(c) == '[') {
    current.kind = token_kind::name;
    current.is_bracketed = true;
    read_quoted(current, static_cast<OLECHAR>(']'), "a name without its closing bracket");
    if (current.text.empty()) throw expression_error("an empty name", current.position);
  } else if (is_digit(c) ||
             (code_of(c) == '.' && at_ + 1 < expression_.size() && is_digit(expression_[at_ + 1]))) {
    read_number(current);
  } else if (begins_name(c)) {
    read_name(current);
  } else {
    read_operator(current);
  }
  current.source = expression_.substr(current.position, at_ - current.position);
}

std::size_t lexer::digits_end(std::size_t from) const noexcept {
  while (from < expression_.size() && is_digit(expression_[from])) ++from;
  return from;
}

void lexer::read_number(token& current) {
  current.kind = token_kind::number;
  at_ = digits_end(at_);
  if (at(at_, '.')) at_ = digits_end(at_ + 1);
  if (at(at_, 'e') || at(at_, 'E')) {
    const std::size_t exponent = at_ + (at(at_ + 1, '+') || at(at_ + 1, '-') ? 2 : 1);
    if (const std::size_t end = digits_end(exponent); end > exponent) at_ = end;
  }
  if (at_ < expression_.size() && continues_name(expression_[at_])) {
    throw expression_error("a number runs into a name (a name that begins with a digit goes in brackets)",
                           current.position);
  }
  const wide_view digits = expression_.substr(current.position, at_ - current.position);
  if (filter::read_number(digits, current.number) != number_reading::number) {
    throw expression_error("a number that is too large", current.position);
  }
}

void lexer::read_quoted(token& current, OLECHAR close, const char* missing) {
  current.text.clear();
  for (++at_;;) {
    const std::size_t end = expression_.find(close, at_);
    if (end == wide_view::npos) throw expression_error(missing, current.position);
    current.text.append(expression_.substr(at_, end - at_));
    at_ = end + 1;
    if (!at(at_, code_of(close))) return;
    current.text.push_back(close);
    ++at_;
  }
}

void lexer::read_name(token& current) {
  while (at_ < expression_.size() && continues_name(expression_[at_])) ++at_;
  const wide_view name = expression_.substr(current.position, at_ - current.position);
  refuse_foreign_word(name, current.position);
  current.kind = kind_of_name(name);
  current.text = name;
}

void lexer::read_operator(token& current) {
  for (const word& candidate : signs) {
    if (!begins_with(expression_.substr(at_), candidate.text)) continue;
    current.kind = candidate.kind;
    at_ += candidate.text.size();
    return;
  }
  refuse_sign(expression_[at_], at_);
}

}  // namespace ovf::filter
