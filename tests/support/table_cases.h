// Tables built word by word, each with what reading it must give: one table of cases for the readers'
// tests and for the seeds of the fuzzers.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "support/expected_reading.h"
#include "support/file_bytes.h"

namespace ovtest {

struct table_case {
  std::string name;
  bytes file;
  expected_reading expected;
};

/// How a failing test shows its case.
inline void PrintTo(const table_case& shown, std::ostream* out) { *out << shown.name; }

/// Every case; made anew by each call.
std::vector<table_case> table_cases();

/// The parts of the list, one per concern.
void add_precision_cases(std::vector<table_case>& cases);
void add_text_cases(std::vector<table_case>& cases);
void add_page_cases(std::vector<table_case>& cases);

}  // namespace ovtest
