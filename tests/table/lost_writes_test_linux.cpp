// A machine that stops while a table's file is made anew: what nobody waited for is lost or torn, and under
// the table's name stands the old table or the new one all the same.
#include "support/forgetful_files.h"
#include "table_edits_list.h"

namespace {

using ovtest::bytes;
using ovtest::EditedTable;
using ovtest::loss;

class LostEdits : public EditedTable {
 protected:
  /// Edits the table until the machine stops at call `n`; true when it went through. What whoever starts it
  /// again finds goes to `found`, for each way of losing.
  bool edit_until(int n, bool elsewhere, std::vector<bytes>& found) {
    ovtest::write_bytes(path(), old_);
    ovtest::forgetful_files disk({ovtest::wide_path(path())});
    open_anew();
    disk.copies_refused = elsewhere ? 1 : 0;
    disk.stop_at(n);
    const HRESULT status = run();
    EXPECT_TRUE(status == S_OK || disk.has_stopped());
    for (const loss what : {loss::all, loss::second_half, loss::contents_only}) {
      found.push_back(disk.found(ovtest::wide_path(path()), what));
    }
    EXPECT_EQ(disk.copies_refused, 0);
    close();
    return !disk.has_stopped();
  }

  /// Stops at each call in turn. `elsewhere`: the copy cannot be made beside the table at first.
  void expect_whole_wherever_it_stops(bool elsewhere) {
    bool went_through = false;
    bool was_old = false;
    std::vector<bytes> found;
    for (int n = 1; !went_through; ++n) {
      ASSERT_LT(n, 1000);
      SCOPED_TRACE("stopped at call " + std::to_string(n));
      found.clear();
      went_through = edit_until(n, elsewhere, found);
      for (const bytes& file : found) {
        was_old = was_old || file == old_;
        EXPECT_TRUE(file == old_ || file == new_) << file.size() << " bytes";
      }
    }
    EXPECT_TRUE(was_old);
    for (const bytes& file : found) EXPECT_TRUE(file == new_);
  }
};

INSTANTIATE_TEST_SUITE_P(Edits, LostEdits, ::testing::ValuesIn(ovtest::table_edits()),
                         [](const auto& each) { return each.param.name; });

TEST_P(LostEdits, LeaveTheOldTableOrTheNewOne) { expect_whole_wherever_it_stops(false); }

TEST_P(LostEdits, ThatBringTheirCopyFromElsewhereLeaveTheOldTableOrTheNewOne) {
  expect_whole_wherever_it_stops(true);
}

}  // namespace
