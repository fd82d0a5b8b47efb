// Broken, odd and foreign files: each is refused or opened as its entry says, is read within its
// bounds, ends in time, takes little memory, and stays as it was.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <memory>

#include "golden/check_reading.h"
#include "golden/expected_json.h"
#include "support/component.h"
#include "support/file_bytes.h"
#include "support/peak_memory.h"
#include "support/reference_files.h"
#include "support/scratch_folder.h"

namespace ovtest {
namespace {

using nlohmann::json;

/// The caches of a table (two segments of 100 pages at most, a header page) and what a test needs.
constexpr std::size_t memory_allowance = 24 << 20;

/// Broken files first, then every whole one: all must be read within their bounds.
std::vector<std::string> every_file() {
  std::vector<std::string> files;
  const std::filesystem::path folder = reference_folder();
  if (!std::filesystem::is_directory(folder / "bad")) return files;
  for (const auto& entry : std::filesystem::directory_iterator(folder / "bad")) {
    files.push_back("bad/" + entry.path().filename().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<json> bad_entries() {
  std::ifstream file(reference_folder() / "bad.json", std::ios::binary);
  if (!file) return {};
  return json::parse(file).get<std::vector<json>>();
}

class bad_file : public testing::TestWithParam<std::string> {
 protected:
  /// The links among the files name their neighbours, so that all of them are copied. Reading changes none,
  /// so once for all tests.
  static void SetUpTestSuite() {
    folder_ = std::make_unique<scratch_folder>();
    for (const std::string& file : every_file()) copy_reference(file, folder_->path());
  }
  static void TearDownTestSuite() { folder_.reset(); }

  void SetUp() override {
    path_ = *folder_ / GetParam();
    before_ = read_bytes(path_);
  }

  HRESULT open(IOvTable& table) {
    clear_error();
    return table.Open(path_text(path_).get(), 1);
  }

  json expect() const {
    for (const json& entry : bad_entries()) {
      if ("bad/" + entry["file"].get<std::string>() == GetParam()) return entry["expect"];
    }
    return {{"open", "either"}};
  }

  static inline std::unique_ptr<scratch_folder> folder_;
  std::filesystem::path path_;
  bytes before_;
};

TEST_P(bad_file, is_refused_or_opened_as_it_must) {
  const json expected = expect();
  const owned<IOvTable> table = make_table();
  const HRESULT status = open(*table);
  const std::string message = take_error_text();
  if (expected["open"] == "fails") {
    EXPECT_EQ(E_FAIL, status) << GetParam();
    EXPECT_EQ(expected.value("message", message), message) << GetParam();
  } else if (expected["open"] == "opens") {
    ASSERT_EQ(S_OK, status) << GetParam() << ": " << message;
    check_reading(*table, expected_from_odd(expected, GetParam()));
  } else {
    EXPECT_TRUE(status == S_OK || status == E_FAIL) << GetParam() << ": " << std::hex << status;
  }
}

bool is_answer(HRESULT status) {
  return status == S_OK || status == S_FALSE || status == E_FAIL || status == E_NOTIMPL;
}

void read_row(IOvTable& table, LONG columns, std::vector<LONG>& record) {
  for (LONG column = 1; column <= columns; ++column) {
    double as_double = 0;
    float as_float = 0;
    bstr as_text;
    variant as_variant;
    EXPECT_PRED1(is_answer, table.GetColumnAsDouble(column, &as_double));
    EXPECT_PRED1(is_answer, table.GetColumnAsFloat(column, &as_float));
    EXPECT_PRED1(is_answer, table.GetColumnAsString(column, as_text.out()));
    EXPECT_PRED1(is_answer, table.GetColumn(column, as_variant.out()));
  }
  EXPECT_PRED1(is_answer, table.ReadOVRecord(record.data()));
}

/// Every column of the first 300 rows and of the last one, ranges and kind.
void read_everything(IOvTable& table) {
  owned<IOvSchema> schema;
  LONG columns = 0;
  LONG rows = 0;
  OvFileType kind{};
  std::vector<LONG> record(2 * 512);
  ASSERT_EQ(S_OK, table.get_Schema(schema.out()));
  ASSERT_EQ(S_OK, schema->get_FieldCount(&columns));
  ASSERT_EQ(S_OK, table.GetRowCount(&rows));
  EXPECT_PRED1(is_answer, schema->get_TypeHint(&kind));
  for (LONG column = 1; rows < 1000 && column <= columns; ++column) {
    double value = 0;
    EXPECT_PRED1(is_answer, table.GetColumnMin(column, &value));
    EXPECT_PRED1(is_answer, table.GetColumnMax(column, &value));
  }
  EXPECT_PRED1(is_answer, table.GetFirstRow());
  for (LONG row = 1; row <= std::min<LONG>(rows, 300); ++row) {
    read_row(table, columns, record);
    EXPECT_PRED1(is_answer, table.GetNextRow());
  }
  EXPECT_PRED1(is_answer, table.GetLastRow());
  read_row(table, columns, record);
}

TEST_P(bad_file, is_read_within_its_bounds) {
  const std::size_t memory_before = peak_memory();
  {
    const owned<IOvTable> table = make_table();
    if (open(*table) == S_OK) read_everything(*table);
    EXPECT_EQ(S_OK, table->Close()) << GetParam();
  }
  const std::size_t taken = peak_memory() - memory_before;
  EXPECT_LT(taken, memory_allowance) << GetParam() << ": " << before_.size() << " bytes long";
  EXPECT_TRUE(read_bytes(path_) == before_) << GetParam() << " changed by reading";
}

/// The same for tables that are whole, so that the walk itself is known to be right.
TEST(reference_tables, are_read_within_their_bounds) {
  const scratch_folder folder;
  const std::vector<std::string> names = reference_names();
  if (names.empty()) GTEST_SKIP() << "no reference tables at " << reference_folder();
  for (const std::string& name : names) copy_reference(name + ".ovt", folder.path());
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const owned<IOvTable> table = make_table();
    if (table->Open(path_text(folder / (name + ".ovt")).get(), 1) == S_OK) read_everything(*table);
  }
}

INSTANTIATE_TEST_SUITE_P(every, bad_file, testing::ValuesIn(every_file()), [](const auto& file) {
  return test_name(std::filesystem::path(file.param).stem().string());
});
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(bad_file);

}  // namespace
}  // namespace ovtest
