// The change of type against a table of what the automation library answers.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "system_exceptions.h"
#include "written_value.h"

namespace {

std::filesystem::path table_path() {
  const char* shared = std::getenv("OVFILE_SHARED");
  const std::filesystem::path folder = shared != nullptr
                                           ? std::filesystem::path(shared)
                                           : std::filesystem::path(OVFILE_SOURCE_DIR) / ".." / "shared";
  return folder / "data" / "conversions.csv";
}

std::vector<std::string> cells(const std::string& line) {
  std::vector<std::string> result(1);
  bool quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"') {
      quoted = !quoted;
      // Two quotation marks within a cell are one.
      if (quoted && i > 0 && line[i - 1] == '"') result.back() += '"';
    } else if (line[i] == ',' && !quoted) {
      result.emplace_back();
    } else if (line[i] != '\r') {
      result.back() += line[i];
    }
  }
  return result;
}

std::string answer(const std::vector<std::string>& row) {
  const ovf::variant source = ovtest::written_value(row[0], row[1]);
  ovf::variant result;
  const HRESULT status = ovf::change_type(*result.out(), source, ovtest::type_named(row[2]));
  char text[16];
  std::snprintf(text, sizeof text, "%08X ", static_cast<unsigned>(status));
  return text + (SUCCEEDED(status) ? ovtest::shown(result) : std::string());
}

TEST(recorded_conversions, all_answer_as_recorded) {
  std::ifstream table(table_path());
  if (!table) GTEST_SKIP() << "no table of recorded conversions at " << table_path();
  std::string line;
  std::getline(table, line);
  int rows = 0;
  while (std::getline(table, line)) {
    const std::vector<std::string> row = cells(line);
    ASSERT_EQ(row.size(), 5u) << line;
    if (ovtest::system_answers_otherwise(row[0], row[1], row[2])) continue;
    const bool succeeded = row[3] == "00000000";
    EXPECT_EQ(answer(row), row[3] + ' ' + (succeeded ? ovtest::normal_form(row[2], row[4]) : "")) << line;
    ++rows;
  }
  EXPECT_GT(rows, 2000);
}

}  // namespace
