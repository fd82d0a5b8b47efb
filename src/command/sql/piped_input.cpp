#include "sql/piped_input.h"

#include <algorithm>
#include <filesystem>
#include <optional>
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

/// The texts of a statement that name pipes.
std::vector<std::string> pipes_in(std::string_view statement) {
  std::vector<std::string> found;
  for (sql_scanner scanner(statement); !scanner.is_at_end();) {
    const std::size_t begin = scanner.at();
    const bool is_text = scanner.here() == '\'';
    scanner.go_on();
    const std::size_t length = scanner.at() - begin;
    if (!is_text || length <= 2) continue;
    std::string name(statement.substr(begin + 1, length - 2));
    if (is_pipe(name)) found.push_back(std::move(name));
  }
  return found;
}

/// The first words in small letters, without what brackets them.
std::vector<std::string> leading_words(std::string_view statement) {
  constexpr std::size_t enough = 4;  // create or replace temp ...
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

}  // namespace

void hold_piped_input(const std::vector<std::string>& statements) {
  for (const std::string& statement : statements) {
    for (const std::string& name : pipes_in(statement)) {
      const std::optional<int> number = inherited_input(name);
      if (!number) continue;
      raw_file pipe = raw_file::open(name);
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
  for (const std::string& statement : statements) {
    if (begins_as_query(statement) || (&statement != &statements.back() && is_run_at_once(statement)))
      continue;
    const std::string target = copy_target(statement);
    for (const std::string& name : pipes_in(statement)) {
      if (!is_named_pipe(name) || target == "'" + name + "'") continue;
      throw failure(name +
                    ": only a query can read a named pipe; give its bytes by standard input, as /dev/stdin");
    }
  }
}

}  // namespace command
