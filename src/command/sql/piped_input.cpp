#include "sql/piped_input.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <utility>

#include "failure.h"
#include "inherited_input.h"
#include "raw_file.h"
#include "sql/copy_target.h"
#include "sql/sql_scanner.h"
#include "utf8_path.h"

namespace command {
namespace {

bool is_pipe(const std::string& name) {
  using std::filesystem::file_type;
  std::error_code error;
  const file_type type = std::filesystem::status(path_of_utf8(name), error).type();
  return type == file_type::fifo || type == file_type::character || type == file_type::socket;
}

bool is_named_pipe(const std::string& name) {
  std::error_code error;
  return std::filesystem::status(path_of_utf8(name), error).type() == std::filesystem::file_type::fifo &&
         !name.starts_with("/dev/") && !name.starts_with("/proc/");
}

/// What stands between single quotes or $tags$; nothing for any other piece.
std::string_view quoted_text(std::string_view piece) {
  std::size_t mark = piece.starts_with('\'') ? 1 : 0;
  if (piece.starts_with('$')) mark = piece.find('$', 1) + 1;
  return mark == 0 || piece.size() <= 2 * mark ? std::string_view()
                                               : piece.substr(mark, piece.size() - 2 * mark);
}

/// The texts of a statement that name pipes.
std::vector<std::string> pipes_in(std::string_view statement) {
  std::vector<std::string> found;
  for (sql_scanner scanner(statement); !scanner.is_at_end();) {
    const std::size_t begin = scanner.at();
    scanner.go_on();
    std::string name(quoted_text(statement.substr(begin, scanner.at() - begin)));
    if (!name.empty() && is_pipe(name)) found.push_back(std::move(name));
  }
  return found;
}

/// The first words in small letters, without what brackets them.
std::vector<std::string> leading_words(std::string_view statement) {
  constexpr std::size_t enough = 5;  // create or replace temp view
  std::vector<std::string> words(1);
  for (sql_scanner scanner(statement); !scanner.is_at_end() && words.size() <= enough;) {
    const char c = scanner.here();
    const bool counts = scanner.go_on();
    if (counts && is_letter(c)) {
      words.back() += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    } else if (!words.back().empty()) {
      words.emplace_back();
    } else if (counts && c != '(') {
      break;
    }
  }
  if (words.back().empty()) words.pop_back();
  return words;
}

/// Without a look at its columns before.
bool is_run_at_once(std::string_view statement) {
  const std::vector<std::string> words = leading_words(statement);
  constexpr std::string_view works[] = {"create", "insert", "copy"};
  const auto is_kept_text = [](const std::string& word) { return word == "view" || word == "macro"; };
  return !words.empty() && std::ranges::find(works, words.front()) != std::end(works) &&
         std::ranges::none_of(words, is_kept_text);
}

/// Whether a statement is a query that names one pipe and has no part that DuckDB answers by a query before
/// it.
bool looks_once(std::string_view statement) {
  constexpr std::string_view before[] = {"summarize", "describe", "desc", "show", "pivot", "unpivot"};
  std::string word;
  const auto ends_as_one = [&] { return std::ranges::find(before, word) != std::end(before); };
  for (sql_scanner scanner(statement); !scanner.is_at_end();) {
    const char c = scanner.here();
    if (scanner.go_on() && is_letter(c)) {
      word += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
      continue;
    }
    if (ends_as_one()) return false;
    word.clear();
  }
  return !ends_as_one() && begins_as_query(statement) && pipes_in(statement).size() < 2;
}

}  // namespace

void hold_piped_input(const std::vector<std::string>& statements) {
  // A single look may end before the pipe does.
  if (statements.size() == 1 && looks_once(statements.front())) return;
  for (const std::string& statement : statements) {
    for (const std::string& name : pipes_in(statement)) {
      const std::optional<int> number = is_pipe(name) ? inherited_input(name) : std::nullopt;
      if (!number) continue;
      raw_file pipe = *number == 0 ? raw_file::standard_input() : raw_file::open(name);
      raw_file held = raw_file::make_scratch();
      std::string part(std::size_t{1} << 16, '\0');
      while (const std::size_t count = pipe.read(part.data(), part.size())) held.write({part.data(), count});
      put_in_place_of(*number, held);
    }
  }
}

bool names_a_pipe(std::string_view statement) { return !pipes_in(statement).empty(); }

bool begins_as_query(std::string_view statement) {
  const std::vector<std::string> words = leading_words(statement);
  constexpr std::string_view queries[] = {"select", "from", "with", "values", "table", "pivot", "unpivot"};
  return !words.empty() && std::ranges::find(queries, words.front()) != std::end(queries);
}

void refuse_pipes(const std::vector<std::string>& statements) {
  constexpr const char* way_out = "; give its bytes by standard input, as /dev/stdin";
  std::set<std::filesystem::path> read;
  for (const std::string& statement : statements) {
    const bool may_read =
        begins_as_query(statement) || (&statement != &statements.back() && is_run_at_once(statement));
    const std::string target = copy_target(statement);
    for (const std::string& name : pipes_in(statement)) {
      if (!is_named_pipe(name) || target == "'" + name + "'") continue;
      if (!may_read) throw failure(name + ": only a query can read a named pipe" + way_out);
      std::error_code error;
      if (!read.insert(std::filesystem::canonical(path_of_utf8(name), error)).second) {
        throw failure(name + ": a named pipe can be read but once" + way_out);
      }
    }
  }
}

}  // namespace command
