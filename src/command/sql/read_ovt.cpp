#include "sql/read_ovt.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "duckdb/duckdb_owner.h"
#include "failure.h"
#include "replacement.h"
#include "sql/scan_columns.h"
#include "sql/scan_failure.h"
#include "sql/scanned_table.h"
#include "sql/sql_failure.h"
#include "unique_names.h"

namespace command {
namespace {

using duckdb::functions;

constexpr const char* function_name = "read_ovt";

/// What every call of the function needs; lives as long as the function is known.
struct defaults {
  const functions& library;
  absent_value absent;
  row_count& rows;
  scan_failure& failed;
};

struct bound_table {
  bound_table(const std::string& file, const scan_options& options, const defaults& given)
      : table(file, options), rows(given.rows), failed(given.failed) {}
  scanned_table table;
  row_count& rows;
  scan_failure& failed;
};

/// What the threads of one scan share.
struct shared_scan {
  shared_scan(LONG rows, row_count& read) noexcept : ranges(rows, read) {}
  scan_ranges ranges;
  std::vector<LONG> columns;           ///< from 1, those that the query needs
  std::vector<duckdb::count> outputs;  ///< where each of them goes
};

template <class Object>
void destroy(void* object) {
  delete static_cast<Object*>(object);
}

/// Runs `work`; what it throws becomes the call's error, since nothing may be thrown through the library.
template <class Info, class Work>
void guard(void (*set_error)(Info, const char*), Info info, Work work) noexcept {
  try {
    work();
  } catch (const interrupted&) {
    set_error(info, "interrupted");
  } catch (const std::exception& error) {
    set_error(info, own_sql_words(error.what()).c_str());
  } catch (...) {
    set_error(info, "the table cannot be read");
  }
}

/// Nothing may be asked of a value that is NULL: what the library throws then would go through its interface.
void check_value(const functions& library, duckdb::value value, const char* what) {
  if (library.is_null_value(value)) throw failure(std::string(what) + " is NULL");
}

std::string take_text(const functions& library, duckdb::value value, const char* what) {
  check_value(library, value, what);
  char* const words = library.get_varchar(value);
  std::string text = words != nullptr ? words : "";
  library.free(words);
  return text;
}

absent_value parse_absent(const std::string& word) {
  if (word == "null") return absent_value::null;
  if (word == "nan") return absent_value::nan;
  if (word == "keep") return absent_value::keep;
  throw failure("absent := '" + word + "': it is one of null, nan, keep");
}

scan_options options_of(const defaults& given, duckdb::bind_info info) {
  const functions& library = given.library;
  const auto named = [&](const char* name) {
    return duckdb_value(library, library.bind_get_named_parameter(info, name));
  };
  scan_options options{given.absent, {}, true};
  if (const auto value = named("absent"))
    options.absent = parse_absent(take_text(library, value.get(), "absent"));
  if (const auto value = named("condition")) options.condition = take_text(library, value.get(), "condition");
  if (const auto value = named("widen")) {
    check_value(library, value.get(), "widen");
    options.widen = library.get_bool(value.get());
  }
  return options;
}

void bind(const defaults& given, duckdb::bind_info info) {
  const functions& library = given.library;
  const duckdb_value value(library, library.bind_get_parameter(info, 0));
  const std::string file = take_text(library, value.get(), "the table's name");
  if (file.empty()) throw failure("the table's name is empty");
  auto bound = std::make_unique<bound_table>(file, options_of(given, info), given);
  const duckdb_type text(library, library.create_logical_type(duckdb::type_id::varchar));
  const duckdb_type number(
      library, library.create_logical_type(bound->table.gives_floats() ? duckdb::type_id::real
                                                                       : duckdb::type_id::double_real));
  const table_view& view = bound->table.view();
  if (view.fields().empty()) throw failure(file + " has no columns");
  const std::vector<std::string> names = sql_names(view.fields());
  for (std::size_t i = 0; i < names.size(); ++i) {
    const bool is_text = view.fields()[i].is_text;
    library.bind_add_result_column(info, names[i].c_str(), is_text ? text.get() : number.get());
  }
  const bool exact = !bound->table.options().condition;
  library.bind_set_cardinality(info, static_cast<duckdb::count>(view.rows()), exact);
  library.bind_set_bind_data(info, bound.release(), destroy<bound_table>);
}

const bound_table& bound_of(const functions& library, duckdb::init_info info) {
  return *static_cast<const bound_table*>(library.init_get_bind_data(info));
}

/// The library asks for a row's number, or for nothing, by an index that no column has.
void plan_scan(const functions& library, duckdb::init_info info) {
  const bound_table& bound = bound_of(library, info);
  const scanned_table& table = bound.table;
  auto shared = std::make_unique<shared_scan>(table.view().rows(), bound.rows);
  const duckdb::count wanted = library.init_get_column_count(info);
  for (duckdb::count output = 0; output < wanted; ++output) {
    const duckdb::count column = library.init_get_column_index(info, output);
    if (column >= table.view().fields().size()) continue;
    shared->columns.push_back(static_cast<LONG>(column) + 1);
    shared->outputs.push_back(output);
  }
  // An evaluator belongs to the thread that made it.
  const std::int64_t threads =
      table.options().condition ? 1 : std::max<std::int64_t>(shared->ranges.count(), 1);
  library.init_set_max_threads(info, static_cast<duckdb::count>(threads));
  library.init_set_init_data(info, shared.release(), destroy<shared_scan>);
}

/// A thread's own reader; made with its first call, since threads are planned that never run.
struct thread_scan {
  std::unique_ptr<range_reader> reader;
};

void fill(const functions& library, duckdb::call_info info, duckdb::chunk output) {
  const auto& bound = *static_cast<const bound_table*>(library.function_get_bind_data(info));
  auto& shared = *static_cast<shared_scan*>(library.function_get_init_data(info));
  auto& own = *static_cast<thread_scan*>(library.function_get_local_init_data(info));
  if (!own.reader) {
    own.reader = std::make_unique<range_reader>(bound.table, shared.ranges, shared.columns,
                                                static_cast<LONG>(library.vector_size()));
  }
  if (!own.reader->next()) {
    library.data_chunk_set_size(output, 0);
    return;
  }
  for (std::size_t i = 0; i < shared.columns.size(); ++i) {
    const field_view& field = bound.table.view().fields()[static_cast<std::size_t>(shared.columns[i]) - 1];
    const duckdb::vector vector = library.data_chunk_get_vector(output, shared.outputs[i]);
    const bool is_single = bound.table.view().is_single();
    copy_column(library, *own.reader, i,
                {field.is_text, is_single, is_single && bound.table.options().widen,
                 bound.table.options().absent == absent_value::nan},
                vector);
  }
  const auto* const chosen = own.reader->chosen();
  library.data_chunk_set_size(output, chosen != nullptr ? chosen->size() : own.reader->rows());
}

// The library hands its calls no data of ours before a table is bound, so what they need of it is kept here:
// it is loaded once and for good.
const functions* loaded = nullptr;

void bind_call(duckdb::bind_info info) {
  guard(loaded->bind_set_error, info,
        [&] { bind(*static_cast<const defaults*>(loaded->bind_get_extra_info(info)), info); });
}
void init_call(duckdb::init_info info) {
  guard(loaded->init_set_error, info, [&] { plan_scan(*loaded, info); });
}
void init_thread_call(duckdb::init_info info) {
  guard(loaded->init_set_error, info,
        [&] { loaded->init_set_init_data(info, new thread_scan, destroy<thread_scan>); });
}
/// The library stops the other threads before it tells of the error.
void set_scan_error(duckdb::call_info info, const char* words) {
  static_cast<const bound_table*>(loaded->function_get_bind_data(info))->failed.note(words);
  loaded->function_set_error(info, words);
}
void fill_call(duckdb::call_info info, duckdb::chunk output) {
  guard(set_scan_error, info, [&] { fill(*loaded, info, output); });
}

void replace_name(duckdb::scan_info info, const char* name, void*) {
  guard(loaded->replacement_scan_set_error, info, [&] {
    if (!is_named_as_table(name)) return;
    loaded->replacement_scan_set_function_name(info, function_name);
    const duckdb_value file(*loaded, loaded->create_varchar_length(name, std::string_view(name).size()));
    loaded->replacement_scan_add_parameter(info, file.get());
  });
}

}  // namespace

std::vector<std::string> sql_names(const std::vector<field_view>& fields) {
  std::vector<std::string> names;
  names.reserve(fields.size());
  for (const field_view& field : fields) names.push_back(field.name);
  return unique_names(names, letter_case::does_not_count);
}

void define_read_ovt(const functions& library, duckdb::database database, duckdb::connection connection,
                     absent_value absent, row_count& rows, scan_failure& failed) {
  loaded = &library;
  const duckdb_type text(library, library.create_logical_type(duckdb::type_id::varchar));
  const duckdb_type choice(library, library.create_logical_type(duckdb::type_id::boolean));
  duckdb::table_function made = library.create_table_function();
  library.table_function_set_name(made, function_name);
  library.table_function_add_parameter(made, text.get());
  library.table_function_add_named_parameter(made, "absent", text.get());
  library.table_function_add_named_parameter(made, "condition", text.get());
  library.table_function_add_named_parameter(made, "widen", choice.get());
  library.table_function_set_extra_info(made, new defaults{library, absent, rows, failed}, destroy<defaults>);
  library.table_function_set_bind(made, bind_call);
  library.table_function_set_init(made, init_call);
  library.table_function_set_local_init(made, init_thread_call);
  library.table_function_set_function(made, fill_call);
  library.table_function_supports_projection_pushdown(made, true);
  const duckdb::status status = library.register_table_function(connection, made);
  library.destroy_table_function(&made);
  if (status == duckdb::status::failed) throw failure("DuckDB refuses the table function read_ovt");
  library.add_replacement_scan(database, replace_name, nullptr, nullptr);
}

}  // namespace command
