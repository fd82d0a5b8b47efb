// Two objects that have one table open for changing: neither loses the rows of the other.
#include "stream_host.h"

namespace ovtest {
namespace {

const std::string refused = "Append failed, another program has changed the table's file meanwhile";
const std::string in_turn = "Append failed, another program is appending to the table's file";

class StreamTwoWriters : public StreamHost, public ::testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    make_holes(10, GetParam());
    ASSERT_EQ(table_->Close(), S_OK);
    open();
    ASSERT_EQ(other_->Open(path_text(path()).get(), 0), S_OK);
  }

  static made_batch depths(int rows, double value) {
    return {numbers<double>("DEPTH", "g", std::vector<double>(static_cast<std::size_t>(rows), value))};
  }
  /// What the other object does.
  void other_appends(int rows) {
    made_stream from({depths(rows, 5)});
    LONG appended = 0;
    ASSERT_EQ(ovfile::streams_of(other_)->Append(&from.stream, &appended), S_OK) << take_error_text();
    ASSERT_EQ(appended, rows);
  }
  void other_appends_and_closes(int rows) {
    other_appends(rows);
    ASSERT_EQ(other_->Close(), S_OK);
  }

  /// Lets go of the table, and expects the file to hold that many rows, the last with that depth.
  void expect_in_file(const bytes& before, LONG count, double last_depth) {
    ASSERT_EQ(table_->Close(), S_OK);
    EXPECT_TRUE(content() == before);
    expect_rows(count, last_depth);
  }
  void expect_rows(LONG count, double last_depth) {
    table_->Close();
    open();
    EXPECT_EQ(rows(), count);
    const read_cell last = GetParam() ? double_cell(last_depth) : float_cell(static_cast<float>(last_depth));
    EXPECT_EQ(read().cells[1].back(), last);
  }

  owned<IOvTable> other_ = make_table();
};

INSTANTIATE_TEST_SUITE_P(, StreamTwoWriters, ::testing::Bool(), [](const auto& one) {
  return one.param ? std::string("Double") : std::string("Single");
});

