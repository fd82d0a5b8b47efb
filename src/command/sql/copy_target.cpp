#include "sql/copy_target.h"

#include <algorithm>
#include <vector>

#include "sql/sql_scanner.h"

namespace command {
namespace {

/// Words, quotes and other characters, without what stands between them.
std::vector<std::string_view> pieces_of(std::string_view sql) {
  std::vector<std::string_view> pieces;
  bool in_word = false;
  for (sql_scanner scanner(sql); !scanner.is_at_end();) {
    const std::size_t begin = scanner.at();
    const char c = scanner.here();
    const bool counts = scanner.go_on();
    const std::string_view piece = sql.substr(begin, scanner.at() - begin);
    const bool continues = in_word && counts && piece.size() == 1 && (is_letter(c) || is_digit(c));
    if (continues) {
      pieces.back() = {pieces.back().data(), pieces.back().size() + 1};
    } else if (counts) {
      pieces.push_back(piece);
    }
    in_word = continues || (counts && is_letter(c));
  }
  return pieces;
}

/// Goes through the pieces of a statement; behind the last one there are empty ones.
class piece_reader {
 public:
  explicit piece_reader(std::string_view sql) : pieces_(pieces_of(sql)) {}

  std::string_view here() const noexcept { return at_ < pieces_.size() ? pieces_[at_] : std::string_view(); }
  bool is_at_end() const noexcept { return at_ >= pieces_.size(); }
  void skip() noexcept { ++at_; }
  /// Over this word, which has small letters here, where it stands.
  bool skip_word(std::string_view word) noexcept {
    const auto same = [](char want, char have) {
      return want == (have >= 'A' && have <= 'Z' ? static_cast<char>(have - 'A' + 'a') : have);
    };
    const bool is_it = std::equal(word.begin(), word.end(), here().begin(), here().end(), same);
    if (is_it) skip();
    return is_it;
  }
  /// Over what stands in parentheses, where such stand; all of it.
  std::string_view skip_parentheses() noexcept {
    if (here() != "(") return {};
    const char* const begin = here().data();
    int depth = 0;
    while (!is_at_end()) {
      if (here() == "(") ++depth;
      if (here() == ")") --depth;
      const char* const end = here().data() + here().size();
      skip();
      if (depth == 0) return {begin, static_cast<std::size_t>(end - begin)};
    }
    return {};
  }

 private:
  std::vector<std::string_view> pieces_;
  std::size_t at_ = 0;
};

/// Over EXPLAIN with its options, or PREPARE name AS.
void skip_frame(piece_reader& pieces) noexcept {
  if (pieces.skip_word("explain")) {
    pieces.skip_word("analyze");
    pieces.skip_word("verbose");
    pieces.skip_parentheses();
  } else if (pieces.skip_word("prepare")) {
    pieces.skip();
    pieces.skip_parentheses();
    pieces.skip_word("as");
  }
}

/// A name's characters, where it stands in quotes or not.
std::string plain_name(std::string_view name) {
  if (!name.starts_with('"')) return std::string(name);
  return std::string(name.substr(1, name.size() - std::min<std::size_t>(name.size(), 2)));
}

/// A name or two with a full stop between them, as the text that they mean.
std::string take_name(piece_reader& pieces) {
  std::string name;
  for (std::string_view piece = pieces.here(); !piece.empty() && piece != "("; piece = pieces.here()) {
    const bool goes_on = piece == "." || name.empty() || name.back() == '.';
    if (!goes_on) break;
    name += plain_name(piece);
    pieces.skip();
  }
  std::string text = "'";
  for (const char c : name) text.append(c == '\'' ? 2 : 1, c);
  return text + "'";
}

/// One text, which may stand in several quotes on lines of their own, and in two where it holds a quote.
std::string_view take_text(piece_reader& pieces, const char* begin) {
  const char* end = begin;
  while (pieces.here().starts_with('\'') || pieces.here().starts_with('$')) {
    end = pieces.here().data() + pieces.here().size();
    pieces.skip();
  }
  return {begin, static_cast<std::size_t>(end - begin)};
}

/// An expression in parentheses; a column's name alone stands for a file's.
std::string take_expression(std::string_view expression) {
  std::string_view inside = expression;
  while (inside.starts_with('(') && inside.ends_with(')')) {
    inside = inside.substr(1, inside.size() - 2);
    piece_reader pieces(inside);
    if (const std::string_view inner = pieces.skip_parentheses(); !inner.empty() && pieces.is_at_end()) {
      inside = inner;
      continue;
    }
    pieces = piece_reader(inside);
    const std::string_view first = pieces.here();
    const bool may_be_name = first.starts_with('"') || (!first.empty() && is_letter(first.front()));
    std::string name = may_be_name ? take_name(pieces) : std::string();
    if (may_be_name && pieces.is_at_end()) return name;
  }
  return std::string(expression);
}

std::string take_target(piece_reader& pieces) {
  pieces.skip_word("program");
  const std::string_view first = pieces.here();
  if (first.empty()) return {};
  if (first == "(") return take_expression(pieces.skip_parentheses());
  if (first.starts_with('\'') || first.starts_with('$')) return std::string(take_text(pieces, first.data()));
  piece_reader after = pieces;
  after.skip();
  const bool is_escaping = (first == "e" || first == "E") && after.here().starts_with('\'') &&
                           after.here().data() == first.data() + 1;
  return is_escaping ? std::string(take_text(after, first.data())) : take_name(pieces);
}

}  // namespace

std::string copy_target(std::string_view statement) {
  piece_reader pieces(statement);
  skip_frame(pieces);
  // COPY FROM DATABASE writes to a database, which has no file's name there.
  if (!pieces.skip_word("copy") || pieces.skip_word("from")) return {};
  while (!pieces.is_at_end()) {
    if (pieces.skip_word("to")) return take_target(pieces);
    if (pieces.skip_parentheses().empty()) pieces.skip();
  }
  return {};
}

}  // namespace command
