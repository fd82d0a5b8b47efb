// Edits that make a file anew while another program changes it: what that program wrote is not lost.
#include <chrono>
#include <thread>

#include "progress_sink.h"
#include "table_edits_list.h"

namespace {

using ovtest::give_progress;

class ChangedMeanwhile : public ovtest::EditedTable {
 protected:
  /// As another program does: opens the table, puts 777 into row 5 and closes it.
  void change_elsewhere() {
    // Systems note the moment of a write in steps of some milliseconds.
    std::this_thread::sleep_for(std::chrono::milliseconds(40));
    const auto other = ovfile::create_table();
    ASSERT_EQ(other->Open(ovtest::text_of(path()).get(), 0), S_OK);
    ASSERT_EQ(other->GetRowAt(5), S_OK);
    ASSERT_EQ(other->SetColumnDouble(2, 777), S_OK);
    ASSERT_EQ(other->Close(), S_OK);
    changed_ = content();
    ASSERT_TRUE(changed_ != old_);
  }
  std::int64_t written() {
    ovf::file_stamp now;
    EXPECT_TRUE(ovf::system_files().stamp(ovtest::wide_path(path()), now));
    return now.written;
  }
  void follow(IOvProgress* sink) {
    ASSERT_EQ(GetParam().by_record_set ? give_progress(set_, sink) : give_progress(table_, sink), S_OK);
  }
  void expect_refused() {
    SetErrorInfo(0, nullptr);
    EXPECT_EQ(run(), E_FAIL);
    EXPECT_TRUE(ovtest::reported().starts_with(GetParam().not_replaced)) << ovtest::reported();
    EXPECT_TRUE(content() == changed_);
    EXPECT_EQ(current(), 9);
    EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
  }

  /// Two rows, of which some edits leave the last one behind.
  void append_elsewhere() {
    const auto other = ovfile::create_table();
    ASSERT_EQ(other->Open(ovtest::text_of(path()).get(), 0), S_OK);
    for (const double value : {777, 778}) {
      ASSERT_EQ(other->AddRow(), S_OK);
      ASSERT_EQ(other->SetColumnDouble(2, value), S_OK);
    }
    ASSERT_EQ(other->Close(), S_OK);
  }
  /// Whether a row of the open table has it; the columns may have changed places.
  bool holds(double value) {
    LONG rows = 0;
    EXPECT_EQ(table_->GetRowCount(&rows), S_OK);
    for (LONG row = 1; row <= rows; ++row) {
      EXPECT_EQ(table_->GetRowAt(row), S_OK);
      for (const LONG column : {1, 2}) {
        double found = 0;
        if (table_->GetColumnAsDouble(column, &found) == S_OK && found == value) return true;
      }
    }
    return false;
  }

  /// What it sorts is the file as it is then.
  static bool reads_anew() { return GetParam().name == "Sort"; }
  void expect_in_new_file(double value) {
    EXPECT_EQ(run(), S_OK);
    LONG rows = 0;
    EXPECT_EQ(table_->GetRowCount(&rows), S_OK);
    bool is_there = false;
    for (LONG row = 1; row <= rows; ++row) {
      double found = 0;
      EXPECT_EQ(table_->GetRowAt(row), S_OK);
      EXPECT_EQ(table_->GetColumnAsDouble(2, &found), S_OK);
      is_there = is_there || found == value;
    }
    EXPECT_TRUE(is_there);
    EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
  }

