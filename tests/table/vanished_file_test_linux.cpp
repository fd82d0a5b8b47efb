// A table's file that another program has taken away while it was open.
#include "table_edits_list.h"

namespace {

using ovtest::EditedTable;
using ovtest::EditsHost;

class VanishedFile : public EditedTable {};

INSTANTIATE_TEST_SUITE_P(Edits, VanishedFile, ::testing::ValuesIn(ovtest::table_edits()),
                         [](const auto& each) { return each.param.name; });

TEST_P(VanishedFile, CannotBeReplacedAndStaysOpen) {
  open_anew();
  std::filesystem::remove(path());
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(run(), E_FAIL);
  const std::string report = ovtest::reported();
  EXPECT_TRUE(report.starts_with(GetParam().no_copy)) << report;
  EXPECT_EQ(current(), 9);
  EXPECT_EQ(second_column(), 9);
  EXPECT_TRUE(left_behind().empty());
}

class VanishedRecordSet : public EditsHost {};

TEST_F(VanishedRecordSet, CannotBeUpdated) {
  make_rows(3);
  ASSERT_EQ(open_set(), S_OK);
  std::filesystem::remove(path());
  EXPECT_REPORT(set_->Update(), "Error: File does not exist.");
  EXPECT_REPORT(set_->Update(), "(none)");
}

}  // namespace
