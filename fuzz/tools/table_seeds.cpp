// table_seeds FOLDER [BYTES]: writes the tables that the readers' tests put together word by word into the
// folder, those of at most BYTES (16,384), as seeds for dictionary_fuzz.
#include <cstdio>
#include <cstdlib>

#include "support/table_cases.h"

int main(int count, char** arguments) {
  if (count < 2) {
    std::fputs("table_seeds FOLDER [BYTES]\n", stderr);
    return 2;
  }
  const std::size_t most = count > 2 ? std::strtoull(arguments[2], nullptr, 10) : 16'384;
  for (const ovtest::table_case& each : ovtest::table_cases()) {
    if (each.file.size() > most) continue;
    ovtest::write_bytes(std::filesystem::path(arguments[1]) / (each.name + ".ovt"), each.file);
  }
  return 0;
}
