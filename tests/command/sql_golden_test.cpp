// Reference tables of every byte order and precision, and broken ones.
#include <bit>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

#include "command/sql_fixture.h"
#include "support/shared_data.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using ovtest::names;

class sql_golden_test : public ovtest::sql_test {
 protected:
  void SetUp() override {
    sql_test::SetUp();
    if (!fs::is_directory(golden())) GTEST_SKIP() << golden() << " is not there";
  }

  static fs::path golden() { return fs::absolute(ovtest::shared_folder() / "golden"); }

  /// The reference files with this beginning that are whole tables of some columns.
  static std::vector<fs::path> tables() {
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(golden())) {
      const fs::path expected = fs::path(entry.path()).replace_extension(".json");
      if (entry.path().extension() == ".ovt" && fs::exists(expected)) found.push_back(entry.path());
    }
    std::sort(found.begin(), found.end());
    return found;
  }

  static json expected(fs::path table) {
    const ovtest::bytes text = ovtest::read_bytes(table.replace_extension(".json"));
    return json::parse(text.begin(), text.end());
  }

  static std::string quoted(const fs::path& table) { return "'" + table.generic_string() + "'"; }
};

constexpr double absent_number = -1e30;

/// The number that a double-precision table has, or that the shortest digits of a float say; nothing where
/// nothing is expected.
std::optional<double> number_of(const json& cell, bool is_float) {
  if (!cell.is_object())
    return cell.is_number() ? cell.get<double>() : std::strtod(cell.get<std::string>().c_str(), nullptr);
  if (!is_float || !cell.contains("f")) {
    return cell.contains("d") ? number_of(cell["d"], false) : std::nullopt;
  }
  const json& single = cell["f"];
  const float value =
      single.is_number() ? single.get<float>() : std::strtof(single.get<std::string>().c_str(), nullptr);
  if (!std::isfinite(value)) return static_cast<double>(value);
  char digits[32];
  *std::to_chars(digits, digits + sizeof digits - 1, value, std::chars_format::scientific).ptr = '\0';
  return std::strtod(digits, nullptr);
}

void expect_number(const json& found, double expected, const std::string& where) {
  const bool is_absent =
      expected == absent_number || expected == static_cast<double>(static_cast<float>(absent_number));
  if (is_absent) {
    EXPECT_TRUE(found.is_null()) << where << found;
  } else if (std::isnan(expected) || std::isinf(expected)) {
    EXPECT_EQ(found, std::isnan(expected) ? "nan" : expected > 0 ? "inf" : "-inf") << where;
  } else if (expected == 0) {
    EXPECT_EQ(found, 0) << where;  // whose sign the reader of JSON loses
  } else {
    ASSERT_TRUE(found.is_number()) << where << found;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(found.get<double>()), std::bit_cast<std::uint64_t>(expected))
        << where;
  }
}

std::string without_end_blanks(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

void expect_text(const json& found, const json& cell, const std::string& where) {
  const json& value = cell.is_object() && cell.contains("t") ? cell["t"] : cell;
  if (!value.is_string() && !value.is_null()) return;
  const std::string text = value.is_null() ? "" : without_end_blanks(value.get<std::string>());
  if (text.empty()) {
    EXPECT_TRUE(found.is_null()) << where << found;
  } else {
    EXPECT_EQ(found, text) << where;
  }
}

TEST_F(sql_golden_test, every_table_reads_as_expected) {
  std::size_t rows_seen = 0;
  for (const fs::path& table : tables()) {
    const json golden = expected(table);
    if (!golden.contains("fields") || !golden.contains("rows") || golden["fields"].empty()) continue;
    if (golden.value("is_link", false)) continue;
    SCOPED_TRACE(table.filename().string());
    const json found = json::parse(run_quietly({"sql", "from " + quoted(table), "-o", "json"}));
    ASSERT_EQ(found.size(), golden["rows"].size());
    for (std::size_t row = 0; row < found.size(); ++row) {
      // Objects are sorted by name, so each column is asked for by the name that it goes by.
      std::size_t column = 0;
      for (const json& field : golden["fields"]) {
        const json& cell = golden["rows"][row][column++];
        const std::string name = field["name"].get<std::string>();
        if (!found[row].contains(name)) continue;  // another's in other letters
        const std::string where = "row " + std::to_string(row + 1) + ", " + name + ": ";
        if (field["type"] == 3) {
          expect_text(found[row][name], cell, where);
        } else if (const auto number = number_of(cell, field["type"] == 1)) {
          expect_number(found[row][name], *number, where);
        }
      }
      ++rows_seen;
    }
  }
  EXPECT_GT(rows_seen, 1000u);
}

TEST_F(sql_golden_test, a_link_reads_as_its_target) {
  EXPECT_EQ(csv("from " + quoted(golden() / "link_double.ovt")),
            csv("from " + quoted(golden() / "s_one_number.ovt")));
  const auto missing = run({"sql", "from " + quoted(golden() / "link_missing.ovt")});
  EXPECT_EQ(missing.status, 1);
  EXPECT_NE(missing.error.find("File does not exist"), missing.error.npos) << missing.error;
}

TEST_F(sql_golden_test, a_table_without_columns_is_refused) {
  for (const char* name : {"d_no_fields.ovt", "s_no_fields.ovt"}) {
    const auto table = golden() / name;
    expect_failure({"sql", "from " + quoted(table)}, table.generic_string() + " has no columns");
  }
}

TEST_F(sql_golden_test, broken_tables_end_in_one_line) {
  std::size_t seen = 0;
  for (const auto& entry : fs::directory_iterator(golden() / "bad")) {
    SCOPED_TRACE(entry.path().filename().string());
    const auto result = run({"sql", "from " + quoted(entry.path()), "--output", "out.csv"});
    EXPECT_TRUE(result.status == 0 || result.status == 1) << result.status;
    EXPECT_EQ(fs::exists(folder() / "out.csv"), result.status == 0);
    if (result.status == 1) {
      EXPECT_EQ(result.error.find('\n'), result.error.size() - 1) << result.error;
      EXPECT_EQ(result.error.find("Stack"), result.error.npos) << result.error;
    }
    fs::remove(folder() / "out.csv");
    EXPECT_EQ(files(), names{});
    ++seen;
  }
  EXPECT_GT(seen, 20u);
}

}  // namespace
