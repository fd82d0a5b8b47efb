// The part of DuckDB's C interface that the command uses, declared here because the library is looked for
// when it is needed: nothing of it is there when the command is built. Types whose inside is nobody's
// business are pointers to structures without a body; a call that takes one's address sets it to null.
#pragma once

#include <cstdint>
#include <cstring>

namespace command::duckdb {

struct database_body;
struct connection_body;
struct config_body;
struct prepared_body;
struct extracted_body;
struct result_body;
struct chunk_body;
struct vector_body;
struct type_body;
struct value_body;
struct function_body;
struct bind_body;
struct init_body;
struct call_body;
struct scan_body;

using database = database_body*;
using connection = connection_body*;
using config = config_body*;
using prepared = prepared_body*;
using extracted = extracted_body*;
using chunk = chunk_body*;
using vector = vector_body*;
using logical_type = type_body*;
using value = value_body*;
using table_function = function_body*;
using bind_info = bind_body*;
using init_info = init_body*;
using call_info = call_body*;
using scan_info = scan_body*;

using count = std::uint64_t;

enum class status : int { done = 0, failed = 1 };

/// Those of its types that the command makes or tells apart.
enum class type_id : int {
  boolean = 1,
  tiny = 2,
  small = 3,
  integer = 4,
  big = 5,
  unsigned_tiny = 6,
  unsigned_small = 7,
  unsigned_integer = 8,
  unsigned_big = 9,
  real = 10,
  double_real = 11,
  huge = 16,
  varchar = 17,
  decimal = 19,
  unsigned_huge = 32
};

/// Those of its kinds of statement that give rows or come to nothing else than rows.
enum class statement_kind : int { invalid = 0, select = 1 };

/// Filled by a query, also by one that failed. The first five members are no longer for use.
struct result {
  count old_columns;
  count old_rows;
  count old_changed;
  void* old_data;
  char* old_words;
  result_body* body;
};

/// How far a query has come; below 0 it is not known.
struct progress {
  double percentage;
  std::uint64_t rows;
  std::uint64_t all_rows;
};

/// A text in a vector: up to 12 bytes stand in the value itself, a longer one's first 4 and then its address.
struct alignas(void*) text_value {
  static constexpr std::uint32_t most_inlined = 12;
  std::uint32_t length;
  char inlined[most_inlined];

  const char* data() const noexcept {
    if (length <= most_inlined) return inlined;
    const char* bytes = nullptr;
    std::memcpy(&bytes, inlined + 4, sizeof bytes);
    return bytes;
  }
};
static_assert(sizeof(text_value) == 16);

using destroy_call = void (*)(void* data);
using bind_call = void (*)(bind_info info);
using init_call = void (*)(init_info info);
using main_call = void (*)(call_info info, chunk output);
using replacement_call = void (*)(scan_info info, const char* name, void* data);

}  // namespace command::duckdb

