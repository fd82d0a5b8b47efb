// A day's work on a table, again and again: each time another call of the file system fails, until a run
// ends untouched. Every failure has its declared words, and what was flushed before stays in the file.
#include <gtest/gtest.h>

#include <set>

#include "engine_files.h"

namespace {

using ovtest::call;
using ovtest::fate;
using ovtest::message_of;
using ovtest::with_failing_code;

constexpr int rows_before = 200;  // more than a page of 169

const std::set<std::string>& declared_messages() {
  static const std::set<std::string> messages = {
      "cannot retrieve file size",
      "cannot move to page in file",
      with_failing_code("OvFile Error: cache failed to read file."),
      "OvFile Error: cache failed to read an entire page. (1024 bytes read instead of 2048)",
      "OvFile Error: cache failed to read an entire page. (2048 bytes read instead of 4096)",
      with_failing_code("OvFile Error: doFlush failed to write an entire page."),
      with_failing_code("OvFile Error: addPage failed to write an entire page."),
      with_failing_code("OvFile Error: Add Page failed to write an entire page."),
      with_failing_code("OvFile Error: addPage failed to set the end of the file."),
      with_failing_code("OvFile Error: onSetRowCount failed to set the end of the file."),
  };
  return messages;
}

bool is_declared(const std::string& message, const ovf::wide& file) {
  const std::string name = ovf::utf8_from_wide(file);
  return declared_messages().count(message) == 1 || message == "cannot open file " + name ||
         message == "Not a valid orvexa table" ||  // a probe that got half of its word
         message.starts_with("Failed to open table " + name + ", windows reported the following error") ||
         message.starts_with("OvFile Error: cache failed to read an entire page. (");
}

class Workday : public ::testing::TestWithParam<ovtest::word_format> {
 protected:
  Workday() { ovtest::write_bytes(files_.path(), ovtest::hole_table(rows_before, GetParam())); }

  /// Runs to the first failure, which it throws.
  void work() {
    const auto table = files_.reopen();
    table->goToRow(3);
    table->setDouble(1, 1000);
    table->flush();
    flushed_ = 1;
    for (int i = 0; i < 150; ++i) table->addRow();  // over a page border
    table->setDouble(1, 2000);
    table->goToRow(100);
    table->flush();
    flushed_ = 2;
    table->setDefaultString(3, OLESTR("air"));
    table->onSetRowCount(170);
    flushed_ = 3;
    table->addRow();
    table->flush();
    flushed_ = 4;
  }

  /// What the last flush that worked promised is there.
  void expect_flushed_work() {
    const auto table = files_.reopen(true);
    table->goToRow(3);
    if (flushed_ >= 1) {
      EXPECT_EQ(table->getDouble(1), 1000);
    }
    table->goToRow(100);
    EXPECT_EQ(table->getDouble(1), 100.25);
    const std::uint64_t rows = table->getRowCount();
    if (flushed_ <= 1) {
      EXPECT_TRUE(rows >= rows_before && rows <= rows_before + 150) << rows;
    }
    if (flushed_ == 2) {
      EXPECT_TRUE(rows == rows_before + 150 || rows == 170) << rows;
    }
    if (flushed_ == 3) {
      EXPECT_TRUE(rows == 170 || rows == 171) << rows;
    }
    if (flushed_ == 4) {
      EXPECT_EQ(rows, 171U);
    }
    if (rows > 0) {
      EXPECT_EQ(message_of([&] { table->goToRow(rows); }), "");
    }
  }

  ovtest::engine_files files_;
  int flushed_ = 0;
};

TEST_P(Workday, EveryCallThatFailsOrFallsShortIsToldAndLosesNothingFlushed) {
  const ovtest::bytes start = files_.content();
  for (const fate how : {fate::fails, fate::falls_short}) {
    bool untouched = false;
    for (int n = 1; !untouched; ++n) {
      ASSERT_LT(n, 10000);
      ovtest::write_bytes(files_.path(), start);
      flushed_ = 0;
      int calls = 0;
      ovtest::failing_files failing;
      failing.decide = [&](call kind, const ovf::wide&) {
        const bool moves_bytes = kind == call::read || kind == call::write;
        if (how == fate::falls_short && !moves_bytes) return fate::works;
        return ++calls == n ? how : fate::works;
      };
      const std::string message = message_of([&] { work(); });
      untouched = calls < n;
      if (untouched) {
        EXPECT_EQ(message, "");
      }
      if (!message.empty()) {
        EXPECT_TRUE(is_declared(message, files_.name())) << message;
      }
      failing.fail_nothing();
      SCOPED_TRACE("call " + std::to_string(n) + ": " + message);
      expect_flushed_work();
    }
  }
}

TEST_P(Workday, ADiskThatStaysBrokenLeavesAFileThatPromisesNoMoreThanItHolds) {
  const ovtest::bytes start = files_.content();
  bool untouched = false;
  for (int n = 1; !untouched; ++n) {
    ASSERT_LT(n, 10000);
    ovtest::write_bytes(files_.path(), start);
    flushed_ = 0;
    int calls = 0;
    ovtest::failing_files failing;
    failing.decide = [&](call kind, const ovf::wide&) {
      const bool changes = kind == call::write || kind == call::set_end;
      return changes && ++calls >= n ? fate::fails : fate::works;
    };
    const std::string message = message_of([&] { work(); });
    untouched = calls < n;
    EXPECT_EQ(message.empty(), untouched) << message;
    failing.fail_nothing();
    SCOPED_TRACE("from write " + std::to_string(n) + " on: " + message);
    expect_flushed_work();
  }
}

TEST_P(Workday, TheHeaderIsNotWrittenWhenTheRowsCouldNotBe) {
  ovtest::failing_files failing;
  {
    const auto table = files_.reopen();
    table->addRow();
    // Both tries of the rows fail, the one of closing and the one of the last release.
    failing.decide = [left = 2](call kind, const ovf::wide&) mutable {
      return kind == call::write && left-- > 0 ? fate::fails : fate::works;
    };
  }
  failing.fail_nothing();
  EXPECT_EQ(files_.reopen(true)->getRowCount(), static_cast<std::uint64_t>(rows_before));
}

INSTANTIATE_TEST_SUITE_P(BothPrecisions, Workday,
                         ::testing::Values(ovtest::single_words, ovtest::double_words),
                         [](const auto& each) { return each.param.size == 4 ? "single" : "double"; });

TEST(CurrentPage, ThatCannotBeWrittenIsToldInItsOwnWords) {
  ovtest::engine_files files;
  ovtest::failing_files failing;
  const auto table = files.open(ovtest::hole_table(3, ovtest::double_words));
  table->goToRow(2);
  table->setDouble(1, 7);
  const ovtest::debug_listener debug;
  failing.fail_nth(call::write, 1);
  EXPECT_EQ(message_of([&] { table->flushCurrentPage(); }), "error caching page");
  EXPECT_TRUE(debug.heard(with_failing_code("OvFile Error: doFlush failed to write an entire page.")));
  EXPECT_TRUE(debug.heard("error caching page"));
  table->flushCurrentPage();
  EXPECT_EQ(files.content(), [] {
    ovtest::bytes changed = ovtest::hole_table(3, ovtest::double_words);
    ovtest::put_number(changed, ovtest::record_word(1, 1, 3, 3), 7, ovtest::double_words);
    return changed;
  }());
}

}  // namespace
