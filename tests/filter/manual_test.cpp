// The expressions that the manual shows.
#include <algorithm>
#include <fstream>

#include "filter/filter_test.h"

namespace ovtest {
namespace {

/// The second cells of the manual's first table, without their backticks.
std::vector<std::string> examples() {
  std::vector<std::string> found;
  std::ifstream manual(OVFILE_SOURCE_DIR "/docs/filters.md");
  for (std::string line; std::getline(manual, line) && !line.starts_with("## ");) {
    const std::size_t start = line.find("| `");
    const std::size_t end = line.rfind("` |");
    if (start != std::string::npos && end != std::string::npos) {
      found.push_back(line.substr(start + 3, end - start - 3));
    }
  }
  return found;
}

TEST(filter_manual, shows_good_expressions) {
  const std::vector<std::string> shown = examples();
  ASSERT_EQ(11U, shown.size());
  EXPECT_EQ("AU >= 1.5", shown.front());
  for (const std::string& expression : shown) EXPECT_EQ("", complaint_about(expression)) << expression;
}

using cells = std::vector<std::string>;

/// The cells of a table's line, without blanks and backticks around them.
cells cells_of(const std::string& line) {
  cells found;
  for (std::size_t start = 1, end = 0; (end = line.find('|', start)) != std::string::npos; start = end + 1) {
    std::string cell = line.substr(start, end - start);
    cell.erase(0, std::min(cell.find_first_not_of(" `"), cell.size()));
    cell.erase(cell.find_last_not_of(" `") + 1);
    found.push_back(cell);
  }
  return found;
}

/// The two tables of the worked example without their heads: rows, and conditions with the rows that pass.
std::pair<std::vector<cells>, std::vector<cells>> worked_example() {
  std::pair<std::vector<cells>, std::vector<cells>> found;
  std::ifstream manual(OVFILE_SOURCE_DIR "/docs/filters.md");
  std::string line;
  while (std::getline(manual, line) && line != "## A worked example") continue;
  while (std::getline(manual, line) && !line.starts_with("## ")) {
    if (line.starts_with("| `")) found.second.push_back(cells_of(line));
    if (line.starts_with("| ") && line[2] >= '1' && line[2] <= '9') found.first.push_back(cells_of(line));
  }
  return found;
}

bool row_passes(IOvFilter& filter, IOvFilterValues& values, const cells& row) {
  LONG variable = 0;
  for (const std::string& name : variables(filter)) {
    const std::string& value = row.at(name == "BHID" ? 1 : name == "AU" ? 2 : 3);
    if (value == "absent") {
      EXPECT_EQ(S_OK, values.SetAbsent(variable));
    } else if (name == "AU") {
      EXPECT_EQ(S_OK, values.SetNumber(variable, std::stod(value)));
    } else {
      EXPECT_EQ(S_OK, values.SetText(variable, ovfile::text(value).get()));
    }
    ++variable;
  }
  SHORT result = 0;
  EXPECT_EQ(S_OK, values.Test(&result));
  return result != 0;
}

TEST(filter_manual, works_its_example) {
  const auto [rows, conditions] = worked_example();
  ASSERT_EQ(5U, rows.size());
  ASSERT_EQ(16U, conditions.size());
  const auto filter = make_filter();
  const auto values = values_of(filter);
  for (const cells& condition : conditions) {
    ASSERT_EQ(S_OK, set_expression(*filter.get(), condition.at(0))) << condition.at(0);
    std::string passing;
    for (const cells& row : rows) {
      if (!row_passes(*filter.get(), *values.get(), row)) continue;
      passing.append(passing.empty() ? "" : ", ").append(row.at(0));
    }
    EXPECT_EQ(condition.at(1), passing.empty() ? "none" : passing) << condition.at(0);
  }
}

TEST(filter_manual, says_what_they_find) {
  check({{"AU + 0.8 * AG / 60 > 2", "1.5,45", true},
         {"AU + 0.8 * AG / 60 > 2", "1.5,30", false},
         {"(X - 5200) ^ 2 + (Y - 1430) ^ 2 < 50 ^ 2", "5230,1460", true},
         {"(X - 5200) ^ 2 + (Y - 1430) ^ 2 < 50 ^ 2", "5250,1431", false},
         {"mod(int(Z / 10), 2) = 0", "125", true},
         {"mod(int(Z / 10), 2) = 0", "-5", false},
         {"AU > if(ROCK = 'OX', 0.4, 0.8)", "0.5,OX", true},
         {"AU > if(ROCK = 'OX', 0.4, 0.8)", "0.5,FR", false},
         {"NOT (AU > 1)", "-", true},
         {"AU <= 1", "-", false},
         {"(AU > 1) + (CU > 1) >= 1", "0,2", true}});
}

}  // namespace
}  // namespace ovtest
