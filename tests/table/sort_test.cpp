// Sorting by one column: the order, the words of refusals, and what the object is like afterwards.
#include <cmath>
#include <limits>

#include "edits_host.h"

namespace {

using ovtest::EditsHost;
using ovtest::text_of;
using ovtest::words;

class Sort : public EditsHost, public ::testing::WithParamInterface<bool> {
 protected:
  /// HOLE (8 characters) and GRADE, a row for each pair.
  void make(const std::vector<std::pair<std::string, double>>& rows) {
    auto schema = ovfile::create_schema();
    schema->put_DoublePrecision(GetParam() ? VARIANT_TRUE : VARIANT_FALSE);
    schema->AddStringColumn(words("HOLE").get(), 8, nullptr, 0);
    schema->AddNumericColumn(words("GRADE").get(), 0, 0);
    ASSERT_EQ(create(schema), S_OK);
    for (const auto& [hole, grade] : rows) {
      ASSERT_EQ(table_->AddRow(), S_OK);
      ASSERT_EQ(table_->SetColumnString(1, words(hole).get()), S_OK);
      // An infinite double is no float for the ordinary conversion.
      ASSERT_EQ(GetParam() ? table_->SetColumnDouble(2, grade)
                           : table_->SetColumnFloat(2, static_cast<float>(grade)),
                S_OK);
    }
  }
};

INSTANTIATE_TEST_SUITE_P(BothPrecisions, Sort, ::testing::Bool(),
                         [](const auto& each) { return each.param ? "double" : "single"; });

constexpr const char* bad_index = "DeleteRow failed, invalid row index";

TEST_P(Sort, NumbersAscend) {
  make({{"x", 2}, {"y", -1e30}, {"z", 1}, {"u", 1e30}});
  EXPECT_EQ(table_->Sort(2, VARIANT_TRUE), S_OK);
  EXPECT_EQ(texts(1), (std::vector<std::string>{"y       ", "z       ", "x       ", "u       "}));
}

TEST_P(Sort, NumbersDescend) {
  make({{"", 1}, {"", 3}, {"", 2}});
  EXPECT_EQ(table_->Sort(2, VARIANT_FALSE), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{3, 2, 1}));
}

TEST_P(Sort, AnyTruthAscends) {
  make({{"", 1}, {"", 3}, {"", 2}});
  EXPECT_EQ(table_->Sort(2, 1), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{1, 2, 3}));
}

TEST_P(Sort, TextsRunDownWhereNumbersRunUp) {
  make({{"a", 1}, {"ab", 2}, {"b", 3}});
  EXPECT_EQ(table_->Sort(1, VARIANT_TRUE), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{3, 2, 1}));
  EXPECT_EQ(table_->Sort(1, VARIANT_FALSE), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{1, 2, 3}));
}

TEST_P(Sort, TextsAreComparedByTheirUnits) {
  // U+0080 and U+00FF stand between no letters, and the euro sign is U+20AC.
  make({{"ABCDE", 1}, {"ABCD\u00E9", 2}, {"abc", 3}, {"ABCD\u20AC", 4}, {"", 5}, {"Z", 6}});
  EXPECT_EQ(table_->Sort(1, VARIANT_TRUE), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{3, 6, 4, 2, 1, 5}));
}

TEST_P(Sort, LongTextsAreComparedToTheirEnds) {
  auto schema = ovfile::create_schema();
  schema->put_DoublePrecision(GetParam() ? VARIANT_TRUE : VARIANT_FALSE);
  schema->AddStringColumn(words("LOG").get(), 20, nullptr, 0);
  schema->AddNumericColumn(words("ROW").get(), 0, 0);
  ASSERT_EQ(create(schema), S_OK);
  for (const char* log : {"GRANITE COARSE 1", "GRANITE", "GRANITE COARSE", "GRANITE FINE", "GRANIT\u00C9",
                          "GRANITE COARSE 2", "granite", ""}) {
    ASSERT_EQ(table_->AddRow(), S_OK);
    ASSERT_EQ(table_->SetColumnString(1, words(log).get()), S_OK);
    ASSERT_EQ(table_->SetColumnDouble(2, rows()), S_OK);
  }
  EXPECT_EQ(table_->Sort(1, VARIANT_TRUE), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{7, 5, 4, 6, 1, 3, 2, 8}));
  EXPECT_EQ(table_->Sort(1, VARIANT_FALSE), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{8, 2, 3, 1, 6, 4, 5, 7}));
}

TEST_P(Sort, WhatIsNoNumberStandsBehindAllNumbers) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  const double most = std::numeric_limits<double>::infinity();
  make({{"nan", none}, {"least", -most}, {"two", 2}, {"most", most}, {"absent", -1e30}});
  EXPECT_EQ(table_->Sort(2, VARIANT_TRUE), S_OK);
  EXPECT_EQ(texts(1), (std::vector<std::string>{"least   ", "absent  ", "two     ", "most    ", "nan     "}));
  EXPECT_EQ(table_->Sort(2, VARIANT_FALSE), S_OK);
  EXPECT_EQ(texts(1), (std::vector<std::string>{"nan     ", "most    ", "two     ", "absent  ", "least   "}));
}

