// A database in memory that reads table files like tables of its own: 'assays.ovt' stands where the name of a
// table may stand, and read_ovt('assays.ovt') the same with options.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "duckdb/duckdb_owner.h"
#include "sql/row_count.h"
#include "sql/sql_result.h"

namespace command {

/// What queries see of an absent number and of a text of blanks alone.
enum class absent_value {
  null,  ///< NULL
  nan,   ///< a number NaN, a text NULL
  keep   ///< -1e30, and a text without a character
};

struct sql_settings {
  std::string memory;  ///< like "2GB"; empty: what the library takes for itself
  int threads = 0;     ///< 0: as many as there are cores
  absent_value absent = absent_value::null;
};

struct sql_column {
  std::string name;
  duckdb::type_id type;
};

/// What a statement is before it runs.
struct sql_shape {
  bool is_query;  ///< gives rows and may stand in parentheses behind FROM
  std::vector<sql_column> columns;
};

/// All calls throw `failure` with the library's message, `marked_failure` where it shows the place, and
/// `interrupted` when the user asked for a stop. While one lives such a request is kept for it.
class sql_database {
 public:
  explicit sql_database(const sql_settings& settings);
  ~sql_database();
  sql_database(const sql_database&) = delete;
  sql_database& operator=(const sql_database&) = delete;

  /// What a bar says from now on that shows, see progress.h, how far each statement has come; empty: none.
  void show(const std::string& title);
  /// The rows that this bar counts: those of table files that the statement reads, and what else is added to
  /// them while it runs.
  row_count& rows() noexcept;

  /// A statement that gives the same rows and that the calls below take, several times. There are such of
  /// which the library makes several, PIVOT for one, which first has to find the names of its columns, and
  /// such that read a pipe: their rows are made now.
  std::string settled(const std::string& statement);
  /// Looks at one statement without running it.
  sql_shape shape_of(const std::string& statement);
  /// Runs one statement; its rows are made as they are fetched, while the database lives. Places in messages
  /// count from the user's first line, before which the statement has `own_lines` others.
  sql_result run(const std::string& statement, std::size_t own_lines = 0);
  /// Runs one statement to its end.
  void execute(const std::string& statement, std::size_t own_lines = 0);

 private:
  class body;
  std::unique_ptr<body> body_;
};

/// A text or a name as SQL writes it.
std::string sql_text(std::string_view text);
std::string sql_name(std::string_view name);

}  // namespace command
