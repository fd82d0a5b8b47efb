// Two objects that have one table open, as two programs have: what one changes is not undone by the other.
#include "table_host.h"

namespace {

class ValuesAndOthers : public ovtest::TableHost, public ::testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    make_rows(10, GetParam());
    ASSERT_EQ(open(), S_OK);
    ASSERT_EQ(other_->Open(ovtest::text_of(path()).get(), 0), S_OK);
  }

  static void set(const ovfile::pointer<IOvTable>& table, LONG row, double depth) {
    ASSERT_EQ(table->GetRowAt(row), S_OK);
    ASSERT_EQ(table->SetColumnDouble(2, depth), S_OK);
  }
  static void append(const ovfile::pointer<IOvTable>& table, const std::vector<double>& depths) {
    for (const double depth : depths) {
      ASSERT_EQ(table->AddRow(), S_OK) << ovtest::reported();
      ASSERT_EQ(table->SetColumnDouble(2, depth), S_OK);
    }
  }
  /// Closes one after the other, and expects these rows in the file.
  void expect_after_closing(const ovfile::pointer<IOvTable>& first, const ovfile::pointer<IOvTable>& second,
                            const std::vector<double>& depths) {
    ASSERT_EQ(first->Close(), S_OK) << ovtest::reported();
    ASSERT_EQ(second->Close(), S_OK) << ovtest::reported();
    ASSERT_EQ(open(1), S_OK);
    std::vector<double> found;
    for (HRESULT status = table_->GetFirstRow(); at_end() == VARIANT_FALSE; status = table_->GetNextRow()) {
      ASSERT_EQ(status, S_OK);
      found.push_back(depth());
    }
    EXPECT_EQ(found, depths);
  }

  ovfile::pointer<IOvTable> other_ = ovfile::create_table();
};

INSTANTIATE_TEST_SUITE_P(, ValuesAndOthers, ::testing::Bool(), [](const auto& one) {
  return one.param ? std::string("Double") : std::string("Single");
});

TEST_P(ValuesAndOthers, AValueDoesNotWipeRowsThatWereAppendedMeanwhile) {
  set(table_, 3, 99);
  append(other_, {101, 102, 103, 104, 105});
  expect_after_closing(other_, table_, {1, 2, 99, 4, 5, 6, 7, 8, 9, 10, 101, 102, 103, 104, 105});
}

TEST_P(ValuesAndOthers, RowsThatAreAppendedDoNotWipeAValueThatWasSetMeanwhile) {
  append(other_, {101});
  set(table_, 10, 99);
  expect_after_closing(table_, other_, {1, 2, 3, 4, 5, 6, 7, 8, 9, 99, 101});
}

TEST_P(ValuesAndOthers, ValuesOfDifferentRowsBothStay) {
  set(table_, 3, 99);
  set(other_, 4, 98);
  set(table_, 9, 97);
  expect_after_closing(other_, table_, {1, 2, 99, 98, 5, 6, 7, 8, 97, 10});
}

TEST_P(ValuesAndOthers, OfOneRowTheLastWordCounts) {
  set(table_, 3, 99);
  set(other_, 3, 98);
  expect_after_closing(other_, table_, {1, 2, 99, 4, 5, 6, 7, 8, 9, 10});
}

TEST_P(ValuesAndOthers, AfterAFlushWhatOthersHaveWrittenIsReadAgain) {
  set(table_, 3, 99);
  set(other_, 5, 98);
  append(other_, {101});
  ASSERT_EQ(other_->Close(), S_OK);
  ASSERT_EQ(table_->GetRowAt(5), S_OK);
  EXPECT_EQ(depth(), 5);
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  ASSERT_EQ(table_->GetRowAt(5), S_OK);
  EXPECT_EQ(depth(), 98);
}

}  // namespace
