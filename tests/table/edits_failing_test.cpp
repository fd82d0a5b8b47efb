// One call of the file system after the other fails while a table's file is made anew, until a run ends
// untouched: the old table is whole and open as it was, or the new one is there.
#include "table_edits_list.h"

namespace {

using ovtest::call;
using ovtest::EditedTable;
using ovtest::fate;

class FailingEdits : public EditedTable {
 protected:
  /// Which of the edit's own words a failure has; the others are the engine's.
  static bool begins(const std::string& report, const std::string& with) { return report.starts_with(with); }

  void expect_right_words(const std::string& report, call failed) {
    const auto& edit = GetParam();
    // What goes wrong with the rows themselves has the engine's words.
    const std::string code = " (5: " + ovf::utf8_from_wide(ovf::system_message(ovtest::failing_code)) + ")";
    const bool of_the_rows = report == "cannot retrieve file size" ||
                             report == "cannot move to page in file" ||
                             (begins(report, "OvFile Error: ") && report.ends_with(code));
    EXPECT_TRUE(begins(report, edit.no_copy) || begins(report, edit.not_replaced) || of_the_rows) << report;
    if (failed == call::replace || failed == call::rights) {
      EXPECT_TRUE(begins(report, edit.not_replaced)) << report;
    }
    if (failed == call::resolve) {
      EXPECT_TRUE(begins(report, edit.no_copy)) << report;
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Edits, FailingEdits, ::testing::ValuesIn(ovtest::table_edits()),
                         [](const auto& each) { return each.param.name; });

TEST_P(FailingEdits, EveryCallThatFailsLeavesTheOldTableOrTheNewOne) {
  for (const fate how : {fate::fails, fate::falls_short}) {
    bool untouched = false;
    for (int n = 1; !untouched; ++n) {
      ASSERT_LT(n, 1000);
      ovtest::failing_files failing;
      open_anew();
      int calls = 0;
      call failed{};
      failing.decide = [&](call kind, const ovf::wide&) {
        if (how == fate::falls_short && kind != call::read && kind != call::write) return fate::works;
        if (++calls != n) return fate::works;
        failed = kind;
        return how;
      };
      SetErrorInfo(0, nullptr);
      const HRESULT status = run();
      const std::string report = ovtest::reported();
      untouched = calls < n;
      failing.fail_nothing();
      SCOPED_TRACE("call " + std::to_string(n) + " of kind " + std::to_string(static_cast<int>(failed)) +
                   ": " + report);
      if (status == S_OK) {
        EXPECT_TRUE(content() == new_);
      } else if (begins(report, GetParam().not_reopened)) {
        // The new table is there, or the old one where the file is opened again before it is sorted; the
        // object has none.
        EXPECT_EQ(status, E_FAIL);
        EXPECT_TRUE(content() == new_ || (GetParam().opens_first && content() == old_));
        LONG count = 0;
        EXPECT_EQ(table_->GetRowCount(&count), E_FAIL);
        EXPECT_EQ(set_->GetRowCount(&count), E_FAIL);
      } else {
        EXPECT_EQ(status, E_FAIL);
        expect_right_words(report, failed);
        expect_untouched();
        EXPECT_EQ(run(), S_OK);
        EXPECT_TRUE(content() == new_);
      }
      if (untouched) {
        EXPECT_EQ(status, S_OK);
      }
      close();
      if (failed != call::remove) {
        EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
      }
      for (const std::string& name : left_behind()) {
        if (name != "table.ovt") std::filesystem::remove(path(name.c_str()));
      }
    }
  }
}

TEST_P(FailingEdits, ACopyThatCanBeMadeNowhereHasItsWords) {
  ovtest::failing_files failing;
  open_anew();
  failing.decide = [](call kind, const ovf::wide& name) {
    return kind == call::open && name.find(OLESTR("NEW")) != ovf::wide::npos ? fate::fails : fate::works;
  };
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(run(), E_FAIL);
  const std::string report = ovtest::reported();
  EXPECT_TRUE(report.starts_with(GetParam().no_copy)) << report;
  failing.fail_nothing();
  expect_untouched();
}

TEST_P(FailingEdits, WhereNoCopyCanStandBesideTheTableNoneIsWrittenElsewhere) {
  ovtest::failing_files failing;
  open_anew();
  const ovf::wide temporary = ovtest::wide_path(path("temp"));
  failing.decide = [&](call kind, const ovf::wide& name) {
    if (kind != call::open || name.find(OLESTR("NEW")) == ovf::wide::npos) return fate::works;
    return name.starts_with(temporary) ? fate::works : fate::fails;
  };
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(run(), E_FAIL);
  const std::string report = ovtest::reported();
  EXPECT_TRUE(report.starts_with(GetParam().no_copy)) << report;
  EXPECT_EQ(failing.count(call::write), 0);
  failing.fail_nothing();
  expect_untouched();
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(FailingEdits, ACopyMadeElsewhereIsBroughtBesideTheTable) {
  ovtest::failing_files failing;
  open_anew();
  failing.decide = [left = 1](call kind, const ovf::wide& name) mutable {
    const bool copy = kind == call::open && name.find(OLESTR("NEW")) != ovf::wide::npos;
    return copy && left-- > 0 ? fate::fails : fate::works;
  };
  EXPECT_EQ(run(), S_OK) << ovtest::reported();
  failing.fail_nothing();
  EXPECT_TRUE(content() == new_);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(FailingEdits, ATableThatCannotBeOpenedAgainHasItsWords) {
  ovtest::failing_files failing;
  open_anew();
  bool placed = false;
  failing.decide = [&](call kind, const ovf::wide&) {
    placed = placed || kind == call::replace;
    return placed && kind == call::open ? fate::fails : fate::works;
  };
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(run(), E_FAIL);
  const std::string report = ovtest::reported();
  EXPECT_TRUE(begins(report, GetParam().not_reopened)) << report;
  failing.fail_nothing();
  EXPECT_TRUE(content() == new_);
  EXPECT_EQ(open(), S_OK);
}

TEST_P(FailingEdits, AFirstRowThatCannotBeReadIsNoReasonToFail) {
  ovtest::failing_files failing;
  open_anew();
  // Reading the rows begins behind the header's page.
  bool placed = false;
  int reads = 0;
  failing.decide = [&](call kind, const ovf::wide&) {
    placed = placed || kind == call::replace;
    if (placed && kind == call::read) ++reads;
    return fate::works;
  };
  ASSERT_EQ(run(), S_OK);
  const int last = reads;
  ASSERT_GT(last, 0);
  open_anew();
  placed = false;
  reads = 0;
  failing.decide = [&](call kind, const ovf::wide&) {
    placed = placed || kind == call::replace;
    return placed && kind == call::read && ++reads == last ? fate::fails : fate::works;
  };
  EXPECT_EQ(run(), S_OK);
  failing.fail_nothing();
  EXPECT_TRUE(content() == new_);
  LONG count = 0;
  EXPECT_EQ(GetParam().by_record_set ? set_->GetRowCount(&count) : table_->GetRowCount(&count), S_OK);
}

/// Changes that are not written yet reach the old file also when the edit is refused.
TEST_P(FailingEdits, ChangesOfTheHostSurviveARefusal) {
  open_anew();
  ovfile::variant value(77.0);
  ASSERT_EQ(GetParam().by_record_set ? set_->SetColumn(2, value.get()) : table_->SetColumn(2, value.get()),
            S_OK);
  {
    ovtest::failing_files failing;
    failing.fail_all(call::replace);
    EXPECT_EQ(run(), E_FAIL);
  }
  EXPECT_EQ(current(), 9);
  EXPECT_EQ(second_column(), 77);
  close();
  ASSERT_EQ(open(1), S_OK);
  ASSERT_EQ(table_->GetRowAt(9), S_OK);
  EXPECT_EQ(depth(), 77);
}

/// A crash right behind the step into place finds a whole table: all of the copy stands on the disk.
TEST_P(FailingEdits, TheCopyStandsOnTheDiskBeforeItTakesThePlace) {
  ovtest::failing_files watching;
  open_anew();
  ovf::wide copy;
  ovtest::bytes on_disk;
  bool written_since = false;
  bool replaced = false;
  bool folder_waited = false;
  watching.decide = [&](call kind, const ovf::wide& name) {
    const bool of_the_copy = name.find(OLESTR("NEW")) != ovf::wide::npos;
    if (of_the_copy && (kind == call::write || kind == call::set_end)) written_since = true;
    if (of_the_copy && kind == call::sync) {
      on_disk = ovtest::read_bytes(std::filesystem::path(std::u16string(name.begin(), name.end())));
      written_since = false;
    }
    if (kind == call::replace) {
      EXPECT_FALSE(written_since);
      EXPECT_TRUE(on_disk == new_);
      replaced = true;
    }
    if (replaced) {
      EXPECT_NE(kind, call::write);
      folder_waited = folder_waited || kind == call::sync;
    }
    // The old file is never written: nothing has changed in it.
    EXPECT_TRUE(of_the_copy || kind != call::write || name.find(OLESTR("table.ovt")) == ovf::wide::npos);
    return fate::works;
  };
  EXPECT_EQ(run(), S_OK);
  watching.fail_nothing();
  EXPECT_TRUE(replaced);
  EXPECT_TRUE(folder_waited);
}

TEST_P(FailingEdits, ATableThatSomebodyElseHasOpenIsLeftAlone) {
  open_anew();
  auto other = ovfile::create_table();
  ASSERT_EQ(other->Open(ovtest::text_of(path()).get(), 1), S_OK);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(run(), E_FAIL);
  const std::string report = ovtest::reported();
  EXPECT_TRUE(report.starts_with(GetParam().not_replaced)) << report;
  expect_untouched();
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
  ASSERT_EQ(other->GetRowAt(20), S_OK);
  ASSERT_EQ(other->Close(), S_OK);
  EXPECT_EQ(run(), S_OK);
  EXPECT_TRUE(content() == new_);
}

}  // namespace
