// A machine that stops while a table's header is made anew: what nobody waited for is lost or torn, and the
// table is the old one or the new one all the same.
#include <gtest/gtest.h>

#include "changed_fields.h"
#include "support/forgetful_files.h"

namespace {

using ovtest::field_change;
using ovtest::loss;

class LostWrites : public ::testing::TestWithParam<field_change> {
 protected:
  /// Changes the table until the machine stops at call `n`; true when it went through. What whoever starts
  /// it again finds goes to `found`, for each way of losing.
  bool change_until(int n, std::vector<ovtest::bytes>& found) {
    ovtest::engine_files files;
    ovtest::write_bytes(files.path(), GetParam().before);
    ovtest::forgetful_files disk({files.name()});
    {
      const auto table = files.reopen();
      disk.stop_at(n);
      try {
        GetParam().change(*table);
      } catch (const std::exception&) {
        EXPECT_TRUE(disk.has_stopped());
      }
      for (const loss what : {loss::all, loss::second_half, loss::contents_only}) {
        found.push_back(disk.found(files.name(), what));
      }
    }
    return !disk.has_stopped();
  }
};

TEST_P(LostWrites, LeaveTheOldTableOrTheNewOne) {
  bool went_through = false;
  bool was_old = false;
  std::vector<ovtest::bytes> found;
  for (int n = 1; !went_through; ++n) {
    ASSERT_LT(n, 100);
    SCOPED_TRACE("stopped at call " + std::to_string(n));
    found.clear();
    went_through = change_until(n, found);
    for (const ovtest::bytes& file : found) {
      was_old = was_old || file == GetParam().before;
      EXPECT_TRUE(file == GetParam().before || file == GetParam().after) << file.size() << " bytes";
    }
  }
  EXPECT_TRUE(was_old);
  for (const ovtest::bytes& file : found) EXPECT_TRUE(file == GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(Changes, LostWrites,
                         ::testing::Values(ovtest::growing_header(),
                                           ovtest::renaming_text("RenameOverThePageBorder", 66, 2,
                                                                 ovtest::double_words)),
                         [](const auto& each) { return each.param.name; });

}  // namespace
