// A table under another schema: columns added, dropped, in another order.
#include "repair_host.h"

#include "recording_filter.h"
#include "schema/foreign_schema.h"

namespace {

using ovtest::add_number;
using ovtest::add_text;
using ovtest::bytes;
using ovtest::empty_schema;
using ovtest::holes_and;
using ovtest::words;

class Repair : public ovtest::RepairHost {};

INSTANTIATE_TEST_SUITE_P(BothPrecisions, Repair, ::testing::Bool(),
                         [](const auto& each) { return each.param ? "double" : "single"; });

TEST_P(Repair, AnotherOrderOfTheSameFieldsLeavesTheFileUntouched) {
  open_rows(3);
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  const bytes before = content();
  auto schema = empty_schema(!GetParam());
  add_number(schema, "DENSITY");
  add_text(schema, "DEPTH", 20);
  add_number(schema, "BHID");
  EXPECT_EQ(repair(schema), S_OK);
  EXPECT_EQ(content(), before);
  EXPECT_EQ(row(), 2);
}

TEST_P(Repair, NothingHappensWithoutASchema) {
  open_rows(3);
  const bytes before = content();
  EXPECT_EQ(table_->Repair(nullptr), S_OK);
  ASSERT_EQ(table_->put_Schema(nullptr), S_OK);
  EXPECT_EQ(repair(empty_schema(GetParam())), S_OK);
  EXPECT_EQ(content(), before);
  auto fresh = ovfile::create_table();
  EXPECT_EQ(fresh->Repair(empty_schema(GetParam()).get()), S_OK);
}

TEST_P(Repair, AnAddedColumnHoldsItsDefaultAndTheLastRowIsLeftBehind) {
  open_rows(10);
  auto schema = holes_and(GetParam());
  add_number(schema, "AU", 0.5);
  add_text(schema, "LAB", 4, "ALS");
  EXPECT_EQ(repair(schema), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(numbers(4), std::vector<double>(9, 0.5));
  EXPECT_EQ(texts(5), std::vector<std::string>(9, "ALS "));
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(fields(), 5);
  EXPECT_EQ(table_->SetColumnDouble(4, 2), S_OK);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(Repair, OneRowBecomesNone) {
  open_rows(1);
  auto schema = holes_and(GetParam());
  add_number(schema, "AU");
  EXPECT_EQ(repair(schema), S_OK);
  EXPECT_EQ(rows(), 0);
  EXPECT_EQ(at_end(), 1);
  EXPECT_EQ(at_beginning(), 1);
  EXPECT_EQ(fields(), 4);
}

TEST_P(Repair, AnEmptyTableTakesColumnsToo) {
  open_rows(0);
  auto schema = holes_and(GetParam());
  add_number(schema, "AU");
  EXPECT_EQ(repair(schema), S_OK);
  EXPECT_EQ(rows(), 0);
  EXPECT_EQ(fields(), 4);
}

TEST_P(Repair, ADroppedColumnIsGone) {
  open_rows(4);
  auto schema = empty_schema(GetParam());
  add_number(schema, "DEPTH", -1);
  EXPECT_EQ(repair(schema), S_OK);
  EXPECT_EQ(fields(), 1);
  EXPECT_EQ(numbers(1), (std::vector<double>{1, 2, 3}));
}

TEST_P(Repair, ColumnsChangePlacesWhenSomethingElseChangesToo) {
  open_rows(3);
  auto schema = empty_schema(GetParam());
  add_number(schema, "DEPTH");
  add_text(schema, "BHID", 4);
  EXPECT_EQ(repair(schema), S_OK);
  EXPECT_EQ(numbers(1), (std::vector<double>{1, 2}));
  EXPECT_EQ(texts(2), (std::vector<std::string>{"none", "none"}));
}

TEST_P(Repair, AReadOnlyTableIsRefused) {
  make_rows(3, GetParam());
  const bytes before = content();
  ASSERT_EQ(open(1), S_OK);
  auto schema = holes_and(GetParam());
  add_number(schema, "AU");
  EXPECT_REPORT(repair(schema), "SetColumn failed, file is open in read-only mode");
  EXPECT_EQ(content(), before);
}

TEST_P(Repair, ASchemaThatNoTableCanHaveIsRefused) {
  open_rows(3);
  const bytes before = content();
  auto schema = empty_schema(false);
  for (int i = 0; i < 65; ++i) add_number(schema, ("C" + std::to_string(i)).c_str());
  EXPECT_REPORT(repair(schema), "Repair failed, creating temp table object");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(depth(), 1);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(Repair, ATableInUseElsewhereIsLeftAlone) {
  open_rows(3);
  const bytes before = content();
  auto reader = ovf::system_files().open(ovtest::wide_path(path()), ovf::open_mode::read);
  auto schema = holes_and(GetParam());
  add_number(schema, "AU");
  EXPECT_REPORT(repair(schema), "Repair failed. Could not delete temp file: ");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(fields(), 3);
  reader.reset();
  EXPECT_EQ(repair(schema), S_OK);
  EXPECT_EQ(fields(), 4);
}

TEST_P(Repair, ALatchedSchemaWorksAndTheTableIsNotLatched) {
  open_rows(3);
  auto schema = holes_and(GetParam());
  add_number(schema, "AU");
  schema->put_ReadOnly(VARIANT_TRUE);
  EXPECT_EQ(repair(schema), S_OK);
  EXPECT_EQ(fields(), 4);
  EXPECT_EQ(table_->SetColumnDouble(2, 5), S_OK);
}

TEST_P(Repair, RangesOfTheOldColumnsDoNotHarmTheNewOnes) {
  open_rows(3);
  auto schema = empty_schema(GetParam());
  add_number(schema, "AU", 7);
  add_number(schema, "DEPTH");
  double most = 0;
  ASSERT_EQ(table_->GetColumnMax(2, &most), S_OK);
  EXPECT_EQ(repair(schema), S_OK);
  EXPECT_EQ(table_->GetRowAt(2), S_OK);
  EXPECT_EQ(depth(), 2);
  EXPECT_EQ(table_->SetColumnDouble(1, 8), S_OK);
}

TEST_P(Repair, TheFilterFindsItsColumnsAnew) {
  open_rows(3);
  ovtest::filter_record record;
  record.variables = {"DEPTH"};
  record.takes_values = true;
  ovtest::filter_factory factory(record);
  ASSERT_EQ(table_->put_FilterString(0, words("DEPTH > 1").get()), S_OK);
  VARIANT_BOOL passes = 9;
  ASSERT_EQ(table_->IsFilteredIn(0, 1, &passes), S_OK);
  EXPECT_EQ(record.values[0], "n:1");
  auto schema = empty_schema(GetParam());
  add_number(schema, "AU", 7);
  add_number(schema, "BETWEEN", 8);
  add_number(schema, "DEPTH");
  EXPECT_EQ(repair(schema), S_OK);
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  ASSERT_EQ(table_->IsFilteredIn(0, 2, &passes), S_OK);
  EXPECT_EQ(record.values[0], "n:2");
  ASSERT_EQ(table_->Sort(1, VARIANT_TRUE), S_OK);
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  EXPECT_EQ(table_->IsFilteredIn(0, 2, &passes), S_OK);
  EXPECT_EQ(passes, 1);
  table_ = {};
}

/// DEPTH alone, from somebody else's schema.
ovtest::foreign_schema foreign_depth(bool is_double) {
  ovtest::foreign_schema schema(
      {{"DEPTH", is_double ? ovColumnDouble : ovColumnSingle, is_double ? 8 : 4, 0, ovtest::variant(-1.0)}});
  schema.is_double = is_double;
  return schema;
}

TEST_P(Repair, AForeignSchemaIsAskedForItsTypesWhereValuesAreRead) {
  open_rows(3);
  auto schema = foreign_depth(GetParam());
  EXPECT_EQ(table_->Repair(&schema), S_OK);
  EXPECT_EQ(numbers(1), (std::vector<double>{1, 2}));
  EXPECT_EQ(schema.types_told, 3);
}

TEST_P(Repair, AForeignSchemaThatTellsTwoTypesIsRefused) {
  open_rows(3);
  const bytes before = content();
  auto schema = foreign_depth(GetParam());
  schema.true_types = 2;
  EXPECT_REPORT(table_->Repair(&schema), "Repair failed, mismatched field types");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(Repair, ATypeThatNothingNeedsIsNotAskedFor) {
  open_rows(1);
  auto schema = foreign_depth(GetParam());
  schema.true_types = 1;
  EXPECT_EQ(table_->Repair(&schema), S_OK);
  EXPECT_EQ(rows(), 0);
  EXPECT_EQ(table_->Repair(&schema), S_OK);
  EXPECT_EQ(schema.types_told, 1);
}

/// The copy's fields would take each other's values if one were missing.
TEST_P(Repair, AFieldThatCannotBeCopiedIsNamed) {
  open_rows(3);
  const bytes before = content();
  auto schema = empty_schema(GetParam());
  add_text(schema, "WIDE", 4);
  ASSERT_EQ(schema->SetFieldSize(1, -16), S_OK);
  add_number(schema, "AU");
  EXPECT_REPORT(repair(schema), "The schema's field WIDE cannot be copied");
  EXPECT_EQ(content(), before);
}

}  // namespace
