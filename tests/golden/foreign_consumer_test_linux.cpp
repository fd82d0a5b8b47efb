// A consumer of streams that nobody here wrote reads every reference table: DuckDB, by its scan of Arrow
// streams. What it holds then is compared with what the table must give.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <variant>

#include "duckdb/duckdb_abi.h"
#include "golden/expected_json.h"
#include "ovfile/stream.h"
#include "support/reference_files.h"
#include "support/scratch_folder.h"

// The library keeps schemas that it asks for. A program that is built to look for memory that nobody gives
// back asks here what to pass over.
extern "C" const char* __lsan_default_suppressions() { return "leak:libduckdb\n"; }

namespace ovtest {
namespace {

namespace duckdb = command::duckdb;

std::string library_file() {
  const char* const set = std::getenv("OVFILE_DUCKDB");
  if (set == nullptr) return {};
  const std::filesystem::path named(set);
  return (std::filesystem::is_directory(named) ? named / "libduckdb.so" : named).string();
}

/// The few functions that reading a stream takes; null where there is no library.
struct consumer_functions {
  explicit consumer_functions(void* library)
      : open(find<decltype(open)>(library, "duckdb_open")),
        connect(find<decltype(connect)>(library, "duckdb_connect")),
        scan(find<decltype(scan)>(library, "duckdb_arrow_scan")),
        query(find<decltype(query)>(library, "duckdb_query")),
        error(find<decltype(error)>(library, "duckdb_result_error")),
        fetch(find<decltype(fetch)>(library, "duckdb_fetch_chunk")),
        size(find<decltype(size)>(library, "duckdb_data_chunk_get_size")),
        vector(find<decltype(vector)>(library, "duckdb_data_chunk_get_vector")),
        data(find<decltype(data)>(library, "duckdb_vector_get_data")),
        validity(find<decltype(validity)>(library, "duckdb_vector_get_validity")),
        destroy_chunk(find<decltype(destroy_chunk)>(library, "duckdb_destroy_data_chunk")),
        destroy_result(find<decltype(destroy_result)>(library, "duckdb_destroy_result")),
        disconnect(find<decltype(disconnect)>(library, "duckdb_disconnect")),
        close(find<decltype(close)>(library, "duckdb_close")) {}

  template <class Function>
  static Function find(void* library, const char* name) {
    return reinterpret_cast<Function>(dlsym(library, name));
  }

  duckdb::status (*open)(const char*, duckdb::database*);
  duckdb::status (*connect)(duckdb::database, duckdb::connection*);
  duckdb::status (*scan)(duckdb::connection, const char*, ArrowArrayStream*);
  duckdb::status (*query)(duckdb::connection, const char*, duckdb::result*);
  const char* (*error)(duckdb::result*);
  duckdb::chunk (*fetch)(duckdb::result);
  duckdb::count (*size)(duckdb::chunk);
  duckdb::vector (*vector)(duckdb::chunk, duckdb::count);
  void* (*data)(duckdb::vector);
  std::uint64_t* (*validity)(duckdb::vector);
  void (*destroy_chunk)(duckdb::chunk*);
  void (*destroy_result)(duckdb::result*);
  void (*disconnect)(duckdb::connection*);
  void (*close)(duckdb::database*);
};

/// A cell as the consumer holds it: nothing where it is null.
using held_cell = std::variant<std::monostate, double, std::string>;

class consumer {
 public:
  explicit consumer(void* library) : call_(library) {
    EXPECT_EQ(duckdb::status::done, call_.open(nullptr, &database_));
    EXPECT_EQ(duckdb::status::done, call_.connect(database_, &connection_));
  }
  ~consumer() {
    call_.disconnect(&connection_);
    call_.close(&database_);
  }
  consumer(const consumer&) = delete;
  consumer& operator=(const consumer&) = delete;

  /// All rows of the stream, with its columns' kinds; the complaint where it cannot be read.
  std::string read(ovfile::arrow_stream& stream, const std::vector<char>& kinds,
                   std::vector<std::vector<held_cell>>& rows) {
    if (call_.scan(connection_, "read", stream.get()) == duckdb::status::failed) return "no scan";
    duckdb::result result{};
    std::string complaint;
    if (call_.query(connection_, "select * from read", &result) == duckdb::status::failed) {
      complaint = call_.error(&result);
    } else {
      while (duckdb::chunk chunk = call_.fetch(result)) {
        take(chunk, kinds, rows);
        call_.destroy_chunk(&chunk);
      }
    }
    call_.destroy_result(&result);
    return complaint;
  }

 private:
  void take(duckdb::chunk chunk, const std::vector<char>& kinds, std::vector<std::vector<held_cell>>& rows) {
    for (duckdb::count row = 0; row < call_.size(chunk); ++row) {
      std::vector<held_cell>& cells = rows.emplace_back();
      for (std::size_t column = 0; column < kinds.size(); ++column) {
        const duckdb::vector vector = call_.vector(chunk, column);
        const std::uint64_t* const valid = call_.validity(vector);
        const bool null = valid != nullptr && (valid[row / 64] >> (row % 64) & 1) == 0;
        cells.push_back(null ? held_cell() : cell(vector, kinds[column], row));
      }
    }
  }