// one(what it returns, its name behind "duckdb_", (what it takes))
// clang-format off
#define OVFILE_DUCKDB_FUNCTIONS(one) \
  one(const char*, library_version, ()) \
  one(status, create_config, (config*)) \
  one(status, set_config, (config, const char* name, const char* option)) \
  one(void, destroy_config, (config*)) \
  one(status, open_ext, (const char* path, database*, config, char** error)) \
  one(void, close, (database*)) \
  one(status, connect, (database, connection*)) \
  one(void, disconnect, (connection*)) \
  one(void, interrupt, (connection)) \
  one(progress, query_progress, (connection)) \
  one(void, free, (void*)) \
  one(status, query, (connection, const char* sql, result*)) \
  one(count, extract_statements, (connection, const char* sql, extracted*)) \
  one(void, destroy_extracted, (extracted*)) \
  one(status, prepare, (connection, const char* sql, prepared*)) \
  one(const char*, prepare_error, (prepared)) \
  one(statement_kind, prepared_statement_type, (prepared)) \
  one(count, prepared_statement_column_count, (prepared)) \
  one(const char*, prepared_statement_column_name, (prepared, count column)) \
  one(type_id, prepared_statement_column_type, (prepared, count column)) \
  one(void, destroy_prepare, (prepared*)) \
  one(status, execute_prepared_streaming, (prepared, result*)) \
  one(chunk, fetch_chunk, (result)) \
  one(const char*, result_error, (result*)) \
  one(void, destroy_result, (result*)) \
  one(count, column_count, (result*)) \
  one(const char*, column_name, (result*, count column)) \
  one(type_id, column_type, (result*, count column)) \
  one(count, data_chunk_get_size, (chunk)) \
  one(void, data_chunk_set_size, (chunk, count rows)) \
  one(vector, data_chunk_get_vector, (chunk, count column)) \
  one(void, destroy_data_chunk, (chunk*)) \
  one(count, vector_size, ()) \
  one(void*, vector_get_data, (vector)) \
  one(std::uint64_t*, vector_get_validity, (vector)) \
  one(void, vector_ensure_validity_writable, (vector)) \
  one(void, vector_assign_string_element_len, (vector, count row, const char* bytes, count length)) \
  one(logical_type, create_logical_type, (type_id)) \
  one(void, destroy_logical_type, (logical_type*)) \
  one(value, create_varchar_length, (const char* text, count length)) \
  one(bool, is_null_value, (value)) \
  one(char*, get_varchar, (value)) \
  one(bool, get_bool, (value)) \
  one(void, destroy_value, (value*)) \
  one(table_function, create_table_function, ()) \
  one(void, destroy_table_function, (table_function*)) \
  one(void, table_function_set_name, (table_function, const char* name)) \
  one(void, table_function_add_parameter, (table_function, logical_type)) \
  one(void, table_function_add_named_parameter, (table_function, const char* name, logical_type)) \
  one(void, table_function_set_extra_info, (table_function, void* data, destroy_call)) \
  one(void, table_function_set_bind, (table_function, bind_call)) \
  one(void, table_function_set_init, (table_function, init_call)) \
  one(void, table_function_set_local_init, (table_function, init_call)) \
  one(void, table_function_set_function, (table_function, main_call)) \
  one(void, table_function_supports_projection_pushdown, (table_function, bool)) \
  one(status, register_table_function, (connection, table_function)) \
  one(void*, bind_get_extra_info, (bind_info)) \
  one(value, bind_get_parameter, (bind_info, count parameter)) \
  one(value, bind_get_named_parameter, (bind_info, const char* name)) \
  one(void, bind_add_result_column, (bind_info, const char* name, logical_type)) \
  one(void, bind_set_bind_data, (bind_info, void* data, destroy_call)) \
  one(void, bind_set_cardinality, (bind_info, count rows, bool exact)) \
  one(void, bind_set_error, (bind_info, const char* words)) \
  one(void*, init_get_bind_data, (init_info)) \
  one(void, init_set_init_data, (init_info, void* data, destroy_call)) \
  one(count, init_get_column_count, (init_info)) \
  one(count, init_get_column_index, (init_info, count position)) \
  one(void, init_set_max_threads, (init_info, count threads)) \
  one(void, init_set_error, (init_info, const char* words)) \
  one(void*, function_get_bind_data, (call_info)) \
  one(void*, function_get_init_data, (call_info)) \
  one(void*, function_get_local_init_data, (call_info)) \
  one(void, function_set_error, (call_info, const char* words)) \
  one(void, add_replacement_scan, (database, replacement_call, void* data, destroy_call)) \
  one(void, replacement_scan_set_function_name, (scan_info, const char* name)) \
  one(void, replacement_scan_add_parameter, (scan_info, value)) \
  one(void, replacement_scan_set_error, (scan_info, const char* words))
// clang-format on

namespace command::duckdb {

/// The functions of a loaded library, each under its own name.
struct functions {
// NOLINTNEXTLINE(bugprone-macro-parentheses): a type and its arguments have none
#define OVFILE_DUCKDB_MEMBER(returned, name, taken) returned(*name) taken;
  OVFILE_DUCKDB_FUNCTIONS(OVFILE_DUCKDB_MEMBER)
#undef OVFILE_DUCKDB_MEMBER
};

}  // namespace command::duckdb
