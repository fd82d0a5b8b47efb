#include "table_host.h"

namespace {

using ovtest::TableHost;
using ovtest::text_of;

constexpr const char* missing_target = "File does not exist";

class Links : public TableHost {
 protected:
  /// A link file with that description.
  void make_link(const std::string& description, const char* name = "link.ovt") {
    auto schema = ovfile::create_schema();
    schema->put_Description(text_of(description).get());
    schema->AddNumericColumn(text_of(std::string("X")).get(), 0, 0);
    ASSERT_EQ(create(schema, name), S_OK);
    ASSERT_EQ(table_->Close(), S_OK);
  }
  VARIANT_BOOL linked() {
    VARIANT_BOOL value = 9;
    EXPECT_EQ(table_->get_IsLinked(&value), S_OK);
    return value;
  }
};

TEST_F(Links, ABareNameLiesInTheLinksOwnFolder) {
  make_rows(2);
  make_link("LINKtable.ovt .");
  EXPECT_EQ(linked(), VARIANT_FALSE);
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(linked(), VARIANT_TRUE);
  EXPECT_EQ(depth(), 1);
  ovfile::text name;
  EXPECT_EQ(table_->get_Name(name.out()), S_OK);
  EXPECT_EQ(name.view(), ovtest::wide_path(path()));
}

TEST_F(Links, TheFlagStaysWhenAnOrdinaryFileFollows) {
  make_rows(2);
  make_link("LINKtable.ovt");
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_EQ(linked(), VARIANT_TRUE);
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(linked(), VARIANT_TRUE);
}

TEST_F(Links, TheFlagTellsOfALinkToWhatIsNoTable) {
  make_link("LINKnotes.txt .");
  ovtest::write_bytes(path("notes.txt"), ovtest::bytes(5000, 'x'));
  EXPECT_NE(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(linked(), VARIANT_TRUE);
}

TEST_F(Links, OneLevelIsFollowed) {
  make_rows(2);
  make_link("LINKtable.ovt .", "first.ovt");
  make_link("LINKfirst.ovt .", "second.ovt");
  ASSERT_EQ(open(0, "second.ovt"), S_OK);
  LONG rows = 9;
  EXPECT_EQ(table_->GetRowCount(&rows), S_OK);
  EXPECT_EQ(rows, 0);
}

TEST_F(Links, TheCaseOfTheMarkMatters) {
  make_link("Linktable.ovt .");
  EXPECT_EQ(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(linked(), VARIANT_FALSE);
}

TEST_F(Links, AMissingTargetIsReported) {
  make_link("LINKnot there.ovt .");
  EXPECT_REPORT(open(0, "link.ovt"), missing_target);
}

TEST_F(Links, ATargetMayStandInAFolderBesideTheLink) {
  std::filesystem::create_directory(path("north"));
  make_rows(2, true, "north/pit.ovt");
  make_link("LINKnorth/pit.ovt .");
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(depth(), 1);
}

TEST_F(Links, AMissingTargetKeepsTheTableThatWasOpen) {
  make_rows(2);
  make_link("LINKnot there.ovt .");
  ASSERT_EQ(open(), S_OK);
  EXPECT_REPORT(open(0, "link.ovt"), missing_target);
  EXPECT_EQ(depth(), 1);
}

TEST_F(Links, ATargetWrittenWithBackslashesIsFoundOnEverySystem) {
  std::filesystem::create_directory(path("north"));
  make_rows(2, true, "north/pit.ovt");
  make_link("LINKnorth\\pit.ovt .");
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(depth(), 1);
}

TEST_F(Links, AnAbsoluteTargetIsTakenAsItIs) {
  const std::string target = ovf::utf8_from_wide(ovtest::wide_path(path()));
  if (target.size() > 54) GTEST_SKIP() << "the folder's name is too long for a description";
  make_rows(2);
  make_link("LINK" + target + " .");
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(depth(), 1);
}

}  // namespace
