// Fields are added and renamed by a process that ends at one call of the file system after the other:
// whoever opens the table afterwards finds the old one or the new one, whole.
#include <gtest/gtest.h>

#include "changed_fields.h"
#include "support/killed_process_linux.h"

namespace {

using ovtest::field_change;
using ovtest::finished;
using ovtest::killed;
using ovtest::moment;

class KilledFieldChanges : public ::testing::TestWithParam<field_change> {
 protected:
  /// Changes the table in a process that ends at call `n`.
  int run(const field_change& work, int n, moment when) {
    return ovtest::in_own_process([&] {
      ovtest::failing_files stopping;
      ovtest::end_at(stopping, n, when);
      const auto table = files_.reopen();
      table->goToRow(9);
      work.change(*table);
      table->flush();
      return true;
    });
  }

  /// The file is the old one or the new one, but for entries that no count includes.
  void expect_whole(const field_change& work) {
    const auto table = files_.reopen();
    const ovtest::bytes& expected = work.is_there(*table) ? work.after : work.before;
    EXPECT_EQ(files_.content().size(), expected.size());
    ovtest::engine_files reference;
    const auto wanted = reference.open(expected, true);
    ASSERT_EQ(table->getFieldCount(), wanted->getFieldCount());
    for (std::uint64_t i = 0; i < wanted->getFieldCount(); ++i) {
      EXPECT_EQ(table->getFieldName(i), wanted->getFieldName(i));
      EXPECT_EQ(table->getDefaultString(i), wanted->getDefaultString(i));
    }
    ASSERT_EQ(table->getRowCount(), 20U);
    for (std::uint64_t row = 1; row <= 20; ++row) {
      table->goToRow(row);
      ASSERT_EQ(table->getDouble(0), 1000.0 * static_cast<double>(row) + 1);
    }
  }

  ovtest::engine_files files_;
};

TEST_P(KilledFieldChanges, WhoeverOpensTheTableAfterwardsFindsItWhole) {
  int status = killed;
  for (int n = 1; status != finished; ++n) {
    ASSERT_LT(n, 1000);
    ovtest::write_bytes(files_.path(), GetParam().before);
    status = run(GetParam(), n, moment::before_the_call);
    ASSERT_TRUE(status == killed || status == finished) << status;
    SCOPED_TRACE("stopped at call " + std::to_string(n));
    expect_whole(GetParam());
  }
  EXPECT_TRUE(files_.content() == GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(Changes, KilledFieldChanges, ::testing::ValuesIn(ovtest::field_changes()),
                         [](const auto& each) { return each.param.name; });

class KilledCopies : public KilledFieldChanges {};

TEST_P(KilledCopies, OneThatIsHalfWrittenIsNotTheTable) {
  int status = killed;
  for (int n = 1; status != finished; ++n) {
    ASSERT_LT(n, 1000);
    ovtest::write_bytes(files_.path(), GetParam().before);
    status = run(GetParam(), n, moment::in_the_call);
    ASSERT_TRUE(status == killed || status == finished) << status;
    SCOPED_TRACE("stopped in call " + std::to_string(n));
    expect_whole(GetParam());
  }
  EXPECT_TRUE(files_.content() == GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(Changes, KilledCopies,
                         ::testing::Values(ovtest::growing_header(),
                                           ovtest::renaming_text("RenameOverThePageBorder", 66, 2,
                                                                 ovtest::double_words)),
                         [](const auto& each) { return each.param.name; });

}  // namespace
