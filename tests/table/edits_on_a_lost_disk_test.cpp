// The disk goes away while a table's file is made anew: from one call of the file system on all of them
// fail. Whoever finds the disk again finds the old table whole, or the new one.
#include "table_edits_list.h"

namespace {

using ovtest::call;
using ovtest::EditedTable;
using ovtest::fate;

class EditsOnALostDisk : public EditedTable {
 protected:
  /// Counts the calls; those from the nth on fail.
  void lose_at(ovtest::failing_files& disk, int n) {
    calls_ = 0;
    lost_files_ = 0;
    replaced_ = false;
    disk.decide = [this, n](call kind, const ovf::wide&) {
      if (++calls_ < n) {
        replaced_ = replaced_ || kind == call::replace;
        return fate::works;
      }
      if (kind == call::remove) ++lost_files_;
      return fate::fails;
    };
  }
  static bool is_of_the_rows(const std::string& report) {
    const std::string code = " (5: " + ovf::utf8_from_wide(ovf::system_message(ovtest::failing_code)) + ")";
    return report == "cannot retrieve file size" || report == "cannot move to page in file" ||
           (report.starts_with("OvFile Error: ") && report.ends_with(code));
  }
  /// The words tell how far the edit had come.
  void expect_right_words(const std::string& report) const {
    const auto& edit = GetParam();
    if (replaced_) {
      EXPECT_TRUE(report.starts_with(edit.not_reopened)) << report;
      return;
    }
    // A copy that was refused is followed by a table that cannot be opened again.
    EXPECT_TRUE(report.starts_with(edit.no_copy) || report.starts_with(edit.not_replaced) ||
                report.starts_with(edit.not_reopened) || is_of_the_rows(report))
        << report;
  }
  /// Nothing is left but what could not be removed.
  void expect_little_left() {
    std::set<std::string> left = left_behind();
    EXPECT_EQ(left.count("table.ovt"), 1U);
    left.erase("table.ovt");
    EXPECT_LE(left.size(), lost_files_);
    for (const std::string& name : left) std::filesystem::remove(path(name.c_str()));
  }
  bool is_open() {
    LONG count = 0;
    return (GetParam().by_record_set ? set_->GetRowCount(&count) : table_->GetRowCount(&count)) == S_OK;
  }
  HRESULT move_to(LONG row) { return GetParam().by_record_set ? set_->MoveTo(row) : table_->GetRowAt(row); }

  int calls_ = 0;
  std::size_t lost_files_ = 0;
  bool replaced_ = false;
};

INSTANTIATE_TEST_SUITE_P(Edits, EditsOnALostDisk, ::testing::ValuesIn(ovtest::table_edits()),
                         [](const auto& each) { return each.param.name; });

TEST_P(EditsOnALostDisk, LeaveTheOldTableOrTheNewOne) {
  bool untouched = false;
  for (int n = 1; !untouched; ++n) {
    ASSERT_LT(n, 1000);
    ovtest::failing_files disk;
    open_anew();
    lose_at(disk, n);
    SetErrorInfo(0, nullptr);
    const HRESULT status = run();
    const std::string report = ovtest::reported();
    untouched = calls_ < n;
    SCOPED_TRACE("lost at call " + std::to_string(n) + ": " + report);
    EXPECT_TRUE(content() == (replaced_ || untouched ? new_ : old_));
    if (status != S_OK) {
      EXPECT_EQ(status, E_FAIL);
      EXPECT_FALSE(untouched);
      expect_right_words(report);
    }
    // The disk is back.
    disk.fail_nothing();
    if (status != S_OK && is_open()) {
      ASSERT_EQ(move_to(9), S_OK);
      expect_untouched();
      EXPECT_EQ(run(), S_OK);
      EXPECT_TRUE(content() == new_);
    }
    close();
    expect_little_left();
  }
}

/// The object goes while the disk is gone.
TEST_P(EditsOnALostDisk, AnObjectWithoutADiskCanBeLetGo) {
  bool untouched = false;
  for (int n = 1; !untouched; ++n) {
    ASSERT_LT(n, 1000);
    SCOPED_TRACE("lost at call " + std::to_string(n));
    ovtest::failing_files disk;
    open_anew();
    lose_at(disk, n);
    (void)run();
    untouched = calls_ < n;
    table_ = ovfile::create_table();
    set_ = ovfile::create_record_set();
    EXPECT_TRUE(content() == (replaced_ || untouched ? new_ : old_));
    disk.fail_nothing();
    expect_little_left();
  }
}

}  // namespace
