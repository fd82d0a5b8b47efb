// The expressions that the manual shows.
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