  held_cell cell(duckdb::vector vector, char kind, duckdb::count row) const {
    const void* const values = call_.data(vector);
    if (kind == 'g') return static_cast<const double*>(values)[row];
    if (kind == 'f') return static_cast<double>(static_cast<const float*>(values)[row]);
    const duckdb::text_value& text = static_cast<const duckdb::text_value*>(values)[row];
    return std::string(text.data(), text.length);
  }

  consumer_functions call_;
  duckdb::database database_ = nullptr;
  duckdb::connection connection_ = nullptr;
};

std::string without_end_blanks(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

bool is_same_number(double expected, double held) {
  return expected == held || (expected != expected && held != held);
}

/// Whether the cell is as it must be where absent values come as null, or as they are.
bool is_as_expected(const expected_cell& expected, const held_cell& held, char kind, bool absent_as_null) {
  constexpr double absent = -1e30;
  if (const auto* const number = std::get_if<number_cell>(&expected)) {
    if (!number->as_double && !number->as_float) return true;
    // As a double, a float is the number that its digits say.
    const double value = number->as_float && (kind == 'f' || !number->as_double)
                             ? static_cast<double>(*number->as_float)
                             : *number->as_double;
    const bool is_absent = value == absent || value == static_cast<double>(static_cast<float>(absent));
    if (is_absent && absent_as_null) return std::holds_alternative<std::monostate>(held);
    const double* const found = std::get_if<double>(&held);
    return found != nullptr && is_same_number(value, *found);
  }
  const auto* const text = std::get_if<text_cell>(&expected);
  const std::string value = text == nullptr ? std::string() : without_end_blanks(text->utf8);
  if (value.empty() && absent_as_null) return std::holds_alternative<std::monostate>(held);
  const std::string* const found = std::get_if<std::string>(&held);
  return found != nullptr && value == *found;
}

std::vector<char> kinds_of(ovfile::arrow_stream& stream) {
  const ovfile::arrow_schema schema = stream.schema();
  std::vector<char> kinds;
  for (std::int64_t i = 0; i < schema->n_children; ++i) kinds.push_back(*schema->children[i]->format);
  return kinds;
}

/// Returns how many cells were compared.
std::size_t compare(const expected_reading& expected, const std::filesystem::path& file, ULONG flags,
                    consumer& reader) {
  const auto table = ovfile::create_table();
  const std::u8string name = file.u8string();
  ovfile::check(table->Open(
      ovfile::text(std::string_view(reinterpret_cast<const char*>(name.data()), name.size())).get(), 1));
  OvStreamRequest request;
  request.flags = flags;
  ovfile::arrow_stream kinds_only = ovfile::read_stream(table, request);
  const std::vector<char> kinds = kinds_of(kinds_only);
  ovfile::arrow_stream stream = ovfile::read_stream(table, request);
  std::vector<std::vector<held_cell>> rows;
  if (kinds.empty()) return 0;  // the consumer has no tables without columns
  EXPECT_EQ("", reader.read(stream, kinds, rows)) << expected.file;
  if (expected.row_count) {
    EXPECT_EQ(static_cast<std::size_t>(*expected.row_count), rows.size()) << expected.file;
  }
  std::size_t compared = 0;
  for (const auto& [row, cells] : expected.rows) {
    const auto index = static_cast<std::size_t>(row - 1);
    if (index >= rows.size() || rows[index].size() != cells.size()) {
      ADD_FAILURE() << expected.file << ": row " << row << " is not there, or not as wide";
      continue;
    }
    for (std::size_t i = 0; i < cells.size(); ++i, ++compared) {
      EXPECT_TRUE(is_as_expected(cells[i], rows[index][i], kinds[i], (flags & ovStreamAbsentAsNull) != 0))
          << expected.file << ", row " << row << ", column " << i + 1 << ", flags " << flags;
    }
  }
  return compared;
}

TEST(foreign_consumer, reads_every_reference_table_as_expected) {
  const std::string file = library_file();
  if (file.empty()) GTEST_SKIP() << "OVFILE_DUCKDB does not name DuckDB's library";
  if (reference_names().empty()) GTEST_SKIP() << "no reference tables at " << reference_folder();
  void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(nullptr, library) << dlerror();
  consumer reader(library);
  std::size_t compared = 0;
  std::size_t tables = 0;
  for (const std::string& name : reference_names()) {
    const nlohmann::json table = reference_json(name);
    const expected_reading expected = expected_from(table);
    if (table.contains("link") || !expected.row_failures.empty()) continue;
    const scratch_folder folder;
    const auto copy = copy_reference(table["file"], folder.path());
    if (!copy) continue;
    ++tables;
    for (const ULONG flags : {0u, unsigned{ovStreamAbsentAsNull}, unsigned{ovStreamTextDictionaries}}) {
      compared += compare(expected, *copy, flags, reader);
    }
  }
  EXPECT_GT(tables, 50u);
  EXPECT_GT(compared, 10'000u);
}

}  // namespace
}  // namespace ovtest