TEST_P(StreamTwoWriters, RowsThatWereAppendedSinceTheTableWasOpened) {
  for (const int rows : {1, 30'000}) {
    const LONG before = this->rows();
    other_appends_and_closes(rows);
    const bytes after = content();
    made_stream from({depths(20, 7)});
    expect_refused(from, refused);
    expect_in_file(after, before + rows, 5);
    ASSERT_EQ(other_->Open(path_text(path()).get(), 0), S_OK);
  }
}

TEST_P(StreamTwoWriters, RowsThatWereAppendedAfterOwnChanges) {
  ASSERT_EQ(table_->SetColumnDouble(2, 3), S_OK);
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  ASSERT_EQ(other_->Open(path_text(path()).get(), 0), S_OK);
  other_appends_and_closes(30'000);
  const bytes after = content();
  made_stream from({depths(20, 7)});
  expect_refused(from, refused);
  expect_in_file(after, 30'010, 5);
}

TEST_P(StreamTwoWriters, RowsThatDoNotCountYet) {
  ASSERT_EQ(table_->SetColumnDouble(2, 3), S_OK);
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  // On the page that was begun, and on more.
  LONG expected = 10;
  for (const int more : {1, 30'000}) {
    ASSERT_EQ(other_->Open(path_text(path()).get(), 0), S_OK);
    open();
    other_appends(more);
    expected += more;
    made_stream from({depths(20, 7)});
    expect_refused(from, refused);
    ASSERT_EQ(other_->FlushChanges(), S_OK);
    made_stream late({depths(20, 7)});
    expect_refused(late, refused);
    ASSERT_EQ(table_->Close(), S_OK);
    ASSERT_EQ(other_->Close(), S_OK);
    expect_rows(expected, 5);
  }
}

TEST_P(StreamTwoWriters, WhoeverClosesFirst) {
  for (const bool other_closes_first : {false, true}) {
    const LONG before = rows();
    ASSERT_EQ(other_->Open(path_text(path()).get(), 0), S_OK);
    ASSERT_EQ(append_batch(depths(1, 7)), S_OK) << take_error_text();
    made_stream more({depths(2, 5)});
    LONG appended = 0;
    EXPECT_EQ(ovfile::streams_of(other_)->Append(&more.stream, &appended), E_FAIL);
    if (other_closes_first) {
      ASSERT_EQ(other_->Close(), S_OK);
    }
    ASSERT_EQ(table_->Close(), S_OK);
    if (!other_closes_first) {
      ASSERT_EQ(other_->Close(), S_OK);
    }
    expect_rows(before + 1, 7);
  }
}

TEST_P(StreamTwoWriters, RowsThatAreAddedOneByOne) {
  ASSERT_EQ(table_->AddRow(), S_OK);
  EXPECT_EQ(other_->AddRow(), E_FAIL);
  EXPECT_EQ(take_error_text(), "AddRow failed, another program is appending to the table's file");
  made_stream from({depths(20, 5)});
  LONG appended = 0;
  EXPECT_EQ(ovfile::streams_of(other_)->Append(&from.stream, &appended), E_FAIL);
  EXPECT_EQ(take_error_text(), in_turn);
  ASSERT_EQ(table_->SetColumnDouble(2, 7), S_OK);
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  EXPECT_EQ(other_->AddRow(), E_FAIL);
  EXPECT_EQ(take_error_text(), "AddRow failed, another program has changed the table's file meanwhile");
  ASSERT_EQ(other_->Close(), S_OK);
  ASSERT_EQ(other_->Open(path_text(path()).get(), 0), S_OK);
  ASSERT_EQ(other_->AddRow(), S_OK);
  ASSERT_EQ(other_->SetColumnDouble(2, 8), S_OK);
  ASSERT_EQ(other_->Close(), S_OK);
  expect_rows(12, 8);
}

const std::string changed_by_another = " failed, another program has changed the table's file meanwhile";

TEST_P(StreamTwoWriters, RowsOutliveChangesOfTheHeader) {
  other_appends_and_closes(300);
  EXPECT_EQ(table_->SetColumnDefaultDouble(2, 4), E_FAIL);
  EXPECT_EQ(take_error_text(), "Changing the defaults" + changed_by_another);
  EXPECT_EQ(table_->SetColumnName(2, ovfile::text("LENGTH").get()), E_FAIL);
  EXPECT_EQ(take_error_text(), "Changing the fields" + changed_by_another);
  expect_rows(310, 5);
}

TEST_P(StreamTwoWriters, AChangeOfTheHeaderOutlivesRows) {
  ASSERT_EQ(other_->SetColumnName(2, ovfile::text("LENGTH").get()), S_OK) << take_error_text();
  ASSERT_EQ(other_->Close(), S_OK);
  EXPECT_EQ(table_->AddRow(), E_FAIL);
  EXPECT_EQ(take_error_text(), "AddRow" + changed_by_another);
  ASSERT_EQ(table_->Close(), S_OK);
  open();
  EXPECT_EQ(rows(), 10);
  ovfile::text name;
  ovfile::pointer<IOvSchema> schema;
  ASSERT_EQ(table_->get_Schema(schema.out()), S_OK);
  EXPECT_EQ(schema->GetFieldName(2, name.out()), S_OK);
  EXPECT_EQ(name.utf8(), "LENGTH");
}

TEST_P(StreamTwoWriters, ADefaultThatIsNotInTheFileYetKeepsOthersFromAddingRows) {
  ASSERT_EQ(table_->SetColumnDefaultDouble(2, 4), S_OK) << take_error_text();
  EXPECT_EQ(other_->AddRow(), E_FAIL);
  EXPECT_EQ(take_error_text(), "AddRow failed, another program is appending to the table's file");
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  ASSERT_EQ(other_->Close(), S_OK);
  ASSERT_EQ(other_->Open(path_text(path()).get(), 0), S_OK);
  other_appends_and_closes(300);
  expect_rows(310, 5);
}

TEST_P(StreamTwoWriters, RowsAreNotCutBySomebodyWhoDoesNotKnowThem) {
  other_appends_and_closes(300);
  EXPECT_EQ(table_->ReduceRowCountTo(9), E_FAIL);
  EXPECT_EQ(take_error_text(), "ReduceRowCountTo" + changed_by_another);
  expect_rows(310, 5);
}

TEST_P(StreamTwoWriters, ARowThatIsAddedWithinAnAppendIsOwned) {
  made_stream from({depths(5, 7), depths(5, 8)});
  int asked = 0;
  from.meanwhile = [&] {
    if (++asked != 2) return;
    ASSERT_EQ(table_->AddRow(), S_OK);
    EXPECT_EQ(other_->AddRow(), E_FAIL);
  };
  LONG appended = 0;
  EXPECT_EQ(ovfile::streams_of(table_)->Append(&from.stream, &appended), E_FAIL);
  ASSERT_EQ(table_->GetLastRow(), S_OK);
  ASSERT_EQ(table_->SetColumnDouble(2, 6), S_OK);
  ASSERT_EQ(other_->Close(), S_OK);
  expect_rows(11, 6);
}

TEST_P(StreamTwoWriters, AddedRowsStandBesideValuesAsTheyAreNow) {
  ASSERT_EQ(table_->GetLastRow(), S_OK);  // its page is in memory
  ASSERT_EQ(other_->GetLastRow(), S_OK);
  ASSERT_EQ(other_->SetColumnDouble(2, 55), S_OK);
  ASSERT_EQ(other_->Close(), S_OK);
  ASSERT_EQ(table_->AddRow(), S_OK) << take_error_text();
  ASSERT_EQ(table_->GetPreviousRow(), S_OK);
  double depth = 0;
  ASSERT_EQ(table_->GetColumnAsDouble(2, &depth), S_OK);
  EXPECT_EQ(depth, 55);
}

TEST_P(StreamTwoWriters, AStreamThatWasGivenUpHindersNobody) {
  made_stream wrong({depths(100'000, 7), {texts("DEPTH", {"x"})}});
  wrong.fails_at = 1;
  wrong.words = "gone";
  expect_refused(wrong, "Append failed, the stream failed: gone");
  ASSERT_EQ(other_->Open(path_text(path()).get(), 0), S_OK);
  other_appends_and_closes(30'000);
  expect_rows(30'010, 5);
}

TEST_P(StreamTwoWriters, AValueThatWasChanged) {
  ASSERT_EQ(other_->GetLastRow(), S_OK);
  ASSERT_EQ(other_->SetColumnDouble(2, 55), S_OK);
  ASSERT_EQ(other_->Close(), S_OK);
  const bytes after = content();
  made_stream from({depths(20, 7)});
  expect_refused(from, refused);
  expect_in_file(after, 10, 55);
}

TEST_P(StreamTwoWriters, RowsThatAreAppendedMeanwhile) {
  // Nothing of this stream is in the file yet, and then much of it.
  LONG expected = 10;
  for (const int first : {5, 100'000}) {
    made_stream from({depths(first, 7), depths(100'000, 8)});
    int asked = 0;
    from.meanwhile = [&] {
      if (++asked != 2) return;
      auto third = make_table();
      ASSERT_EQ(third->Open(path_text(path()).get(), 0), S_OK);
      made_stream more({depths(30'000, 5)});
      LONG appended = 0;
      EXPECT_EQ(ovfile::streams_of(third)->Append(&more.stream, &appended), E_FAIL);
      EXPECT_EQ(take_error_text(), in_turn);
      ASSERT_EQ(third->Close(), S_OK);
    };
    LONG appended = 0;
    ASSERT_EQ(ovfile::streams_of(table_)->Append(&from.stream, &appended), S_OK) << take_error_text();
    expected += first + 100'000;
    expect_rows(expected, 8);
  }
}

TEST_P(StreamTwoWriters, AValueOfTheLastPageThatIsChangedMeanwhileStays) {
  made_stream from({depths(20, 7)});
  int asked = 0;
  from.meanwhile = [&] {
    if (++asked != 2) return;
    ASSERT_EQ(other_->GetLastRow(), S_OK);
    ASSERT_EQ(other_->SetColumnDouble(2, 55), S_OK);
    ASSERT_EQ(other_->Close(), S_OK);
  };
  EXPECT_EQ(append(from), S_OK) << take_error_text();
  expect_rows(30, 7);
  EXPECT_EQ(read().cells[1][9], GetParam() ? double_cell(55) : float_cell(55));
}

TEST_P(StreamTwoWriters, AnotherFileUnderTheName) {
  // The file that is open goes on elsewhere.
  ASSERT_EQ(table_->SetColumnDouble(2, 3), S_OK);
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  ASSERT_EQ(other_->Close(), S_OK);
  std::error_code failed;
  std::filesystem::rename(path(), path("elsewhere.ovt"), failed);
  if (failed) GTEST_SKIP() << "this system does not rename a file that is open";
  std::filesystem::copy_file(path("elsewhere.ovt"), path());
  made_stream from({depths(20, 7)});
  expect_refused(from, refused);
}

TEST_P(StreamTwoWriters, OwnChangesAreNoOthers) {
  ASSERT_EQ(other_->Close(), S_OK);
  LONG expected = 10;
  const auto append_more = [&](int more) {
    ASSERT_EQ(append_batch(depths(more, 7)), S_OK) << take_error_text();
    expected += more;
    ASSERT_EQ(rows(), expected);
  };
  append_more(1);
  append_more(30'000);
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  append_more(20);
  for (int i = 0; i < 3'000; ++i, ++expected) add_hole("A", i);
  append_more(20);
  for (int i = 0; i < 3'000; ++i, ++expected) add_hole("A", i);
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  append_more(1'000);
  ASSERT_EQ(table_->GetFirstRow(), S_OK);
  ASSERT_EQ(table_->SetColumnDouble(2, 3), S_OK);
  append_more(1);
  made_stream wrong({depths(100'000, 7), {texts("DEPTH", {"x"})}});
  wrong.fails_at = 1;
  wrong.words = "gone";
  expect_refused(wrong, "Append failed, the stream failed: gone");
  append_more(10);
  expect_rows(expected, 7);
}

TEST_P(StreamTwoWriters, OnesThatTakeTurns) {
  ASSERT_EQ(other_->Close(), S_OK);
  ASSERT_EQ(append_batch(depths(5, 7)), S_OK) << take_error_text();
  ASSERT_EQ(table_->Close(), S_OK);
  ASSERT_EQ(other_->Open(path_text(path()).get(), 0), S_OK);
  other_appends_and_closes(30'000);
  open();
  ASSERT_EQ(append_batch(depths(5, 9)), S_OK) << take_error_text();
  expect_rows(30'020, 9);
}

}  // namespace
}  // namespace ovtest
