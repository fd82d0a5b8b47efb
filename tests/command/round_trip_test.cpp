// Real tables: every value of every row comes back.
#include <cmath>
#include <fstream>

#include "command/command_test.h"
#include "command/csv_reader.h"
#include "support/shared_data.h"

namespace {

struct real_table {
  const char* name;
  std::size_t rows;
};

void PrintTo(const real_table& table, std::ostream* out) { *out << table.name; }

class round_trip_test : public ovtest::command_test, public testing::WithParamInterface<real_table> {
 protected:
  using rows = std::vector<std::vector<std::string>>;

  static rows read_rows(const std::filesystem::path& path) {
    command::csv_input input(path.string());
    command::csv_reader reader(input, path.string());
    rows all;
    while (reader.next()) all.emplace_back(reader.cells().begin(), reader.cells().end());
    return all;
  }

  /// The exported rows beside the original ones, without the headers.
  void compare(bool single) {
    const auto source = ovtest::shared_folder() / "data" / (std::string(GetParam().name) + ".csv");
    if (!std::filesystem::exists(source)) GTEST_SKIP() << source << " is not there";
    std::vector<std::string> import = {"import", source.string(), "t.ovt"};
    if (single) import.push_back("--single");
    ASSERT_EQ(run(import).status, 0);
    run_quietly({"export", "t.ovt", "out.csv"});
    const rows before = read_rows(source);
    const rows after = read_rows(folder() / "out.csv");
    ASSERT_EQ(before.size(), GetParam().rows + 1);
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t row = 1; row < before.size(); ++row) {
      ASSERT_EQ(after[row].size(), before[row].size()) << "row " << row;
      for (std::size_t i = 0; i < before[row].size(); ++i) {
        ASSERT_TRUE(equal(before[row][i], after[row][i], single))
            << "row " << row << ", column " << i + 1 << ": " << before[row][i] << ", " << after[row][i];
      }
    }
  }

 private:
  static bool equal(const std::string& before, const std::string& after, bool single) {
    if (before == after) return true;
    if (before.empty() || after.empty()) return false;
    char* end = nullptr;
    const double number = std::strtod(before.c_str(), &end);
    if (*end != '\0') return false;
    const double back = std::strtod(after.c_str(), &end);
    if (*end != '\0') return false;
    return single ? static_cast<float>(number) == static_cast<float>(back) : number == back;
  }
};

TEST_P(round_trip_test, every_value_is_equal) { compare(false); }

TEST_P(round_trip_test, every_value_is_equal_as_a_float_in_single_precision) { compare(true); }

INSTANTIATE_TEST_SUITE_P(
    real_tables, round_trip_test,
    testing::Values(real_table{"babbitt_collars", 399}, real_table{"babbitt_surveys", 2628},
                    real_table{"babbitt_assays", 35616}, real_table{"demo_blockmodel", 5572},
                    real_table{"walkerlake_exhaustive", 78000}),
    [](const testing::TestParamInfo<real_table>& table) { return std::string(table.param.name); });

}  // namespace
