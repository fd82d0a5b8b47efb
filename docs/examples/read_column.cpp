// Prints a column of numbers: read_column TABLE COLUMN
#include <cstdio>

#include "ovfile/smart.h"

static void print_column(const char* file, const char* name) {
  auto table = ovfile::create_table();
  ovfile::check(table->Open(ovfile::text(file).get(), 1));  // 1: for reading

  ovfile::pointer<IOvSchema> schema;
  ovfile::check(table->get_Schema(schema.out()));
  LONG column = 0;
  ovfile::check(schema->GetFieldIndex(ovfile::text(name).get(), &column));  // -1: no such column

  // S_FALSE tells that there is no (further) row.
  for (HRESULT at = table->GetFirstRow(); ovfile::check(at) == S_OK; at = table->GetNextRow()) {
    double value = 0;
    ovfile::check(table->GetColumnAsDouble(column, &value));
    std::printf("%g\n", value);
  }
}

int main(int count, char** values) {
  if (count != 3) return 2;
  try {
    print_column(values[1], values[2]);
    return 0;
  } catch (const ovfile::error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
