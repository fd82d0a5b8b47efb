#include "base/file_replacement.h"

#include <gtest/gtest.h>

#include "base/file_copy.h"
#include "support/denied_memory.h"
#include "support/failing_files.h"
#include "support/file_bytes.h"
#include "support/scratch_folder.h"

namespace {

using ovf::file_replacement;
using ovtest::call;
using ovtest::fate;

class FileReplacement : public ::testing::Test {
 protected:
  FileReplacement() { ovtest::write_bytes(path_, {'o', 'l', 'd'}); }

  ovf::wide target() const { return ovtest::wide_path(path_); }
  std::string content() const {
    const ovtest::bytes all = ovtest::read_bytes(path_);
    return {all.begin(), all.end()};
  }
  std::size_t files_there() const {
    std::size_t count = 0;
    for (const auto& each : std::filesystem::directory_iterator(folder_.path())) {
      count += each.path().empty() ? 0U : 1U;
    }
    return count;
  }
  static bool write(file_replacement& made, std::string_view text) {
    return ovf::write_whole(made.copy(), std::as_bytes(std::span(text.data(), text.size())));
  }
  bool replaced_with(std::string_view text) {
    file_replacement made(target());
    return made.begin() && write(made, text) && made.commit();
  }

  ovtest::scratch_folder folder_;
  std::filesystem::path path_ = folder_ / "table.ovt";
};

TEST_F(FileReplacement, TheCopyTakesThePlaceOfAClosedFile) {
  EXPECT_TRUE(replaced_with("new and longer"));
  EXPECT_EQ(content(), "new and longer");
  EXPECT_EQ(files_there(), 1U);
}

TEST_F(FileReplacement, AnOwnOpenFileIsTheNewOneAfterwards) {
  auto own = ovf::files().open(target(), ovf::open_mode::edit);
  file_replacement made(target());
  ASSERT_TRUE(made.begin());
  ASSERT_TRUE(write(made, "new"));
  ASSERT_TRUE(made.commit(own));
  ASSERT_NE(own, nullptr);
  ASSERT_TRUE(own->seek(0, ovf::seek_origin::end));
  std::size_t done = 0;
  const std::byte more[] = {std::byte{'e'}, std::byte{'r'}};
  EXPECT_TRUE(own->write(more, done));
  EXPECT_EQ(content(), "newer");
}

TEST_F(FileReplacement, TheCopyStandsBesideTheFileUnderANameThatBeginsWithNew) {
  file_replacement made(target());
  ASSERT_TRUE(made.begin());
  const ovf::wide name = made.copy_name();
  const ovf::wide folder(ovf::folder_of(target()));
  EXPECT_TRUE(name.starts_with(folder + ovf::wide(ovf::hidden_prefix()) + OLESTR("NEW")))
      << ovf::utf8_from_wide(name);
}

TEST_F(FileReplacement, WhatIsNotPutInPlaceIsDeleted) {
  {
    file_replacement made(target());
    ASSERT_TRUE(made.begin());
    EXPECT_TRUE(write(made, "new"));
    EXPECT_EQ(files_there(), 2U);
  }
  EXPECT_EQ(files_there(), 1U);
  EXPECT_EQ(content(), "old");
}

TEST_F(FileReplacement, AWriterMayOpenTheCopyByItsName) {
  file_replacement made(target());
  ASSERT_TRUE(made.begin());
  {
    const auto writer = ovf::files().open(made.writer_name(), ovf::open_mode::truncate);
    ASSERT_NE(writer, nullptr);
    const std::byte text[] = {std::byte{'n'}};
    EXPECT_TRUE(ovf::write_whole(*writer, text));
  }
  EXPECT_TRUE(made.commit());
  EXPECT_EQ(content(), "n");
}

TEST_F(FileReplacement, IsRefusedWhileSomebodyElseHasTheFileOpen) {
  const auto other = ovf::files().open(target(), ovf::open_mode::read);
  EXPECT_FALSE(replaced_with("new"));
  auto own = ovf::files().open(target(), ovf::open_mode::edit);
  {
    file_replacement made(target());
    ASSERT_TRUE(made.begin());
    EXPECT_FALSE(made.commit(own));
  }
  ASSERT_NE(own, nullptr);
  std::uint64_t size = 0;
  EXPECT_TRUE(own->size(size));
  EXPECT_EQ(size, 3U);
  EXPECT_EQ(content(), "old");
  EXPECT_EQ(files_there(), 1U);
}

TEST_F(FileReplacement, AMissingFileIsNotReplaced) {
  file_replacement made(ovtest::wide_path(folder_ / "missing.ovt"));
  EXPECT_FALSE(made.begin());
  EXPECT_EQ(files_there(), 1U);
}

TEST_F(FileReplacement, ACopyMadeElsewhereIsBroughtBesideTheFile) {
  ovtest::failing_files failing;
  file_replacement made(target());
  failing.fail_nth(call::open, 1);
  ASSERT_TRUE(made.begin());
  const ovf::wide elsewhere = made.copy_name();
  EXPECT_TRUE(elsewhere.starts_with(ovf::files().temporary_folder())) << ovf::utf8_from_wide(elsewhere);
  EXPECT_EQ(files_there(), 1U);
  const std::string large(3000000, 'x');
  EXPECT_TRUE(write(made, large));
  EXPECT_TRUE(made.commit());
  EXPECT_EQ(content(), large);
  EXPECT_EQ(ovf::files().kind(elsewhere), ovf::file_kind::missing);
  EXPECT_EQ(files_there(), 1U);
}

TEST_F(FileReplacement, WhatWasMadeElsewhereIsDeletedWhenMemoryEndsOnTheWay) {
  constexpr std::size_t size = 123457;
  ovtest::failing_files failing;
  ovf::wide elsewhere;
  {
    file_replacement made(target());
    failing.fail_nth(call::open, 1);
    ASSERT_TRUE(made.begin());
    elsewhere = made.copy_name();
    EXPECT_TRUE(write(made, std::string(size, 'x')));
    ovtest::deny_allocations_of(size);
    const bool done = made.commit();
    ovtest::deny_allocations_of(0);
    EXPECT_FALSE(done);
  }
  EXPECT_EQ(ovf::files().kind(elsewhere), ovf::file_kind::missing);
  EXPECT_EQ(content(), "old");
  EXPECT_EQ(files_there(), 1U);
}

/// The copy could not be brought there in the end.
TEST_F(FileReplacement, NothingIsWrittenElsewhereWhereTheFolderTakesNoFile) {
  ovtest::failing_files failing;
  file_replacement made(target());
  const ovf::wide folder(ovf::folder_of(target()));
  failing.decide = [&](call kind, const ovf::wide& name) {
    return kind == call::open && name.starts_with(folder) ? fate::fails : fate::works;
  };
  EXPECT_FALSE(made.begin());
  EXPECT_EQ(ovf::last_system_error(), ovtest::failing_code);
  EXPECT_EQ(files_there(), 1U);
}

TEST_F(FileReplacement, AFileThatIsNotThereYetIsMade) {
  file_replacement made(ovtest::wide_path(folder_ / "fresh.ovt"));
  ASSERT_TRUE(made.begin_beside());
  EXPECT_FALSE(made.replaces());
  EXPECT_TRUE(write(made, "new"));
  EXPECT_TRUE(made.commit());
  EXPECT_EQ(ovtest::read_text(folder_ / "fresh.ovt"), "new");
  EXPECT_EQ(files_there(), 2U);
}

TEST_F(FileReplacement, TheCurrentFolderIsTheLastResort) {
  ovtest::failing_files failing;
  file_replacement made(target());
  failing.decide = [left = 2](call kind, const ovf::wide&) mutable {
    return kind == call::open && left-- > 0 ? fate::fails : fate::works;
  };
  ASSERT_TRUE(made.begin());
  const ovf::wide elsewhere = made.copy_name();
  EXPECT_EQ(ovf::folder_of(elsewhere), ovf::folder_of(ovf::absolute_path(OLESTR("x"))));
  EXPECT_TRUE(write(made, "new"));
  EXPECT_TRUE(made.commit());
  EXPECT_EQ(content(), "new");
  EXPECT_EQ(ovf::files().kind(elsewhere), ovf::file_kind::missing);
}

TEST_F(FileReplacement, WithoutAnyPlaceForTheCopyNothingBegins) {
  ovtest::failing_files failing;
  failing.fail_all(call::open);
  file_replacement made(target());
  EXPECT_FALSE(made.begin());
  EXPECT_EQ(ovf::last_system_error(), ovtest::failing_code);
}

TEST_F(FileReplacement, EveryCallThatFailsLeavesTheOldFileOrTheNewOneAlone) {
  for (const bool elsewhere : {false, true}) {
    bool untouched = false;
    for (int n = 1; !untouched; ++n) {
      ASSERT_LT(n, 100);
      ovtest::write_bytes(path_, {'o', 'l', 'd'});
      ovtest::failing_files failing;
      int calls = 0;
      bool removal = false;
      bool moved = !elsewhere;
      ovf::wide left_behind;
      failing.decide = [&](call kind, const ovf::wide& name) {
        if (!moved && kind == call::open) {
          moved = true;
          return fate::fails;
        }
        if (++calls != n) return fate::works;
        removal = kind == call::remove;
        if (removal) left_behind = name;
        return fate::fails;
      };
      const bool done = replaced_with("new");
      untouched = calls < n;
      failing.fail_nothing();
      SCOPED_TRACE("call " + std::to_string(n));
      EXPECT_TRUE(!untouched || done);
      EXPECT_EQ(content(), done ? "new" : "old");
      if (removal) {
        ovf::files().remove(left_behind);
      }
      EXPECT_EQ(files_there(), 1U);
    }
  }
}

/// What was written is dropped by a machine that stops, unless it waited for the disk.
TEST_F(FileReplacement, TheCopyStandsOnTheDiskBeforeItTakesThePlace) {
  ovtest::failing_files watched;
  bool on_disk = false;
  bool replaced = false;
  bool folder_on_disk = false;
  watched.decide = [&](call kind, const ovf::wide& name) {
    const bool is_folder = name == ovf::folder_of(target());
    if (kind == call::write || kind == call::set_end || kind == call::rights) on_disk = false;
    if (kind == call::sync && !is_folder) on_disk = true;
    if (kind == call::replace) {
      EXPECT_TRUE(on_disk);
      replaced = true;
    }
    if (kind == call::sync && is_folder) folder_on_disk = replaced;
    return fate::works;
  };
  EXPECT_TRUE(replaced_with("new"));
  EXPECT_TRUE(replaced);
  EXPECT_TRUE(folder_on_disk);
}

}  // namespace
