// Every reference table reads as it must, to the last bit, and stays as it was.
#include <gtest/gtest.h>

#include "golden/check_reading.h"
#include "golden/expected_json.h"
#include "support/component.h"
#include "support/file_bytes.h"
#include "support/reference_files.h"
#include "support/scratch_folder.h"

namespace ovtest {
namespace {

using nlohmann::json;

TEST(reference_tables, are_there) {
  if (reference_names().empty()) GTEST_SKIP() << "no reference tables at " << reference_folder();
}

class reference_table : public testing::TestWithParam<std::string> {
 protected:
  /// The table of this test in the scratch folder; a skipped test when it cannot be unpacked.
  void SetUp() override {
    table_ = reference_json(GetParam());
    const auto copy = copy_reference(table_["file"], folder_.path());
    if (!copy) GTEST_SKIP() << table_["file"] << " is packed, and gzip is not there to unpack it";
    path_ = *copy;
    before_ = read_bytes(path_);
    if (table_.contains("link")) copy_target(table_["link"]["target"]);
  }

  void copy_target(const std::string& target) {
    if (std::filesystem::exists(reference_folder() / target)) copy_reference(target, folder_.path());
  }

  /// What the host sees: the table itself, or the one that its link leads to.
  expected_reading expected() const {
    if (!table_.contains("link")) {
      expected_reading own = expected_from(table_);
      own.is_linked = false;
      return own;
    }
    expected_reading target = expected_from(reference_json(table_["link"]["reads_as"]));
    target.file = table_["file"].get<std::string>() + " -> " + target.file;
    target.is_linked = table_["link"]["is_linked"].get<bool>();
    return target;
  }

  HRESULT open(IOvTable& table) {
    clear_error();
    return table.Open(path_text(path_).get(), 1);
  }

  void expect_unchanged() const {
    EXPECT_TRUE(read_bytes(path_) == before_) << table_["file"] << " changed by reading";
  }

  json table_;
  scratch_folder folder_;
  std::filesystem::path path_;
  bytes before_;
};

TEST_P(reference_table, reads_as_expected) {
  const owned<IOvTable> table = make_table();
  const HRESULT status = open(*table);
  if (table_.contains("link") && table_["link"].contains("fails")) {
    EXPECT_EQ(E_FAIL, status) << table_["file"];
    EXPECT_EQ(table_["link"]["fails"].get<std::string>(), take_error_text()) << table_["file"];
    return;
  }
  ASSERT_EQ(S_OK, status) << table_["file"] << ": " << take_error_text();
  check_reading(*table, expected());
  EXPECT_EQ(S_OK, table->Close());
  expect_unchanged();
}

TEST_P(reference_table, derives_as_expected) {
  if (table_.contains("link") && table_["link"].contains("fails")) GTEST_SKIP() << "leads nowhere";
  const owned<IOvTable> table = make_table();
  ASSERT_EQ(S_OK, open(*table)) << table_["file"] << ": " << take_error_text();
  const int compared = check_derived(*table, expected());
  EXPECT_EQ(S_OK, table->Close());
  expect_unchanged();
  if (compared == 0) GTEST_SKIP() << "kind, ranges and signatures are not there yet";
}

INSTANTIATE_TEST_SUITE_P(every, reference_table, testing::ValuesIn(reference_names()),
                         [](const auto& table) { return test_name(table.param); });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(reference_table);

}  // namespace
}  // namespace ovtest
