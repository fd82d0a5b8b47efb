// Any bytes as a table file, opened through the table object: header and dictionary are read, the fields
// and the rows that they promise are walked, and a table that opened for writing takes changes: the last
// bytes of the input tell which ones. The file lies in memory.
#include <stdlib.h>

#include <cstdint>
#include <filesystem>

#include "engine/long_field_names.h"
#include "table_change.h"

namespace {

using namespace ovfuzz;

constexpr LONG most_rows = 40;
constexpr LONG most_columns = 6;
const ovf::wide_view table_name = OLESTR("/table.ovt");

LONG walk_schema(IOvTable& table) {
  ovfile::pointer<IOvSchema> schema;
  require(table.get_Schema(schema.out()) == S_OK, "an open table has a schema");
  LONG count = 0;
  require(schema->get_FieldCount(&count) == S_OK && count >= 0 && count <= 256, "0 to 256 fields");
  for (LONG i = 1; i <= count; ++i) {
    ovfile::text name;
    ovfile::variant value;
    LONG offset = 0;
    require(schema->GetFieldName(i, name.out()) == S_OK && name.view().size() <= 24, "a field has a name");
    require(schema->GetFieldDefault(i, value.out()) == S_OK, "a field has a default");
    require(schema->GetFieldOffset(i, &offset) == S_OK && (offset == 0 || offset == -1), "or is implicit");
  }
  ovfile::text xml;
  OvFileType kind{};
  require(is_answer(schema->GetSchemaAsXML(xml.out())), "a schema is written or too long");
  require(schema->get_TypeHint(&kind) == S_OK, "a schema has a kind");
  return count;
}

void read_row(IOvTable& table, LONG columns) {
  for (LONG i = 0; i <= std::min(columns + 1, most_columns); ++i) {
    ovfile::variant value;
    ovfile::text text;
    double number = 0;
    float single = 0;
    require(is_answer(table.GetColumn(i, value.out())), "a value reads or fails");
    require(is_answer(table.GetColumnAsDouble(i, &number)), "a number reads or fails");
    require(is_answer(table.GetColumnAsFloat(i, &single)), "a float reads or fails");
    require(is_answer(table.GetColumnAsString(i, text.out())), "a text reads or fails");
  }
}

void walk_rows(IOvTable& table, LONG columns) {
  LONG rows = -1;
  require(table.GetRowCount(&rows) == S_OK && rows >= 0, "a table has a row count");
  require(is_answer(table.GetFirstRow()), "the first row is there or not");
  for (LONG i = 0; i < most_rows; ++i) {
    read_row(table, columns);
    if (table.GetNextRow() != S_OK) break;
  }
  for (const LONG row : {rows, rows / 2 + 1, LONG{0}, rows + 1}) {
    require(is_answer(table.GetRowAt(row)), "a row is there or not");
    read_row(table, columns);
  }
}

/// Opens the table, walks and, on demand, changes it. True when it opened; `last` tells how it was left.
bool run(LONG read_only, const std::vector<step>& steps, outline& last) {
  const auto table = ovfile::create_table();
  const ovfile::text name(table_name);
  const HRESULT status = table->Open(name.get(), read_only);
  require(status == S_OK || status == E_FAIL, "a file opens or is refused");
  if (status != S_OK) return false;
  const LONG columns = walk_schema(*table.get());
  walk_rows(*table.get(), columns);
  table_change change(*table.get(), columns);
  for (const step& each : steps) change.take(each);
  require(is_answer(table->FlushChanges()), "changes are written or refused");
  last = outline_of(*table.get());
  require(is_answer(table->Close()), "a table closes or says why not");
  return true;
}

}  // namespace

/// Long names are allowed, whatever the user's settings, which nobody touches.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  std::string folder = std::filesystem::temp_directory_path() / "ovfuzz-XXXXXX";
  require(mkdtemp(folder.data()) != nullptr, "there is a folder for settings");
  setenv("OVFILE_REGISTRY", (folder + "/registry.reg").c_str(), 1);
  setenv("OVFILE_ATOMS", (folder + "/atoms").c_str(), 1);
  require(ovf::set_long_names_master(true) && ovf::field_name_limit() == 24, "names may be long");
  std::filesystem::remove_all(folder);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ovfuzz::memory_files files;
  const auto* bytes = reinterpret_cast<const std::byte*>(data);
  files.put(table_name, {bytes, bytes + size});
  outline first;
  outline left;
  outline found;
  const bool opened = run(1, {}, first);
  require(run(0, steps_of(data, size), left) == opened, "what reads can be written");
  if (opened) {
    require(run(0, {}, found), "what was changed opens again");
    require(found == left, "and is as it was left");
  }
  require(files.count() == 1, "no temporary file is left");
  return 0;
}