  ovtest::bytes changed_;
};

TEST_P(ChangedMeanwhile, AFileThatIsChangedDuringTheWorkIsNotReplaced) {
  open_anew();
  ovtest::progress_sink sink;
  bool is_changed = false;
  sink.meanwhile = [&] {
    if (!std::exchange(is_changed, true)) change_elsewhere();
  };
  follow(&sink);
  expect_refused();
  follow(nullptr);
  EXPECT_TRUE(is_changed);
}

/// Where the clock stands still, as it does for some milliseconds on many systems: until it goes on again all
/// that comes is read.
TEST_P(ChangedMeanwhile, AChangeAtTheTimeOfTheLastWriteIsInTheNewFile) {
  if (GetParam().name == "Rebuild") GTEST_SKIP() << "which rows stay is the caller's to say";
  open_anew();
  const auto moment = std::filesystem::last_write_time(path());
  ovtest::failing_files watched;
  bool is_changed = false;
  bool is_time_kept = false;
  const std::int64_t before = written();
  watched.decide = [&](ovtest::call kind, const ovf::wide&) {
    if (kind == ovtest::call::wait && !std::exchange(is_changed, true)) {
      change_elsewhere();
      std::filesystem::last_write_time(path(), moment);
      is_time_kept = written() == before;
    }
    return ovtest::fate::works;
  };
  const HRESULT status = run();
  watched.fail_nothing();
  EXPECT_TRUE(is_changed);
  if (!is_time_kept) GTEST_SKIP() << "times are set by the second here";
  EXPECT_EQ(status, S_OK);
  close();
  ASSERT_EQ(open(), S_OK);
  EXPECT_TRUE(holds(777));
}

TEST_P(ChangedMeanwhile, AChangeAtTheTimeOfTheLastWriteBeforeTheWorkIsInTheNewFile) {
  open_anew();
  const auto moment = std::filesystem::last_write_time(path());
  const std::int64_t before = written();
  change_elsewhere();
  std::filesystem::last_write_time(path(), moment);
  if (written() != before) GTEST_SKIP() << "times are set by the second here";
  if (GetParam().name == "Rebuild") GTEST_SKIP() << "which rows stay is the caller's to say";
  EXPECT_EQ(run(), S_OK);
  close();
  ASSERT_EQ(open(), S_OK);
  EXPECT_TRUE(holds(777));
}

TEST_P(ChangedMeanwhile, AnotherFileUnderTheNameBeforeTheWorkIsNotReplaced) {
  if (reads_anew()) GTEST_SKIP() << "what stands under the name is what is sorted";
  ovtest::write_bytes(path("other"), old_);
  open_anew();
  if (GetParam().by_record_set) {
    ASSERT_EQ(set_->SetColumn(2, ovfile::variant(99.0).get()), S_OK);
  } else {
    ASSERT_EQ(table_->SetColumnDouble(2, 99), S_OK);
  }
  std::error_code refused;
  std::filesystem::rename(path("other"), path(), refused);
  if (refused) GTEST_SKIP() << "this system lets no file go that is open";
  changed_ = old_;
  EXPECT_EQ(run(), E_FAIL);
  EXPECT_TRUE(content() == old_);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

/// It may be one that nobody else may read, and the copy would have the rights of the one that stays.
TEST_P(ChangedMeanwhile, AFileThatStoodUnderTheNameWhenItWasOpenedIsNotCopied) {
  if (reads_anew()) GTEST_SKIP() << "it opens the file once more";
  ovtest::write_bytes(path("other"), old_);
  ovtest::write_bytes(path(), old_);
  std::error_code refused;
  const auto swap = [&] {
    std::filesystem::rename(path(), path("third"), refused);
    if (!refused) std::filesystem::rename(path("other"), path(), refused);
    if (!refused) std::filesystem::rename(path("third"), path("other"), refused);
  };
  {
    ovtest::failing_files watched;
    bool is_swapped = false;
    watched.decide = [&](ovtest::call kind, const ovf::wide&) {
      if (kind == ovtest::call::open && !std::exchange(is_swapped, true)) swap();
      return ovtest::fate::works;
    };
    ASSERT_EQ(GetParam().by_record_set ? open_set() : open(), S_OK);
    watched.fail_nothing();
  }
  swap();
  if (refused) GTEST_SKIP() << "this system lets no file go that is open";
  EXPECT_EQ(run(), E_FAIL);
  EXPECT_TRUE(content() == old_);
  EXPECT_EQ(left_behind(), (std::set<std::string>{"other", "table.ovt"}));
}

TEST_P(ChangedMeanwhile, AFileThatWasChangedSinceItWasOpenedIsNotReplaced) {
  open_anew();
  change_elsewhere();
  if (reads_anew()) return expect_in_new_file(777);
  expect_refused();
}

/// At every call by which the file is opened, while nobody can have seen it change yet.
TEST_P(ChangedMeanwhile, RowsThatComeWhileTheFileIsOpenedStay) {
  if (GetParam().name == "Rebuild") GTEST_SKIP() << "which rows stay is the caller's to say";
  for (int n = 1;; ++n) {
    ASSERT_LT(n, 100);
    SCOPED_TRACE("call " + std::to_string(n));
    ovtest::write_bytes(path(), old_);
    ovtest::failing_files watched;
    int calls = 0;
    bool is_appending = false;
    watched.decide = [&](ovtest::call, const ovf::wide&) {
      if (!is_appending && ++calls == n) {
        is_appending = true;
        append_elsewhere();
        is_appending = false;
      }
      return ovtest::fate::works;
    };
    ASSERT_EQ(GetParam().by_record_set ? open_set() : open(), S_OK);
    watched.fail_nothing();
    if (calls < n) break;
    run();
    close();
    ASSERT_EQ(open(), S_OK);
    EXPECT_TRUE(holds(777));
    close();
  }
}

TEST_P(ChangedMeanwhile, AnotherFileUnderTheNameIsNotReplaced) {
  open_anew();
  changed_ = old_;
  ovtest::progress_sink sink;
  sink.meanwhile = [this] {
    // Some systems do not let a file go that is open.
    std::error_code refused;
    std::filesystem::copy_file(path(), path("other"), std::filesystem::copy_options::overwrite_existing,
                               refused);
    std::filesystem::rename(path("other"), path(), refused);
    std::filesystem::remove(path("other"), refused);
  };
  follow(&sink);
  const HRESULT status = run();
  follow(nullptr);
  EXPECT_TRUE(status == E_FAIL ? content() == old_ : content() == new_);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(ChangedMeanwhile, AfterOpeningAgainTheTableIsReplaced) {
  open_anew();
  change_elsewhere();
  EXPECT_EQ(run(), reads_anew() ? S_OK : E_FAIL);
  close();
  if (GetParam().by_record_set) {
    ASSERT_EQ(open_set(), S_OK);
  } else {
    ASSERT_EQ(open(), S_OK);
  }
  EXPECT_EQ(run(), S_OK);
  EXPECT_TRUE(content() != changed_);
}

/// Its own changes do not count, written or not, nor do edits before.
TEST_P(ChangedMeanwhile, WhatTheObjectHasChangedItselfIsInTheNewFile) {
  open_anew();
  if (GetParam().by_record_set) {
    ASSERT_EQ(set_->SetColumn(2, ovfile::variant(99.0).get()), S_OK);
  } else {
    ASSERT_EQ(table_->SetColumnDouble(2, 99), S_OK);
    ASSERT_EQ(table_->FlushChanges(), S_OK);
  }
  ASSERT_EQ(second_column(), 99);
  EXPECT_EQ(run(), S_OK);
  EXPECT_EQ(run(), GetParam().name == "Rebuild" ? E_FAIL : S_OK);  // a Rebuild of rows that are not there
  EXPECT_TRUE(content() != old_);
}

TEST_P(ChangedMeanwhile, AFileThatTellsNothingOfItselfIsNotReplaced) {
  int refused = 0;
  for (int nth = 1; nth < 10; ++nth) {
    open_anew();
    ovtest::failing_files disk;
    disk.fail_nth(ovtest::call::stamp, nth);
    // Some ask what only an append needs to know.
    if (SUCCEEDED(run())) continue;
    disk.fail_nothing();
    ++refused;
    expect_untouched();
    EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
  }
  EXPECT_GT(refused, 0);
}

INSTANTIATE_TEST_SUITE_P(Edits, ChangedMeanwhile, ::testing::ValuesIn(ovtest::table_edits()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
