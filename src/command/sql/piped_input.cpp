#include "sql/piped_input.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>

#include "sql/sql_scanner.h"
#include "utf8_path.h"

namespace command {
namespace {

bool is_pipe(std::string_view name) {
  using std::filesystem::file_type;
  std::error_code error;
  const file_type type = std::filesystem::status(path_of_utf8(std::string(name)), error).type();
  return type == file_type::fifo || type == file_type::character || type == file_type::socket;
}

}  // namespace

bool names_a_pipe(std::string_view statement) {
  for (sql_scanner scanner(statement); !scanner.is_at_end();) {
    const std::size_t begin = scanner.at();
    const bool is_text = scanner.here() == '\'';
    scanner.go_on();
    const std::size_t length = scanner.at() - begin;
    if (is_text && length > 2 && is_pipe(statement.substr(begin + 1, length - 2))) return true;
  }
  return false;
}

bool begins_as_query(std::string_view statement) {
  std::string word;
  for (sql_scanner scanner(statement); !scanner.is_at_end();) {
    const char c = scanner.here();
    const bool counts = scanner.go_on();
    if (counts && is_letter(c)) {
      word += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    } else if (!word.empty() || (counts && c != '(')) {
      break;
    }
  }
  constexpr const char* queries[] = {"select", "from", "with", "values", "table", "pivot", "unpivot"};
  return std::find(std::begin(queries), std::end(queries), word) != std::end(queries);
}

}  // namespace command
