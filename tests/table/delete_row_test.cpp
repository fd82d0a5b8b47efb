// The record-set object deletes rows by a copy without them.
#include "edits_host.h"

namespace {

using ovtest::bytes;
using ovtest::EditsHost;
using ovtest::text_of;
using ovtest::words;

constexpr const char* bad_row = "Error: DeleteRow failed, invalid row index.";

class DeleteRow : public EditsHost, public ::testing::WithParamInterface<bool> {
 protected:
  void open_rows(int count) {
    make_rows(count, GetParam());
    ASSERT_EQ(open_set(), S_OK);
  }
  double number(LONG column) {
    ovfile::variant value;
    EXPECT_EQ(set_->GetColumn(column, value.out()), S_OK);
    return value.number();
  }
  std::vector<double> depths() {
    std::vector<double> found;
    LONG count = -1;
    EXPECT_EQ(set_->GetRowCount(&count), S_OK);
    for (LONG row = 1; row <= count; ++row) {
      EXPECT_EQ(set_->MoveTo(row), S_OK);
      found.push_back(number(2));
    }
    return found;
  }
  LONG current() {
    LONG row = -1;
    EXPECT_EQ(set_->GetCurrentRow(&row), S_OK);
    return row;
  }
};

INSTANTIATE_TEST_SUITE_P(BothPrecisions, DeleteRow, ::testing::Bool(),
                         [](const auto& each) { return each.param ? "double" : "single"; });

TEST_P(DeleteRow, TheSecondOfThreeLeavesTheOthers) {
  open_rows(3);
  ASSERT_EQ(set_->MoveTo(3), S_OK);
  EXPECT_EQ(set_->DeleteRow(2), S_OK);
  EXPECT_EQ(current(), 1);
  EXPECT_EQ(depths(), (std::vector<double>{1, 3}));
  EXPECT_EQ(set_->AddRow(), S_OK);
  EXPECT_EQ(number(2), -1);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(DeleteRow, FirstAndLast) {
  open_rows(4);
  EXPECT_EQ(set_->DeleteRow(1), S_OK);
  EXPECT_EQ(set_->DeleteRow(3), S_OK);
  EXPECT_EQ(depths(), (std::vector<double>{2, 3}));
}

TEST_P(DeleteRow, TheOnlyOneLeavesAnEmptyTable) {
  open_rows(1);
  EXPECT_EQ(set_->DeleteRow(1), S_OK);
  VARIANT_BOOL flag = 9;
  EXPECT_EQ(set_->get_EOF(&flag), S_OK);
  EXPECT_EQ(flag, 1);
  EXPECT_EQ(set_->get_BOF(&flag), S_OK);
  EXPECT_EQ(flag, 1);
  EXPECT_REPORT(set_->DeleteRow(1), bad_row);
}

TEST_P(DeleteRow, RowsThatAreNotThereAreRefused) {
  open_rows(2);
  const bytes before = content();
  ASSERT_EQ(set_->MoveTo(2), S_OK);
  EXPECT_REPORT(set_->DeleteRow(0), bad_row);
  EXPECT_REPORT(set_->DeleteRow(-1), bad_row);
  EXPECT_REPORT(set_->DeleteRow(3), bad_row);
  EXPECT_EQ(content(), before);
  EXPECT_EQ(current(), 2);
}

TEST_P(DeleteRow, AReadOnlyTableIsRefusedFirst) {
  make_rows(2, GetParam());
  ASSERT_EQ(open_set(1), S_OK);
  const char* refused = "Error: DeleteRow failed, file open in read-only mode.";
  EXPECT_REPORT(set_->DeleteRow(1), refused);
  EXPECT_REPORT(set_->DeleteRow(9), refused);
}

TEST_P(DeleteRow, WithoutATableFailsSilently) { EXPECT_REPORT(set_->DeleteRow(1), "(none)"); }

TEST_P(DeleteRow, WhatIsNotWrittenYetComesAlong) {
  open_rows(2);
  ASSERT_EQ(set_->AddRow(), S_OK);
  ASSERT_EQ(set_->SetColumn(2, ovfile::variant(77.0).get()), S_OK);
  EXPECT_EQ(set_->DeleteRow(1), S_OK);
  EXPECT_EQ(depths(), (std::vector<double>{2, 77}));
}

TEST_P(DeleteRow, ATableInUseElsewhereIsNamedWithTheSystemsWords) {
  open_rows(3);
  const bytes before = content();
  ASSERT_EQ(set_->MoveTo(2), S_OK);
  ovtest::failing_files disk;
  disk.fail_nth(ovtest::call::replace, 1);
  EXPECT_REPORT(set_->DeleteRow(1), "Error: DeleteRow failed. Could not delete file: " +
                                        ovf::utf8_from_wide(ovtest::wide_path(path())) + " (" +
                                        ovf::utf8_from_wide(ovf::system_message(ovtest::failing_code)) + ")");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(current(), 2);
  EXPECT_EQ(number(2), 2);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
  disk.fail_nothing();
  auto reader = ovf::system_files().open(ovtest::wide_path(path()), ovf::open_mode::read);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(set_->DeleteRow(1), E_FAIL);
  EXPECT_TRUE(ovtest::reported().starts_with("Error: DeleteRow failed. Could not delete file: "));
  EXPECT_EQ(content(), before);
  reader.reset();
  EXPECT_EQ(set_->DeleteRow(1), S_OK);
}

TEST_P(DeleteRow, TheSchemaThatTheObjectHoldsCounts) {
  open_rows(3);
  ovfile::pointer<IOvSchema> schema;
  ASSERT_EQ(set_->get_Schema(schema.out()), S_OK);
  ASSERT_EQ(schema->SetFieldName(2, words("LENGTH").get()), S_OK);
  EXPECT_EQ(set_->DeleteRow(1), S_OK);
  ovfile::variant value;
  EXPECT_EQ(set_->GetNamedColumn(words("LENGTH").get(), value.out()), S_OK);
  EXPECT_EQ(depths(), (std::vector<double>{2, 3}));
}

TEST_P(DeleteRow, ADescriptionThatTheHostHasSetIsWritten) {
  open_rows(3);
  ovfile::pointer<IOvSchema> schema;
  ASSERT_EQ(set_->get_Schema(schema.out()), S_OK);
  ASSERT_EQ(schema->put_Description(words("infill of the second year").get()), S_OK);
  EXPECT_EQ(set_->DeleteRow(1), S_OK);
  ASSERT_EQ(set_->get_Schema(schema.out()), S_OK);
  ovfile::text description;
  EXPECT_EQ(schema->get_Description(description.out()), S_OK);
  EXPECT_EQ(description.utf8(), "infill of the second year");
  EXPECT_EQ(depths(), (std::vector<double>{2, 3}));
}

TEST_P(DeleteRow, AWidenedTextTakesTheLongRoad) {
  open_rows(3);
  auto wider = ovfile::create_schema();
  wider->put_DoublePrecision(GetParam() ? VARIANT_TRUE : VARIANT_FALSE);
  wider->AddStringColumn(words("BHID").get(), 20, nullptr, 0);
  wider->AddNumericColumn(words("DEPTH").get(), -1, 0);
  wider->AddNumericColumn(words("DENSITY").get(), 2.75, 1);
  ASSERT_EQ(set_->put_Schema(wider.release()), S_OK);
  EXPECT_EQ(set_->DeleteRow(2), S_OK);
  EXPECT_EQ(depths(), (std::vector<double>{1, 3}));
  ovfile::variant value;
  EXPECT_EQ(set_->GetColumn(1, value.out()), S_OK);
  EXPECT_EQ(ovfile::to_utf8(ovfile::wide_view(value.get().bstrVal)), "none                ");
}

/// Numbers become texts, and texts that are numbers become numbers, as GetColumn and SetColumn have it.
TEST_P(DeleteRow, ChangedTypesOfTheHeldSchemaAreTheNewTables) {
  open_rows(3);
  ASSERT_EQ(set_->MoveTo(3), S_OK);
  ASSERT_EQ(set_->SetColumn(1, ovfile::variant(words("12")).get()), S_OK);
  auto other = ovfile::create_schema();
  other->put_DoublePrecision(GetParam() ? VARIANT_TRUE : VARIANT_FALSE);
  other->AddNumericColumn(words("BHID").get(), 0, 0);
  other->AddStringColumn(words("DEPTH").get(), 8, nullptr, 0);
  other->AddNumericColumn(words("DENSITY").get(), 2.75, 1);
  ASSERT_EQ(set_->put_Schema(other.release()), S_OK);
  ASSERT_EQ(set_->MoveTo(1), S_OK);
  ASSERT_EQ(set_->SetColumn(1, ovfile::variant(words("7")).get()), S_OK);
  EXPECT_EQ(set_->DeleteRow(2), S_OK) << ovtest::reported();
  EXPECT_EQ(set_->MoveTo(2), S_OK);
  EXPECT_EQ(number(1), 12);
  ovfile::variant value;
  EXPECT_EQ(set_->GetColumn(2, value.out()), S_OK);
  EXPECT_EQ(ovfile::to_utf8(ovfile::wide_view(value.get().bstrVal)), "3       ");
}

TEST_P(DeleteRow, AnIndexIsLookedAtBeforeAnyRowIsRead) {
  open_rows(3);
  ovtest::failing_files disk;
  ASSERT_EQ(open_set(), S_OK);
  const int before = disk.count(ovtest::call::read);
  EXPECT_REPORT(set_->DeleteRow(4), bad_row);
  EXPECT_EQ(disk.count(ovtest::call::read), before);
}

TEST_P(DeleteRow, ASchemaOfMoreColumnsFailsAndTheTableStays) {
  open_rows(3);
  const bytes before = content();
  ovfile::pointer<IOvSchema> schema;
  ASSERT_EQ(set_->get_Schema(schema.out()), S_OK);
  ASSERT_EQ(schema->AddNumericColumn(words("MORE").get(), 0, 0), S_OK);
  EXPECT_REPORT(set_->DeleteRow(1), "index out of range, field not found.");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(depths(), (std::vector<double>{1, 2, 3}));
}

TEST_P(DeleteRow, WithoutASchemaNoCopyIsMade) {
  open_rows(3);
  const bytes before = content();
  ASSERT_EQ(set_->put_Schema(nullptr), S_OK);
  EXPECT_REPORT(set_->DeleteRow(1), "Error: DeleteRow failed, creating temp file.");
  EXPECT_EQ(content(), before);
}

/// A header may promise 2,147,483,647 rows in a few pages: no list of them is made.
TEST_P(DeleteRow, RowsThatTheFileDoesNotHaveAreNotListed) {
  const ovtest::word_format format = GetParam() ? ovtest::double_words : ovtest::single_words;
  ovtest::header_words header;
  header.pages = 4000001;
  header.records_in_last_page = 1;
  bytes file = ovtest::make_header(header, {ovtest::number_atom("V", 1)}, format);
  ovtest::add_page(file, format);
  ovtest::write_bytes(path(), file);
  ASSERT_EQ(open_set(), S_OK);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(set_->DeleteRow(1), E_FAIL);
  EXPECT_NE(ovtest::reported(), "(none)");
  EXPECT_EQ(content(), file);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(DeleteRow, AnUpdateInAnotherFolderOpensTheSameFile) {
  std::filesystem::create_directory(path("other"));
  make_rows(2, GetParam());
  const std::filesystem::path here = std::filesystem::current_path();
  std::filesystem::current_path(folder_.path());
  EXPECT_EQ(set_->Open(words("table.ovt").get(), 0), S_OK);
  std::filesystem::current_path(path("other"));
  EXPECT_EQ(set_->Update(), S_OK);
  EXPECT_EQ(set_->DeleteRow(1), S_OK);
  std::filesystem::current_path(here);
  EXPECT_EQ(depths(), std::vector<double>{2});
}

TEST_P(DeleteRow, AnUpdateKeepsRowAndName) {
  open_rows(3);
  ASSERT_EQ(set_->MoveLast(), S_OK);
  ASSERT_EQ(set_->MoveNext(), S_FALSE);
  EXPECT_EQ(set_->Update(), S_OK);
  // The row counts, not the flag.
  EXPECT_EQ(current(), 3);
  ovfile::text name;
  EXPECT_EQ(set_->get_Name(name.out()), S_OK);
  EXPECT_EQ(name.view(), ovtest::wide_path(path()));
}

TEST_P(DeleteRow, AnUpdateThatCannotWriteFailsInTheWordsOfClosing) {
  open_rows(3);
  ASSERT_EQ(set_->Close(), S_OK);
  ovtest::failing_files disk;
  ASSERT_EQ(open_set(), S_OK);
  ASSERT_EQ(set_->SetColumn(2, ovfile::variant(5.0).get()), S_OK);
  disk.fail_all(ovtest::call::write);
  EXPECT_REPORT(set_->Update(), "Error in COvTableADO::Close");
  disk.fail_nothing();
  EXPECT_EQ(number(2), 5);
  EXPECT_EQ(set_->Update(), S_OK);
  EXPECT_EQ(number(2), 5);
}

}  // namespace
