// A table's file is made anew by a process that ends at one call of the file system after the other:
// whoever opens the table afterwards finds the old one or the new one, byte for byte.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/killed_process_linux.h"
#include "table_edits_list.h"

namespace {

using ovtest::call;
using ovtest::EditedTable;
using ovtest::fate;
using ovtest::finished;
using ovtest::killed;
using ovtest::moment;

using decision = std::function<fate(call, const ovf::wide&)>;

class KilledEdits : public EditedTable {
 protected:
  int run_until(int n, moment when, const decision& otherwise) {
    return ovtest::in_own_process([&] {
      ovtest::failing_files stopping;
      open_anew();
      ovtest::end_at(stopping, n, when, otherwise);
      return run() == S_OK;
    });
  }

  /// Ends the edit at each of its calls in turn.
  void expect_whole_whenever_it_ends(moment when, const decision& otherwise) {
    int status = killed;
    bool was_old = false;
    bool was_new = false;
    for (int n = 1; status == killed; ++n) {
      ASSERT_LT(n, 1000);
      status = run_until(n, when, otherwise);
      ASSERT_TRUE(status == killed || status == finished) << status;
      SCOPED_TRACE("stopped at call " + std::to_string(n));
      const ovtest::bytes found = content();
      ASSERT_TRUE(found == old_ || found == new_);
      was_old = was_old || found == old_;
      was_new = was_new || found == new_;
      ASSERT_EQ(open(), S_OK);
      ASSERT_EQ(table_->Close(), S_OK);
    }
    EXPECT_TRUE(was_old);
    EXPECT_TRUE(was_new);
    EXPECT_TRUE(content() == new_);
  }
};

INSTANTIATE_TEST_SUITE_P(Edits, KilledEdits, ::testing::ValuesIn(ovtest::table_edits()),
                         [](const auto& each) { return each.param.name; });

TEST_P(KilledEdits, WhoeverOpensTheTableAfterwardsFindsItWhole) {
  expect_whole_whenever_it_ends(moment::before_the_call, {});
  expect_whole_whenever_it_ends(moment::in_the_call, {});
}

/// The same where the copy is made in the folder for temporary files and then brought beside the table.
TEST_P(KilledEdits, ACopyThatComesFromElsewhereNeverReplacesTheTableByHalf) {
  const decision not_beside_at_first = [left = 1](call kind, const ovf::wide& name) mutable {
    const bool copy = kind == call::open && name.find(OLESTR("NEW")) != ovf::wide::npos;
    return copy && left-- > 0 ? fate::fails : fate::works;
  };
  expect_whole_whenever_it_ends(moment::before_the_call, not_beside_at_first);
  bool was_elsewhere = false;
  for (const std::string& name : left_behind()) {
    was_elsewhere = was_elsewhere || name.starts_with("temp/.NEW");
  }
  EXPECT_TRUE(was_elsewhere);
  expect_whole_whenever_it_ends(moment::in_the_call, not_beside_at_first);
}

TEST_P(KilledEdits, AFolderWithoutWritePermissionRefusesAndLeavesNothing) {
  if (::geteuid() == 0) GTEST_SKIP() << "permissions do not bind the superuser";
  open_anew();
  const std::string folder = folder_.path().string();
  ASSERT_EQ(::chmod(folder.c_str(), 0500), 0);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(run(), E_FAIL);
  const std::string report = ovtest::reported();
  ASSERT_EQ(::chmod(folder.c_str(), 0700), 0);
  EXPECT_TRUE(report.starts_with(GetParam().not_replaced)) << report;
  expect_untouched();
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(KilledEdits, PermissionsCarryOver) {
  open_anew();
  ASSERT_EQ(::chmod(path().c_str(), 0640), 0);
  ASSERT_EQ(run(), S_OK);
  struct stat facts;
  ASSERT_EQ(::stat(path().c_str(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 07777, 0640U);
}

TEST_P(KilledEdits, ASymbolicLinkStaysOne) {
  ovtest::write_bytes(path("target.ovt"), old_);
  std::filesystem::remove(path());
  std::filesystem::create_symlink("target.ovt", path());
  ASSERT_EQ(GetParam().by_record_set ? open_set() : open(), S_OK);
  ASSERT_EQ(run(), S_OK) << ovtest::reported();
  EXPECT_TRUE(std::filesystem::is_symlink(path()));
  EXPECT_TRUE(content("target.ovt") == new_);
}

/// Another process has the table open.
TEST_P(KilledEdits, ATableOfAnotherProcessIsLeftAlone) {
  open_anew();
  int ready[2];
  int done[2];
  ASSERT_EQ(::pipe(ready), 0);
  ASSERT_EQ(::pipe(done), 0);
  const pid_t child = ::fork();
  char byte = 0;
  if (child == 0) {
    ::close(done[1]);
    auto other = ovfile::create_table();
    const HRESULT status = other->Open(ovtest::text_of(path()).get(), 0);
    (void)!::write(ready[1], &byte, 1);
    (void)!::read(done[0], &byte, 1);
    ::_exit(status == S_OK ? 0 : 1);
  }
  ASSERT_GT(child, 0);
  ASSERT_EQ(::read(ready[0], &byte, 1), 1);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(run(), E_FAIL);
  const std::string report = ovtest::reported();
  EXPECT_TRUE(report.starts_with(GetParam().not_replaced)) << report;
  expect_untouched();
  ASSERT_EQ(::write(done[1], &byte, 1), 1);
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  for (const int descriptor : {ready[0], ready[1], done[0], done[1]}) ::close(descriptor);
  EXPECT_EQ(run(), S_OK);
  EXPECT_TRUE(content() == new_);
}

}  // namespace
