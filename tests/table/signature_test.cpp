#include <limits>

#include "table_host.h"

namespace {

using ovtest::call;
using ovtest::TableHost;
using ovtest::text_of;

class Signatures : public TableHost {
 protected:
  void open_two(bool is_double = true) {
    make_rows(2, is_double);
    ASSERT_EQ(open(), S_OK);
  }
  std::string signature(bool no_description, bool no_order, bool no_precision, LONG digits) {
    ovfile::text value;
    const auto flag = [](bool on) { return on ? VARIANT_TRUE : VARIANT_FALSE; };
    EXPECT_EQ(
        table_->GetSignature(flag(no_description), flag(no_order), flag(no_precision), digits, value.out()),
        S_OK);
    return value.utf8();
  }
  std::string tight() {
    ovfile::text value;
    EXPECT_EQ(table_->GetTightSignature(value.out()), S_OK);
    return value.utf8();
  }
  std::string loose() {
    ovfile::text value;
    EXPECT_EQ(table_->GetLooseSignature(value.out()), S_OK);
    return value.utf8();
  }
  /// One number in one row.
  void make_number(double value, bool is_double = true) {
    table_ = ovfile::create_table();
    auto schema = ovfile::create_schema();
    schema->put_DoublePrecision(is_double ? VARIANT_TRUE : VARIANT_FALSE);
    schema->AddNumericColumn(text_of(std::string("X")).get(), 0, 0);
    ASSERT_EQ(create(schema), S_OK);
    ASSERT_EQ(table_->AddRow(), S_OK);
    ASSERT_EQ(table_->SetColumnDouble(1, value), S_OK);
  }
};

// The digests below are those of the texts beside them as UTF-16, low bytes first.

TEST_F(Signatures, TellEverythingWhenTheyAreTight) {
  open_two();
  // "holes--1-3-2" "BHID-3-8-none    " "DEPTH-2-4--1" "DENSITY-2-4-2.75"
  // "none    " "1" "2.75" "none    " "2" "2.75"
  EXPECT_EQ(tight(), "4400d1bc8f0e6a7c29a210b0e57cb0db85f231a0");
  EXPECT_EQ(signature(false, false, false, -1), tight());
}

TEST_F(Signatures, TellShapeAndValuesWhenTheyAreLoose) {
  open_two();
  // "3-2" "BHID-1-8-none    " "DENSITY-0-4-2.75" "DEPTH-0-4--1"
  // "none    " "2.75" "1" "none    " "2.75" "2"
  EXPECT_EQ(loose(), "28035eae9b41f8c6d46213539c249f7df654baf2");
  EXPECT_EQ(signature(true, true, true, -1), loose());
}

TEST_F(Signatures, OfSinglePrecisionHaveItsCodes) {
  open_two(false);
  // "holes-0-3-2" "BHID-3-8-none    " "DEPTH-1-4--1" "DENSITY-1-4-2.75" and the rows
  EXPECT_EQ(tight(), "4ab550b2fcbad4ecae4971e5859a100c134dcee1");
  EXPECT_EQ(loose(), "28035eae9b41f8c6d46213539c249f7df654baf2");
  // "holes-3-2" "BHID-1-8-none    " "DEPTH-0-4--1" "DENSITY-0-4-2.75" and the rows
  EXPECT_EQ(signature(false, false, true, -1), "7e37a45876285d0252525b9403bb79cefc401294");
}

TEST_F(Signatures, HaveAsManyDigitsAsAskedFor) {
  open_two();
  // "-1-3-2" "BHID-3-8-none    " "DEPTH-2-4--1.00" "DENSITY-2-4-2.75" "none    " "1.00" "2.75" …
  EXPECT_EQ(signature(true, false, false, 2), "b58005bad77b27def8a888a2a481009936b5e964");
  // … "DEPTH-2-4--1.000000000" "DENSITY-2-4-2.750000000" …
  EXPECT_EQ(signature(true, false, false, 9), "3889a0b7a9d033acdddc31c616262579bbb8cc04");
  // … "DEPTH-2-4--1.000000" "DENSITY-2-4-2.750000" …
  EXPECT_EQ(signature(true, false, false, 6), "0dbd1577c7cedc7d25b09bf7186db8c2511843fd");
  EXPECT_EQ(signature(true, false, false, -2), "0dbd1577c7cedc7d25b09bf7186db8c2511843fd");
}

TEST_F(Signatures, OfAnEmptyTableAreThoseOfItsFields) {
  auto schema = ovfile::create_schema();
  schema->put_DoublePrecision(VARIANT_TRUE);
  schema->AddNumericColumn(text_of(std::string("X")).get(), 0, 0);
  ASSERT_EQ(create(schema), S_OK);
  // "-1-1-0" "X-2-4-0"
  EXPECT_EQ(signature(true, false, false, -1), "45ad8f53ab2002e27c964f87f80bdd7220063559");
}

TEST_F(Signatures, OrderAndDescriptionMatterOnlyWhenTheyAreTight) {
  const auto make = [&](const char* description, std::vector<std::string> names) {
    table_ = ovfile::create_table();
    auto schema = ovfile::create_schema();
    schema->put_Description(text_of(std::string(description)).get());
    for (const std::string& name : names) schema->AddNumericColumn(text_of(name).get(), 0, 0);
    ASSERT_EQ(create(schema), S_OK);
    ASSERT_EQ(table_->AddRow(), S_OK);
    for (std::size_t i = 0; i < names.size(); ++i) {
      ASSERT_EQ(table_->SetColumnDouble(static_cast<LONG>(i + 1), names[i] == "CU" ? 1.5 : 2.5), S_OK);
    }
  };
  make("one", {"CU", "AU"});
  const std::string first_tight = tight();
  const std::string first_loose = loose();
  make("another", {"AU", "CU"});
  EXPECT_NE(tight(), first_tight);
  EXPECT_EQ(loose(), first_loose);
}

TEST_F(Signatures, AreTheSameForATableMadeAndTheSameTableOpened) {
  make_number(12.5);
  const std::string made = tight();
  ASSERT_EQ(table_->Close(), S_OK);
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(tight(), made);
}

TEST_F(Signatures, OfATableWithAddedColumnsAreThoseOfTheSameTableOpened) {
  for (const bool is_double : {false, true}) {
    table_ = ovfile::create_table();
    open_two(is_double);
    const auto name = [](const char* text) { return text_of(std::string(text)); };
    ASSERT_EQ(table_->AddImplicitStringColumn(name("ZONE").get(), 6, name("N").get()), S_OK);
    ASSERT_EQ(table_->AddImplicitNumericColumnDouble(name("HALF").get(), 0.5), S_OK);
    ASSERT_EQ(table_->AddImplicitNumericColumnFloat(name("FIFTH").get(), 0.2F), S_OK);
    const std::string before = tight();
    const std::string digits = signature(false, true, false, 9);
    ASSERT_EQ(table_->Close(), S_OK);
    ASSERT_EQ(open(), S_OK);
    EXPECT_EQ(tight(), before);
    EXPECT_EQ(signature(false, true, false, 9), digits);
    ASSERT_EQ(table_->Close(), S_OK);
  }
}

TEST_F(Signatures, OfALinkAreThoseOfItsTarget) {
  open_two();
  const std::string target = tight();
  ASSERT_EQ(table_->Close(), S_OK);
  auto link = ovfile::create_schema();
  link->put_Description(text_of(std::string("LINKtable.ovt .")).get());
  link->AddNumericColumn(text_of(std::string("X")).get(), 0, 0);
  ASSERT_EQ(create(link, "link.ovt"), S_OK);
  ASSERT_EQ(table_->Close(), S_OK);
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(target, "4400d1bc8f0e6a7c29a210b0e57cb0db85f231a0");
  EXPECT_EQ(tight(), target);
}

TEST_F(Signatures, LeaveTheCursorOnTheLastRow) {
  open_two();
  ASSERT_EQ(table_->GetRowAt(0), S_FALSE);
  (void)tight();
  EXPECT_EQ(row(), 2);
  EXPECT_EQ(at_end(), 0);
}

TEST_F(Signatures, WidenFloatsPlainly) {
  make_number(0.1, false);
  // "0-1-1" "X-1-4-0.000000000" "0.100000001" would need nine digits: six are written, then zeros.
  const std::string nine = signature(true, false, false, 9);
  make_number(0.1000001, false);
  EXPECT_EQ(signature(true, false, false, 9), nine);
  // In a table of floats a column reads 0.1F = 0.100000001490…, and 1234567.9F = 1234567.875.
  make_number(1234567.9, false);
  const std::string wide = signature(true, true, true, -1);
  make_number(1234567.875, true);
  EXPECT_EQ(signature(true, true, true, -1), wide);
}

TEST_F(Signatures, ATextThatIsTooLongIsAGeneralFailure) {
  make_number(1);
  ovfile::text value;
  EXPECT_EQ(table_->GetSignature(0, 0, 0, 32'765, value.out()), S_OK);
  EXPECT_REPORT(table_->GetSignature(0, 0, 0, 32'766, value.out()), "General exception thrown");
  EXPECT_REPORT(table_->GetSignature(0, 0, 0, std::numeric_limits<LONG>::max(), value.out()),
                "General exception thrown");
  EXPECT_EQ(value.utf8(), "");
}

TEST_F(Signatures, NeedAnOpenTable) {
  ovfile::text value;
  EXPECT_EQ(table_->GetTightSignature(value.out()), E_FAIL);
  EXPECT_EQ(table_->GetTightSignature(nullptr), E_POINTER);
}

TEST_F(Signatures, ARowThatCannotBeReadIsAGeneralFailure) {
  make_rows(60'000);
  ovtest::failing_files disk;
  ASSERT_EQ(open(), S_OK);
  disk.fail_all(call::read);
  ovfile::text value;
  EXPECT_REPORT(table_->GetTightSignature(value.out()), "General exception thrown");
}

}  // namespace
