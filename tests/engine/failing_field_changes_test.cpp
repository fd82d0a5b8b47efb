// Fields are added and renamed while one call of the file system after the other fails, until a run ends
// untouched. A change that is refused leaves the table as it was, one that is not is there whole.
#include <gtest/gtest.h>

#include "changed_fields.h"

namespace {

using ovtest::call;
using ovtest::fate;
using ovtest::field_change;
using ovtest::message_of;

class FailingFieldChanges : public ::testing::TestWithParam<field_change> {
 protected:
  void SetUp() override { ovtest::write_bytes(files_.path(), GetParam().before); }

  /// The table goes on with its rows.
  void expect_usable(ovf::table& table) {
    for (const std::uint64_t row : {2U, 20U, 9U}) {
      ASSERT_EQ(message_of([&] { table.goToRow(row); }), "");
      EXPECT_EQ(table.getDouble(0), 1000.0 * static_cast<double>(row) + 1);
    }
    table.setValue(0, table.getValue(0).get());
    EXPECT_EQ(message_of([&] { table.flush(); }), "");
    EXPECT_EQ(table.getRowCount(), 20U);
  }

  ovtest::engine_files files_;
};

TEST_P(FailingFieldChanges, EveryCallThatFailsLeavesTheOldTableOrTheNewOne) {
  for (const fate how : {fate::fails, fate::falls_short}) {
    bool untouched = false;
    for (int n = 1; !untouched; ++n) {
      ASSERT_LT(n, 1000);
      SetUp();
      ovtest::failing_files failing;
      const auto table = files_.reopen();
      table->goToRow(9);
      int calls = 0;
      bool removal = false;
      failing.decide = [&](call kind, const ovf::wide&) {
        if (how == fate::falls_short && kind != call::read && kind != call::write) return fate::works;
        if (++calls != n) return fate::works;
        removal = kind == call::remove;
        return how;
      };
      const std::string message = message_of([&] { GetParam().change(*table); });
      untouched = calls < n;
      failing.fail_nothing();
      SCOPED_TRACE("call " + std::to_string(n) + ": " + message);
      if (untouched) {
        EXPECT_EQ(message, "");
      }
      const bool changed = message.empty();
      EXPECT_TRUE(files_.content() == (changed ? GetParam().after : GetParam().before));
      EXPECT_EQ(table->currentRow(), 9U);
      EXPECT_EQ(GetParam().is_there(*table), changed);
      expect_usable(*table);
      EXPECT_TRUE(files_.content() == (changed ? GetParam().after : GetParam().before));
      if (!removal) {
        EXPECT_EQ(ovtest::names_in(files_.path().parent_path()), std::vector<std::string>{"table.ovt"});
      }
    }
  }
}

TEST_P(FailingFieldChanges, ARefusedChangeCanBeTriedAgain) {
  bool untouched = false;
  for (int n = 1; !untouched; ++n) {
    ASSERT_LT(n, 1000);
    SetUp();
    ovtest::failing_files failing;
    auto table = files_.reopen();
    int calls = 0;
    failing.decide = [&](call, const ovf::wide&) { return ++calls == n ? fate::fails : fate::works; };
    const std::string message = message_of([&] { GetParam().change(*table); });
    untouched = calls < n;
    failing.fail_nothing();
    SCOPED_TRACE("call " + std::to_string(n) + ": " + message);
    if (!message.empty()) {
      EXPECT_EQ(message_of([&] { GetParam().change(*table); }), "");
    }
    table.reset();
    EXPECT_TRUE(files_.content() == GetParam().after);
  }
}

INSTANTIATE_TEST_SUITE_P(Changes, FailingFieldChanges, ::testing::ValuesIn(ovtest::field_changes()),
                         [](const auto& each) { return each.param.name; });

TEST(FailingGrowth, EveryFailureOfTheCopyReadsTheSame) {
  const field_change growth = ovtest::growing_header();
  for (const call kind : {call::resolve, call::rights, call::sync, call::replace}) {
    ovtest::engine_files files;
    ovtest::failing_files failing;
    const auto table = files.open(growth.before);
    table->goToRow(9);
    table->flush();
    failing.fail_nth(kind, 1);
    EXPECT_EQ(message_of([&] { growth.change(*table); }), "cannot create file");
  }
}

}  // namespace
