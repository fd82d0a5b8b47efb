// consumer TABLE [FILTER]: makes a table, fills one row, and prints what it reads and
// whether the row passes the filter.
#include <cstdio>

#include "ovfile/smart.h"

int main(int count, char** arguments) try {
  auto schema = ovfile::create_schema();
  ovfile::check(schema->CreatePointsFile());
  auto table = ovfile::create_table();
  const ovfile::text name(arguments[1]);
  ovfile::check(table->Create(name.get(), schema.get()));
  ovfile::check(table->AddRow());
  ovfile::check(table->SetColumnDouble(1, 12.5));
  VARIANT_BOOL passes = 0;
  if (count > 2) {
    ovfile::check(table->put_FilterString(0, ovfile::text(arguments[2]).get()));
    ovfile::check(table->IsFilteredIn(0, 1, &passes));
  }
  double value = 0;
  ovfile::check(table->GetColumnAsDouble(1, &value));
  ovfile::check(table->Close());
  std::printf("%g %d\n", value, passes);
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
