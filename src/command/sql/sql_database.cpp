#include "sql/sql_database.h"

#include <optional>

#include "console.h"
#include "duckdb/duckdb_library.h"
#include "failure.h"
#include "private_folder.h"
#include "sql/piped_input.h"
#include "sql/read_ovt.h"
#include "sql/scan_failure.h"
#include "sql/sql_failure.h"
#include "sql/statement_watch.h"
#include "utf8_path.h"

namespace command {
namespace {

std::string quoted(std::string_view text, char quote) {
  std::string out(1, quote);
  for (const char c : text) {
    if (c == quote) out += quote;
    out += c;
  }
  return out += quote;
}

/// What the library fails to make then, and names.
std::string folder_of_none() { return utf8_of_path(path_of_utf8(temporary_folder()) / "ovfile-sql"); }

}  // namespace

class sql_database::body {
 public:
  explicit body(const sql_settings& settings)
      : library(load_duckdb()), scratch_(try_private_folder("ovfile-sql")) {
    open(settings);
    try {
      if (library.connect(database_, &connection) == duckdb::status::failed) {
        throw failure("cannot connect to DuckDB");
      }
      define_read_ovt(library, database_, connection, settings.absent, rows, scans);
      if (is_terminal(standard_stream::error)) let_progress_be_asked();
      watch.emplace(library, connection, rows);
    } catch (...) {
      close();
      throw;
    }
  }
  ~body() { close(); }

  duckdb_prepared prepare(const std::string& statement, std::size_t own_lines = 0) const {
    throw_if_interrupted();
    duckdb_prepared made(library);
    if (library.prepare(connection, statement.c_str(), made.out()) == duckdb::status::failed) {
      const char* const words = library.prepare_error(made.get());
      throw_sql_failure(words != nullptr ? words : "the statement cannot be prepared", own_lines, scans);
    }
    return made;
  }

  /// Whether the statement can stand in parentheses behind FROM.
  bool can_be_nested(const std::string& statement) const {
    duckdb_prepared made(library);
    const std::string nested = "from (\n" + statement + "\n)";
    const bool can = library.prepare(connection, nested.c_str(), made.out()) == duckdb::status::done;
    throw_if_interrupted();  // a stop ends this call too, and then it says nothing of the statement
    return can;
  }

  /// Whether the library makes several statements of this one, which it then does not prepare.
  bool is_several(const std::string& statement) const {
    duckdb_extracted made(library);
    return library.extract_statements(connection, statement.c_str(), made.out()) > 1;
  }

  const duckdb::functions& library;
  duckdb::connection connection = nullptr;
  row_count rows;
  scan_failure scans;
  std::optional<statement_watch> watch;

 private:
  void open(const sql_settings& settings) {
    duckdb_config made(library);
    library.create_config(made.out());
    set(made, "temp_directory", scratch_ ? scratch_->name() : folder_of_none());
    // Nothing is fetched from anywhere behind the user's back.
    set(made, "autoinstall_known_extensions", "false");
    set(made, "autoload_known_extensions", "false");
    if (!settings.memory.empty()) set(made, "memory_limit", settings.memory);
    if (settings.threads > 0) set(made, "threads", std::to_string(settings.threads));
    char* words = nullptr;
    if (library.open_ext(nullptr, &database_, made.get(), &words) == duckdb::status::done) return;
    const std::string reason = words != nullptr ? words : "for no reason that it tells";
    library.free(words);
    database_ = nullptr;
    throw failure("DuckDB does not start: " + reason);
  }

  void set(const duckdb_config& made, const char* name, const std::string& value) const {
    if (library.set_config(made.get(), name, value.c_str()) == duckdb::status::failed) {
      throw failure(std::string("DuckDB refuses ") + name + " " + value);
    }
  }

  /// The library counts only for a bar of its own, which it is not to draw.
  void let_progress_be_asked() const {
    for (const char* const setting :
         {"set enable_progress_bar_print = false", "set enable_progress_bar = true"}) {
      duckdb::result result{};
      const duckdb::status status = library.query(connection, setting, &result);
      library.destroy_result(&result);
      if (status == duckdb::status::failed) return;
    }
  }

  void close() noexcept {
    watch.reset();
    if (connection != nullptr) library.disconnect(&connection);
    if (database_ != nullptr) library.close(&database_);
  }

  interrupt_guard guard_;
  std::optional<private_folder> scratch_;
  duckdb::database database_ = nullptr;
};

sql_database::sql_database(const sql_settings& settings) : body_(std::make_unique<body>(settings)) {}
sql_database::~sql_database() = default;

void sql_database::show(const std::string& title) { body_->watch->show(title); }
row_count& sql_database::rows() noexcept { return body_->rows; }

std::string sql_database::settled(const std::string& statement) {
  const bool is_read_once = names_a_pipe(statement) && begins_as_query(statement);
  if (!is_read_once && !body_->is_several(statement)) return statement;
  execute("create temp table ovfile_settled as (\n" + statement + "\n)", 1);
  return "from ovfile_settled";
}

sql_shape sql_database::shape_of(const std::string& statement) {
  const duckdb_prepared made = body_->prepare(statement);
  const duckdb::functions& library = body_->library;
  const bool selects = library.prepared_statement_type(made.get()) == duckdb::statement_kind::select;
  sql_shape shape{selects && body_->can_be_nested(statement), {}};
  const duckdb::count columns = library.prepared_statement_column_count(made.get());
  for (duckdb::count i = 0; i < columns; ++i) {
    const char* const name = library.prepared_statement_column_name(made.get(), i);
    shape.columns.push_back(
        {name != nullptr ? name : "", library.prepared_statement_column_type(made.get(), i)});
    library.free(const_cast<char*>(name));
  }
  return shape;
}

sql_result sql_database::run(const std::string& statement, std::size_t own_lines) {
  const duckdb::functions& library = body_->library;
  duckdb::result result{};
  duckdb::status status = duckdb::status::done;
  body_->rows.start_again();
  body_->scans.forget();
  // What reads a pipe would read it when it is prepared, and find nothing left when it runs.
  if (body_->is_several(statement) || names_a_pipe(statement)) {
    throw_if_interrupted();
    status = library.query(body_->connection, statement.c_str(), &result);
  } else {
    const duckdb_prepared made = body_->prepare(statement, own_lines);
    status = library.execute_prepared_streaming(made.get(), &result);
  }
  sql_result rows(library, result, own_lines, body_->scans);
  if (status == duckdb::status::failed) {
    const char* const words = library.result_error(&result);
    throw_sql_failure(words != nullptr ? words : "the statement failed", own_lines, body_->scans);
  }
  return rows;
}

void sql_database::execute(const std::string& statement, std::size_t own_lines) {
  for (sql_result rows = run(statement, own_lines); rows.next();) continue;
}

std::string sql_text(std::string_view text) { return quoted(text, '\''); }
std::string sql_name(std::string_view name) { return quoted(name, '"'); }

}  // namespace command