TEST_P(Sort, BothZeroesAreEqual) {
  make({{"a", 0.0}, {"b", -0.0}, {"c", -1}, {"d", 1}});
  EXPECT_EQ(table_->Sort(2, VARIANT_TRUE), S_OK);
  const auto order = texts(1);
  EXPECT_EQ(order.front(), "c       ");
  EXPECT_EQ(order.back(), "d       ");
}

TEST_P(Sort, TheColumnIsHeldAgainstTheRows) {
  make({{"a", 1}});
  EXPECT_REPORT(table_->Sort(2, VARIANT_TRUE), bad_index);
  EXPECT_REPORT(table_->Sort(0, VARIANT_TRUE), bad_index);
  EXPECT_REPORT(table_->Sort(-1, VARIANT_TRUE), bad_index);
  EXPECT_EQ(table_->Sort(1, VARIANT_TRUE), S_OK);
}

TEST_P(Sort, AnEmptyTableHasNoRightIndex) {
  make({});
  EXPECT_REPORT(table_->Sort(1, VARIANT_TRUE), bad_index);
}

TEST_P(Sort, AColumnThatIsNotThereIsRefusedBeforeAnythingChanges) {
  make({{"b", 1}, {"a", 2}, {"c", 3}});
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  const ovtest::bytes before = content();
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  EXPECT_REPORT(table_->Sort(3, VARIANT_TRUE), "index out of range, field not found.");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(row(), 2);
}

TEST_P(Sort, AReadOnlyTableIsRefused) {
  make({{"b", 1}, {"a", 2}});
  ASSERT_EQ(table_->Close(), S_OK);
  const ovtest::bytes before = content();
  ASSERT_EQ(open(1), S_OK);
  EXPECT_REPORT(table_->Sort(1, VARIANT_TRUE), "DeleteRow failed, file open in read-only mode");
  // Before the column is looked at.
  EXPECT_REPORT(table_->Sort(9, VARIANT_TRUE), "DeleteRow failed, file open in read-only mode");
  EXPECT_EQ(content(), before);
}

TEST_P(Sort, WithoutATableFailsSilently) { EXPECT_REPORT(table_->Sort(1, VARIANT_TRUE), "(none)"); }

TEST_P(Sort, AfterwardsTheCursorStandsOnRowOneAndTheTableCanBeChanged) {
  make({{"b", 2}, {"a", 1}, {"c", 3}});
  ASSERT_EQ(table_->GetRowAt(9), S_FALSE);
  EXPECT_EQ(table_->Sort(2, VARIANT_TRUE), S_OK);
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(at_end(), 0);
  EXPECT_EQ(at_beginning(), 0);
  EXPECT_EQ(table_->SetColumnDouble(2, 7), S_OK);
  EXPECT_EQ(table_->AddRow(), S_OK);
  EXPECT_EQ(table_->Close(), S_OK);
  ASSERT_EQ(open(1), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{7, 2, 3, 0}));
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(Sort, WhatIsNotWrittenYetIsSortedToo) {
  make({{"b", 2}, {"a", 1}});
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  ASSERT_EQ(table_->AddRow(), S_OK);
  ASSERT_EQ(table_->SetColumnDouble(2, -5), S_OK);
  EXPECT_EQ(table_->Sort(2, VARIANT_TRUE), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{-5, 1, 2}));
}

TEST_P(Sort, TheNameStaysAndTheOpenedFileIsSorted) {
  make({{"b", 2}, {"a", 1}});
  ASSERT_EQ(table_->put_Name(words("elsewhere.ovt").get()), S_OK);
  EXPECT_EQ(table_->Sort(2, VARIANT_TRUE), S_OK);
  ovfile::text name;
  EXPECT_EQ(table_->get_Name(name.out()), S_OK);
  EXPECT_EQ(name.utf8(), "elsewhere.ovt");
  EXPECT_EQ(numbers(2), (std::vector<double>{1, 2}));
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(Sort, AnotherCurrentFolderMeansNoOtherFile) {
  std::filesystem::create_directory(path("other"));
  make({{"other", 9}, {"rows", 8}});
  ASSERT_EQ(table_->Close(), S_OK);
  std::filesystem::rename(path(), path("other/table.ovt"));
  make({{"b", 2}, {"a", 1}});
  ASSERT_EQ(table_->Close(), S_OK);
  const ovtest::bytes others = content("other/table.ovt");
  const std::filesystem::path here = std::filesystem::current_path();
  std::filesystem::current_path(folder_.path());
  EXPECT_EQ(table_->Open(words("table.ovt").get(), 0), S_OK);
  std::filesystem::current_path(path("other"));
  EXPECT_EQ(table_->Sort(2, VARIANT_TRUE), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{1, 2}));
  std::filesystem::current_path(here);
  EXPECT_EQ(content("other/table.ovt"), others);
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{1, 2}));
}

