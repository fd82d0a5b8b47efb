// The table object of the built library with the built evaluator, in one process.
#include <gtest/gtest.h>

#include <limits>

#include "filter/filter_module.h"
#include "filter/filter_test.h"
#include "support/scratch_folder.h"
#include "support/table_bytes.h"

namespace ovtest {
namespace {

using rows = std::vector<LONG>;

/// V a number, T a text of 8 characters; five rows.
bytes five_rows(word_format format) {
  std::vector<atom> atoms{number_atom("V", 1)};
  add_text_atoms(atoms, "T", 2, 2);
  header_words words;
  words.pages = 2;
  words.records_in_last_page = 5;
  bytes file = make_header(words, atoms, format);
  add_page(file, format);
  const double numbers[] = {1.5, 0.1, -1e30, std::numeric_limits<double>::quiet_NaN(), 2.5};
  for (std::size_t row = 0; row < 5; ++row) put_number(file, record_word(1, row, 3, 1), numbers[row], format);
  const char* const texts[] = {"ORE", "WASTE", "ORE", "INF"};
  // The fifth row's text has nothing but NULs.
  for (std::size_t row = 0; row < 4; ++row) put_text(file, record_word(1, row, 3, 2), 2, texts[row], format);
  return file;
}

class filter_table : public testing::Test {
 protected:
  void open(word_format format) {
    write_bytes(path_, five_rows(format));
    ASSERT_EQ(S_OK, table_->Open(ovfile::text(std::string_view(path_.string())).get(), 1));
  }
  /// The rows that pass; IsFilteredOut must say the same of all others.
  rows passing(std::string_view condition) {
    EXPECT_EQ(S_OK, table_->put_FilterString(0, ovfile::text(condition).get()));
    rows found;
    for (LONG row = 1; row <= 5; ++row) {
      EXPECT_EQ(S_OK, table_->GetRowAt(row));
      VARIANT_BOOL in = 9;
      VARIANT_BOOL out = 9;
      EXPECT_EQ(S_OK, table_->IsFilteredIn(0, 1, &in));
      EXPECT_EQ(S_OK, table_->IsFilteredOut(0, 1, &out));
      EXPECT_EQ(in == 0 ? 1 : 0, out);
      if (in != 0) found.push_back(row);
    }
    return found;
  }
  std::string complaint() {
    ovfile::pointer<IErrorInfo> info;
    if (GetErrorInfo(0, info.out()) != S_OK || !info) return "(none)";
    ovfile::text words;
    info->GetDescription(words.out());
    return words.utf8();
  }

  scratch_folder folder_;
  std::filesystem::path path_ = folder_ / "five.ovt";
  std::shared_ptr<void> evaluator_ = known_evaluator();
  ovfile::pointer<IOvTable> table_ = make_table();
};

TEST_F(filter_table, rows_pass_in_both_precisions_and_all_byte_orders) {
  const word_format formats[] = {double_words, {4, 0}, {4, 256}, {4, 1024}, {4, 1280}};
  for (const word_format& format : formats) {
    SCOPED_TRACE(std::to_string(format.size) + " bytes, order " + std::to_string(format.order));
    open(format);
    EXPECT_EQ((rows{1, 5}), passing("V > 1"));
    EXPECT_EQ((rows{2}), passing("V = 0.1"));
    EXPECT_EQ((rows{3, 4}), passing("V IS ABSENT"));
    EXPECT_EQ((rows{2, 5}), passing("V <> 1.5"));
    EXPECT_EQ((rows{2, 3, 4}), passing("NOT (V > 1)"));
    EXPECT_EQ((rows{1, 3}), passing("T = 'ORE'"));
    EXPECT_EQ((rows{2}), passing("V >= 0.1 AND T IN ('WASTE', 'INF')"));
    EXPECT_EQ((rows{5}), passing("T IS ABSENT AND V > 1"));
    EXPECT_EQ((rows{}), passing("T > 5"));
    EXPECT_EQ((rows{1, 5}), passing("NOSUCH IS ABSENT AND V > 1"));
    ASSERT_EQ(S_OK, table_->Close());
  }
}

TEST_F(filter_table, the_only_variable_must_have_a_value) {
  open(double_words);
  EXPECT_EQ((rows{}), passing("T IS ABSENT"));
  EXPECT_EQ((rows{}), passing("NOSUCH IS ABSENT"));
  EXPECT_EQ((rows{}), passing("1 = 1"));
  EXPECT_EQ((rows{}), passing("  "));
  EXPECT_EQ((rows{1, 2, 3, 4, 5}), passing(""));
}

TEST_F(filter_table, a_bad_expression_is_told_and_a_good_one_tells_nothing) {
  open(double_words);
  EXPECT_EQ((rows{}), passing("V >"));
  ASSERT_EQ(S_OK, table_->put_FilterString(0, ovfile::text(std::string_view("V >")).get()));
  EXPECT_EQ("a value is missing at position 4", complaint());
  ASSERT_EQ(S_OK, table_->put_FilterString(0, ovfile::text(std::string_view("V >")).get()));
  ASSERT_EQ(S_OK, table_->put_FilterString(0, ovfile::text(std::string_view("V > 1")).get()));
  EXPECT_EQ("(none)", complaint());
}

TEST_F(filter_table, without_a_table_no_row_passes) {
  open(double_words);
  EXPECT_EQ((rows{3, 4}), passing("V IS ABSENT"));
  ASSERT_EQ(S_OK, table_->Close());
  VARIANT_BOOL in = 9;
  EXPECT_EQ(E_FAIL, table_->IsFilteredIn(0, 1, &in));
  EXPECT_EQ(0, in);
  EXPECT_EQ(E_FAIL, table_->IsFilteredOut(0, 1, &in));
  EXPECT_EQ(0, in);
}

}  // namespace
}  // namespace ovtest
