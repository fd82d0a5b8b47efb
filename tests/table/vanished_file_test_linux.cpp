// A table's file that another program has taken away while it was open.
#include "table_edits_list.h"

namespace {

using ovtest::EditedTable;
using ovtest::EditsHost;

class VanishedFile : public EditedTable {};

INSTANTIATE_TEST_SUITE_P(Edits, VanishedFile, ::testing::ValuesIn(ovtest::table_edits()),
                         [](const auto& each) { return each.param.name; });

TEST_P(VanishedFile, CannotBeReplaced) {
  open_anew();
  std::filesystem::remove(path());
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(run(), E_FAIL);
  const std::string report = ovtest::reported();
  EXPECT_TRUE(left_behind().empty());
  if (GetParam().opens_first) {
    EXPECT_EQ(report, GetParam().not_reopened);
    LONG count = 0;
    EXPECT_EQ(table_->GetRowCount(&count), E_FAIL);
    return;
  }
  EXPECT_TRUE(report.starts_with(GetParam().no_copy)) << report;
  EXPECT_EQ(current(), 9);
  EXPECT_EQ(second_column(), 9);
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