TEST_P(Sort, AFileThatIsGoneIsToldAndNoneIsOpen) {
  make({{"x", 3}, {"y", 1}, {"z", 2}});
  std::error_code refused;
  std::filesystem::remove(path(), refused);
  if (refused) GTEST_SKIP() << "an open file cannot be removed here";
  EXPECT_REPORT(table_->Sort(2, VARIANT_TRUE), "Sort failed, new table invalid");
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_P(Sort, ALinkStaysALink) {
  make({{"b", 2}, {"a", 1}});
  auto schema = ovfile::create_schema();
  schema->put_Description(words("LINKtable.ovt .").get());
  schema->AddNumericColumn(words("X").get(), 0, 0);
  ASSERT_EQ(create(schema, "link.ovt"), S_OK);
  ASSERT_EQ(table_->Close(), S_OK);
  const ovtest::bytes link = content("link.ovt");
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(table_->Sort(2, VARIANT_TRUE), S_OK);
  EXPECT_EQ(content("link.ovt"), link);
  VARIANT_BOOL linked = 9;
  EXPECT_EQ(table_->get_IsLinked(&linked), S_OK);
  EXPECT_EQ(linked, VARIANT_TRUE);
  ASSERT_EQ(table_->Close(), S_OK);
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{1, 2}));
}

TEST_P(Sort, RangesGoOn) {
  make({{"b", 2}, {"a", 1}, {"c", 3}});
  double value = 0;
  ASSERT_EQ(table_->GetColumnMax(2, &value), S_OK);
  EXPECT_EQ(table_->Sort(2, VARIANT_FALSE), S_OK);
  EXPECT_EQ(table_->SetColumnDouble(2, 10), S_OK);
  EXPECT_EQ(table_->GetColumnMax(2, &value), S_OK);
  EXPECT_EQ(value, 10);
  EXPECT_EQ(table_->GetColumnMin(2, &value), S_OK);
  EXPECT_EQ(value, 1);
  EXPECT_EQ(row(), 1);
}

TEST_P(Sort, TheSchemaThatTheHostHasChangedDoesNotCount) {
  make({{"b", 2}, {"a", 1}, {"c", 3}});
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  const auto schema = schema_of(table_);
  ASSERT_EQ(schema->AddNumericColumn(words("MORE").get(), 5, 0), S_OK);
  ASSERT_EQ(schema->SetFieldName(1, words("OTHER").get()), S_OK);
  ASSERT_EQ(schema->SetFieldSize(1, 64), S_OK);
  EXPECT_EQ(table_->Sort(2, VARIANT_TRUE), S_OK);
  EXPECT_EQ(texts(1), (std::vector<std::string>{"a       ", "b       ", "c       "}));
  const auto anew = schema_of(table_);
  LONG count = 0;
  EXPECT_EQ(anew->get_FieldCount(&count), S_OK);
  EXPECT_EQ(count, 2);
  ovfile::text name;
  EXPECT_EQ(anew->GetFieldName(1, name.out()), S_OK);
  EXPECT_EQ(name.utf8(), "HOLE");
}

TEST_P(Sort, AnObjectWithoutASchemaSortsToo) {
  make({{"b", 2}, {"a", 1}});
  ASSERT_EQ(table_->put_Schema(nullptr), S_OK);
  EXPECT_EQ(table_->Sort(2, VARIANT_TRUE), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{1, 2}));
  EXPECT_TRUE(schema_of(table_));
}

TEST_P(Sort, ARowThatCannotBeReadFailsAndChangesNothing) {
  std::vector<std::pair<std::string, double>> many(900, {"row", 1});
  make(many);
  ASSERT_EQ(table_->Close(), S_OK);
  // The last pages are cut off: the header promises rows that are not there.
  std::filesystem::resize_file(path(), std::filesystem::file_size(path()) / 3);
  const ovtest::bytes before = content();
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(table_->GetRowAt(3), S_OK);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(table_->Sort(2, VARIANT_TRUE), E_FAIL);
  EXPECT_NE(ovtest::reported(), "(none)");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(row(), 3);
  EXPECT_EQ(depth(), 1);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(Sort, TheFlagsSurviveARefusal) {
  make({{"b", 2}, {"a", 1}});
  const auto reader = ovf::system_files().open(ovtest::wide_path(path()), ovf::open_mode::read);
  ASSERT_NE(reader, nullptr);
  ASSERT_EQ(table_->GetRowAt(3), S_FALSE);
  EXPECT_REPORT(table_->Sort(2, VARIANT_TRUE), "Sort failed. Could not delete temp file: ");
  EXPECT_EQ(at_end(), 1);
  EXPECT_EQ(at_beginning(), 0);
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  EXPECT_REPORT(table_->Sort(2, VARIANT_TRUE), "Sort failed. Could not delete temp file: ");
  EXPECT_EQ(row(), 2);
}

}  // namespace
