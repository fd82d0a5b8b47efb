#include "sql/sql_database.h"

#include <chrono>
#include <optional>
#include <thread>

#include "console.h"
#include "duckdb/duckdb_library.h"
#include "failure.h"
#include "private_folder.h"
#include "sql/read_ovt.h"

namespace command {
namespace {

constexpr std::chrono::milliseconds look_again{5};

std::string quoted(std::string_view text, char quote) {
  std::string out(1, quote);
  for (const char c : text) {
    if (c == quote) out += quote;
    out += c;
  }
  return out += quote;
}

/// Passes a request to stop on to a connection, whose calls know nothing of signals. It looks now and then
/// and sleeps: waits that a wake-up ends early have been seen to last for ever on one system.
class stop_watch {
 public:
  stop_watch(const duckdb::functions& library, duckdb::connection connection)
      : thread_([&library, connection](const std::stop_token& end) {
          while (!end.stop_requested()) {
            if (is_stop_asked()) library.interrupt(connection);
            std::this_thread::sleep_for(look_again);
          }
        }) {}

 private:
  std::jthread thread_;
};

}  // namespace

class sql_database::body {
 public:
  explicit body(const sql_settings& settings) : library(load_duckdb()), scratch_("ovfile-sql") {
    open(settings);
    try {
      if (library.connect(database_, &connection) == duckdb::status::failed) {
        throw failure("cannot connect to DuckDB");
      }
      define_read_ovt(library, database_, connection, settings.absent);
      watch_.emplace(library, connection);
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
      throw_sql_failure(words != nullptr ? words : "the statement cannot be prepared", own_lines);
    }
    return made;
  }

  /// Whether the statement can stand in parentheses behind FROM.
  bool can_be_nested(const std::string& statement) const {
    duckdb_prepared made(library);
    const std::string nested = "from (\n" + statement + "\n)";
    return library.prepare(connection, nested.c_str(), made.out()) == duckdb::status::done;
  }

  /// Whether the library makes several statements of this one, which it then does not prepare.
  bool is_several(const std::string& statement) const {
    duckdb_extracted made(library);
    return library.extract_statements(connection, statement.c_str(), made.out()) > 1;
  }

  const duckdb::functions& library;
  duckdb::connection connection = nullptr;

 private:
  void open(const sql_settings& settings) {
    duckdb_config made(library);
    library.create_config(made.out());
    set(made, "temp_directory", scratch_.name());
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

  void close() noexcept {
    watch_.reset();
    if (connection != nullptr) library.disconnect(&connection);
    if (database_ != nullptr) library.close(&database_);
  }

  interrupt_guard guard_;
  private_folder scratch_;
  duckdb::database database_ = nullptr;
  std::optional<stop_watch> watch_;
};

sql_database::sql_database(const sql_settings& settings) : body_(std::make_unique<body>(settings)) {}
sql_database::~sql_database() = default;

std::string sql_database::settled(const std::string& statement) {
  if (!body_->is_several(statement)) return statement;
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
  if (body_->is_several(statement)) {
    throw_if_interrupted();
    status = library.query(body_->connection, statement.c_str(), &result);
  } else {
    const duckdb_prepared made = body_->prepare(statement, own_lines);
    status = library.execute_prepared_streaming(made.get(), &result);
  }
  sql_result rows(library, result, own_lines);
  if (status == duckdb::status::failed) {
    const char* const words = library.result_error(&result);
    throw_sql_failure(words != nullptr ? words : "the statement failed", own_lines);
  }
  return rows;
}

void sql_database::execute(const std::string& statement, std::size_t own_lines) {
  for (sql_result rows = run(statement, own_lines); rows.next();) continue;
}

std::string sql_text(std::string_view text) { return quoted(text, '\''); }
std::string sql_name(std::string_view name) { return quoted(name, '"'); }

}  // namespace command
