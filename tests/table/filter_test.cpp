#include "table_host.h"

#include <limits>

#include "recording_filter.h"

namespace {

using ovtest::filter_factory;
using ovtest::filter_record;
using ovtest::TableHost;
using ovtest::text_of;
using texts = std::vector<std::string>;

class Filters : public TableHost {
 protected:
  filter_record record_;
  std::unique_ptr<filter_factory> factory_ = std::make_unique<filter_factory>(record_);

  void open_rows(int rows, bool is_double = true) {
    make_rows(rows, is_double);
    ASSERT_EQ(open(), S_OK);
  }
  void filter(const std::string& expression, texts variables) {
    record_.variables = std::move(variables);
    ASSERT_EQ(table_->put_FilterString(0, text_of(expression).get()), S_OK);
  }
  VARIANT_BOOL in(LONG mode = 0, LONG row = 1) {
    VARIANT_BOOL value = 99;
    EXPECT_EQ(table_->IsFilteredIn(mode, row, &value), S_OK);
    return value;
  }
  VARIANT_BOOL out() {
    VARIANT_BOOL value = 99;
    EXPECT_EQ(table_->IsFilteredOut(0, 1, &value), S_OK);
    return value;
  }
  std::string expression(LONG mode = 0) {
    ovfile::text value;
    EXPECT_EQ(table_->get_FilterString(mode, value.out()), S_OK);
    return value.utf8();
  }
  static ovfile::text name(const char* text) { return text_of(std::string(text)); }
};

TEST_F(Filters, WithoutAFilterEveryRowPasses) {
  open_rows(1);
  EXPECT_EQ(in(), -1);
  EXPECT_EQ(out(), 0);
  EXPECT_EQ(expression(), "");
  EXPECT_TRUE(record_.expressions.empty());
  filter("DEPTH > 1", {"DEPTH"});
  filter("", {});
  EXPECT_EQ(in(), -1);
}

TEST_F(Filters, TheExpressionIsHandedOnAndGivenBack) {
  open_rows(1);
  filter("DEPTH > 1", {"DEPTH"});
  EXPECT_EQ(record_.expressions, texts{"DEPTH > 1"});
  EXPECT_EQ(expression(), "DEPTH > 1");
  EXPECT_EQ(expression(7), "DEPTH > 1");  // there is one filter, whatever the mode
  EXPECT_EQ(record_.made, 1);
}

TEST_F(Filters, ABadExpressionIsTakenAllTheSame) {
  open_rows(1);
  record_.expression_status = E_FAIL;
  filter("DEPTH >", {});
  EXPECT_EQ(expression(), "DEPTH >");
  EXPECT_EQ(in(), 0);
}

TEST_F(Filters, ValuesAreGivenInTheOrderOfTheVariables) {
  open_rows(1);
  ASSERT_EQ(table_->SetColumnDouble(2, 1.5), S_OK);
  filter("x", {"DEPTH", "BHID", "DENSITY"});
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(record_.set_texts, texts{"1.5,none    ,2.75"});
  EXPECT_EQ(record_.evaluated_texts, texts{"1.5,none    ,2.75"});
}

TEST_F(Filters, AnAbsentNumberIsADash) {
  for (const bool is_double : {false, true}) {
    open_rows(1, is_double);
    ASSERT_EQ(table_->SetColumnDouble(2, -1e30), S_OK);
    record_.evaluated_texts.clear();
    filter("x", {"DEPTH", "DENSITY"});
    EXPECT_EQ(in(), 1);
    EXPECT_EQ(record_.evaluated_texts, texts{"-,2.75"});
    ASSERT_EQ(table_->SetColumnDouble(2, 1e-30), S_OK);
    EXPECT_EQ(in(), 1);
    EXPECT_EQ(record_.evaluated_texts.back(), "1E-30,2.75");
    ASSERT_EQ(table_->Close(), S_OK);
  }
}

TEST_F(Filters, AFieldThatIsNotThereKeepsItsPlaceButTheFirst) {
  open_rows(1);
  filter("x", {"DEPTH", "NOSUCH", "DENSITY"});
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(record_.evaluated_texts.back(), "1,,2.75");
  filter("y", {"NOSUCH", "DEPTH"});
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(record_.evaluated_texts.back(), ",1");
  filter("z", {"DEPTH", "NOSUCH"});
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(record_.evaluated_texts.back(), "1,");
}

TEST_F(Filters, WithoutValuesNothingPassesAndNothingIsAsked) {
  open_rows(1);
  filter("NOSUCH", {"NOSUCH"});
  EXPECT_EQ(in(), 0);
  filter("1 = 1", {});
  EXPECT_EQ(in(), 0);
  EXPECT_EQ(out(), 1);
  EXPECT_TRUE(record_.evaluated_texts.empty());
}

TEST_F(Filters, TrueIsOneAndNotMinusOne) {
  open_rows(1);
  filter("x", {"DEPTH"});
  record_.answer = -7;
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(out(), 0);
  record_.answer = 0;
  EXPECT_EQ(in(), 0);
  EXPECT_EQ(out(), 1);
}

TEST_F(Filters, TheCurrentRowIsTestedWhateverTheArguments) {
  open_rows(3);
  filter("x", {"DEPTH"});
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  EXPECT_EQ(in(5, 3), 1);
  EXPECT_EQ(record_.evaluated_texts.back(), "2");
  EXPECT_EQ(row(), 2);
}

TEST_F(Filters, FieldsAreLookedUpOnceUntilTheyChange) {
  open_rows(2);
  filter("x", {"DEPTH", "TO"});
  EXPECT_EQ(in(), 1);
  ASSERT_EQ(table_->GetNextRow(), S_OK);
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(record_.names_asked, 2);
  EXPECT_EQ(record_.evaluated_texts.back(), "2,");
  ASSERT_EQ(table_->SetColumnName(2, name("TO").get()), S_OK);
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(record_.evaluated_texts.back(), ",2");
  ASSERT_EQ(table_->AddImplicitNumericColumnDouble(name("DEPTH").get(), 8), S_OK);
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(record_.evaluated_texts.back(), "8,2");
}

TEST_F(Filters, FieldsAreLookedUpAgainForAnotherFile) {
  open_rows(1);
  filter("x", {"DEPTH"});
  EXPECT_EQ(in(), 1);
  ASSERT_EQ(table_->Close(), S_OK);
  auto schema = ovfile::create_schema();
  schema->put_DoublePrecision(VARIANT_TRUE);
  schema->AddNumericColumn(name("FIRST").get(), 5, 0);
  schema->AddNumericColumn(name("SECOND").get(), 6, 0);
  schema->AddNumericColumn(name("DEPTH").get(), 7, 0);
  ASSERT_EQ(create(schema, "other.ovt"), S_OK);
  ASSERT_EQ(table_->AddRow(), S_OK);
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(record_.evaluated_texts.back(), "7");
}

TEST_F(Filters, AnEvaluatorOfValuesGetsThemOneByOne) {
  record_.takes_values = true;
  open_rows(1);
  ASSERT_EQ(table_->SetColumnDouble(2, 0.1 + 0.2), S_OK);
  filter("x", {"DEPTH", "BHID", "NOSUCH", "DENSITY"});
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(record_.values[0], "n:0.30000000000000004");
  EXPECT_EQ(record_.values[1], "t:none    ");
  EXPECT_EQ(record_.values[2], "absent");
  EXPECT_EQ(record_.values[3], "n:2.75");
  EXPECT_EQ(record_.tests, 1);
  EXPECT_TRUE(record_.evaluated_texts.empty());
  ASSERT_EQ(table_->SetColumnDouble(2, -1e30), S_OK);
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(record_.values[0], "absent");
  record_.answer = 0;
  EXPECT_EQ(in(), 0);
}

TEST_F(Filters, AFloatCountsAsItReads) {
  record_.takes_values = true;
  open_rows(1, false);
  ASSERT_EQ(table_->SetColumnFloat(2, 0.1F), S_OK);
  filter("x", {"DEPTH", "DENSITY"});
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(record_.values[0], "n:0.10000000000000001");
  ASSERT_EQ(table_->SetColumnFloat(2, -1e30F), S_OK);
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(record_.values[0], "absent");
}

TEST_F(Filters, WhereTheTextOfValuesWouldBeEmptyNothingPasses) {
  record_.takes_values = true;
  open_rows(1);
  filter("NOSUCH", {"NOSUCH"});
  EXPECT_EQ(in(), 0);
  filter("1 = 1", {});
  EXPECT_EQ(in(), 0);
  EXPECT_EQ(record_.tests, 0);
  filter("BHID", {"BHID"});
  EXPECT_EQ(in(), 1);
}

TEST_F(Filters, WithoutARowTheyFailLikeAColumn) {
  open_rows(1);
  filter("x", {"DEPTH"});
  ASSERT_EQ(table_->GetRowAt(0), S_FALSE);
  VARIANT_BOOL value = 99;
  EXPECT_REPORT(table_->IsFilteredIn(0, 1, &value), "GetColumn failed, current row is not valid");
  EXPECT_EQ(value, 0);
  EXPECT_REPORT(table_->IsFilteredOut(0, 1, &value), "GetColumn failed, current row is not valid");
  EXPECT_EQ(value, 0);
  filter("", {});
  EXPECT_EQ(in(), -1);
}

TEST_F(Filters, WithoutATableTheyFailSilently) {
  VARIANT_BOOL value = 99;
  const auto refuses = [&] {
    value = 99;
    EXPECT_REPORT(table_->IsFilteredIn(0, 1, &value), "(none)");
    EXPECT_EQ(value, 0);
    value = 99;
    EXPECT_REPORT(table_->IsFilteredOut(0, 1, &value), "(none)");
    EXPECT_EQ(value, 0);
  };
  for (const bool takes_values : {false, true}) {
    record_.takes_values = takes_values;
    table_ = ovfile::create_table();
    filter("x", {"DEPTH", "NOSUCH"});
    refuses();
    open_rows(1);
    EXPECT_EQ(in(), 1);
    ASSERT_EQ(table_->Close(), S_OK);
    refuses();
    ASSERT_EQ(open(), S_OK);
    ASSERT_EQ(table_->put_Schema(nullptr), S_OK);
    refuses();
    filter("", {});
    EXPECT_EQ(in(), -1);
  }
}

TEST_F(Filters, AGoodExpressionLeavesNoErrorInformation) {
  open_rows(1);
  filter("x", {"DEPTH"});
  ASSERT_EQ(table_->GetRowAt(0), S_FALSE);
  VARIANT_BOOL value = 0;
  ASSERT_EQ(table_->IsFilteredIn(0, 1, &value), E_FAIL);  // leaves its report to the thread
  filter("y", {"DEPTH"});
  EXPECT_EQ(ovtest::reported(), "(none)");
}

TEST_F(Filters, EveryByteOrderReadsTheSame) {
  for (const int order : {0, 256, 1024, 1280}) {
    const ovtest::word_format format{4, order};
    ovtest::header_words words;
    words.pages = 2;
    words.records_in_last_page = 2;
    auto atoms = std::vector<ovtest::atom>{ovtest::number_atom("AU", 1)};
    ovtest::add_text_atoms(atoms, "ROCK", 1, 2);
    ovtest::bytes file = ovtest::make_header(words, atoms, format);
    ovtest::add_page(file, format);
    ovtest::put_number(file, ovtest::record_word(1, 0, 2, 1), 0.1, format);
    ovtest::put_text(file, ovtest::record_word(1, 0, 2, 2), 1, "ORE", format);
    ovtest::put_number(file, ovtest::record_word(1, 1, 2, 1), -1e30, format);
    // The second row's text has nothing but NULs.
    ovtest::write_bytes(path(), file);
    for (const bool takes_values : {false, true}) {
      const auto handed_on = [&] {
        return takes_values ? record_.values[0] + ',' + record_.values[1] : record_.evaluated_texts.back();
      };
      record_.takes_values = takes_values;
      table_ = ovfile::create_table();
      ASSERT_EQ(open(1), S_OK);
      filter("x", {"AU", "ROCK"});
      EXPECT_EQ(in(), 1);
      EXPECT_EQ(handed_on(), takes_values ? "n:0.10000000000000001,t:ORE " : "0.1,ORE ");
      ASSERT_EQ(table_->GetNextRow(), S_OK);
      EXPECT_EQ(in(), 1);
      EXPECT_EQ(handed_on(), takes_values ? "absent,t:" : "-,");
    }
  }
}

TEST_F(Filters, ATextOfNulsAsTheOnlyValueIsNone) {
  ovtest::header_words words;
  words.pages = 2;
  words.records_in_last_page = 1;
  std::vector<ovtest::atom> atoms;
  ovtest::add_text_atoms(atoms, "ROCK", 2, 1);
  ovtest::bytes file = ovtest::make_header(words, atoms, ovtest::double_words);
  ovtest::add_page(file, ovtest::double_words);
  ovtest::write_bytes(path(), file);
  for (const bool takes_values : {false, true}) {
    record_.takes_values = takes_values;
    table_ = ovfile::create_table();
    ASSERT_EQ(open(1), S_OK);
    filter("x", {"ROCK"});
    EXPECT_EQ(in(), 0);
    EXPECT_EQ(out(), 1);
    EXPECT_EQ(record_.tests, 0);
    EXPECT_TRUE(record_.evaluated_texts.empty());
  }
}

TEST_F(Filters, WhatIsNoNumberIsHandedOnAsSuch) {
  for (const bool is_double : {false, true}) {
    record_.takes_values = false;
    table_ = ovfile::create_table();
    open_rows(1, is_double);
    ASSERT_EQ(table_->SetColumnDouble(2, std::numeric_limits<double>::quiet_NaN()), S_OK);
    filter("x", {"DEPTH"});
    EXPECT_EQ(in(), 1);
    EXPECT_EQ(record_.evaluated_texts.back(), "NAN");
    ASSERT_EQ(table_->Close(), S_OK);
    record_.takes_values = true;
    table_ = ovfile::create_table();
    ASSERT_EQ(open(), S_OK);
    filter("x", {"DEPTH"});
    EXPECT_EQ(in(), 1);
    EXPECT_EQ(record_.values[0], "n:nan");
  }
}

TEST_F(Filters, ALinksTargetIsFiltered) {
  make_rows(2);
  auto link = ovfile::create_schema();
  link->put_Description(name("LINKtable.ovt .").get());
  link->AddNumericColumn(name("DEPTH").get(), 0, 0);
  ASSERT_EQ(create(link, "link.ovt"), S_OK);
  ASSERT_EQ(table_->Close(), S_OK);
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  filter("x", {"DEPTH", "BHID"});
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  EXPECT_EQ(in(), 1);
  EXPECT_EQ(record_.evaluated_texts.back(), "2,none    ");
}

TEST_F(Filters, WithoutAnEvaluatorEveryMethodFailsSilently) {
  factory_.reset();
  factory_ = std::make_unique<filter_factory>(record_, E_NOINTERFACE);
  open_rows(1);
  VARIANT_BOOL value = 99;
  EXPECT_REPORT(table_->IsFilteredIn(0, 1, &value), "(none)");
  EXPECT_EQ(value, 0);
  EXPECT_REPORT(table_->IsFilteredOut(0, 1, &value), "(none)");
  EXPECT_REPORT(table_->put_FilterString(0, name("x").get()), "(none)");
  ovfile::text text;
  EXPECT_REPORT(table_->get_FilterString(0, text.out()), "(none)");
  EXPECT_EQ(table_->SetFilteredIn(5), E_NOTIMPL);
  EXPECT_EQ(table_->SetFilteredOut(5), E_NOTIMPL);
}

TEST_F(Filters, RowsCannotBeMarkedByHand) {
  open_rows(1);
  EXPECT_EQ(table_->SetFilteredIn(5), E_NOTIMPL);
  EXPECT_EQ(table_->SetFilteredOut(5), E_NOTIMPL);
  EXPECT_EQ(record_.made, 0);
}

TEST_F(Filters, NullOutPointersAreRefused) {
  EXPECT_EQ(table_->IsFilteredIn(0, 1, nullptr), E_POINTER);
  EXPECT_EQ(table_->IsFilteredOut(0, 1, nullptr), E_POINTER);
  EXPECT_EQ(table_->get_FilterString(0, nullptr), E_POINTER);
}

}  // namespace
