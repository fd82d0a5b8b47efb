#include "sql/sql_statements.h"

#include "sql/sql_scanner.h"

namespace command {

std::vector<std::string> split_statements(std::string_view sql) {
  std::vector<std::string> statements;
  std::size_t begin = 0;
  bool has_words = false;
  const auto end_statement = [&](std::size_t end) {
    if (has_words) statements.emplace_back(sql.substr(begin, end - begin));
    has_words = false;
    begin = end + 1;
  };
  for (sql_scanner scanner(sql); !scanner.is_at_end();) {
    if (scanner.here() == ';') end_statement(scanner.at());
    const bool separates = scanner.here() == ';';
    has_words = (scanner.go_on() && !separates) || has_words;
  }
  end_statement(sql.size());
  return statements;
}

}  // namespace command
