// The tables that the tests put together word by word read as they must, read-only and writable, by
// vtables and by names.
#include <gtest/gtest.h>

#include "golden/check_reading.h"
#include "golden/complaint.h"
#include "support/component.h"
#include "support/late_bound.h"
#include "support/scratch_folder.h"
#include "support/table_cases.h"

namespace ovtest {
namespace {

class own_table : public testing::TestWithParam<table_case> {
 protected:
  void SetUp() override { write_bytes(path_, GetParam().file); }

  void expect_unchanged() const {
    EXPECT_TRUE(read_bytes(path_) == GetParam().file) << GetParam().name << " changed by reading";
  }

  scratch_folder folder_;
  std::filesystem::path path_ = folder_ / "own.ovt";
};

TEST_P(own_table, reads_as_expected) {
  const owned<IOvTable> table = make_table();
  ASSERT_EQ(S_OK, table->Open(path_text(path_).get(), 1)) << GetParam().name << ": " << take_error_text();
  check_reading(*table, GetParam().expected);
  EXPECT_EQ(S_OK, table->Close());
  expect_unchanged();
}

TEST_P(own_table, opened_for_writing_and_only_read_stays_as_it_is) {
  const owned<IOvTable> table = make_table();
  ASSERT_EQ(S_OK, table->Open(path_text(path_).get(), 0)) << GetParam().name << ": " << take_error_text();
  check_reading(*table, GetParam().expected);
  EXPECT_EQ(S_OK, table->Close());
  expect_unchanged();
}

/// The numbers of the first row, and the row count, through IDispatch.
TEST_P(own_table, answers_by_names) {
  const owned<IOvTable> table = make_table();
  const variant file = text_variant(to_utf8(wide_path(path_)));
  ASSERT_EQ(S_OK, call_by_name(*table, "Open", DISPATCH_METHOD, {file, variant(LONG{1})}).status);
  const late_answer count = call_by_name(*table, "getrowcount", DISPATCH_METHOD, {});
  ASSERT_EQ(S_OK, count.status);
  EXPECT_EQ(VT_I4, count.result.get().vt);
  EXPECT_EQ(*GetParam().expected.row_count, count.result.get().lVal);
  if (*GetParam().expected.row_count == 0) return;
  const std::vector<expected_cell>& row = GetParam().expected.rows.at(1);
  for (std::size_t i = 0; i < row.size(); ++i) {
    const auto* number = std::get_if<number_cell>(&row[i]);
    if (number == nullptr || !number->as_double) continue;
    const variant column = variant(static_cast<LONG>(i + 1));
    const late_answer value = call_by_name(*table, "GetColumnAsDouble", DISPATCH_METHOD, {column});
    ASSERT_EQ(S_OK, value.status) << GetParam().name << ", column " << i + 1;
    EXPECT_EQ(VT_R8, value.result.get().vt);
    EXPECT_PRED2(static_cast<bool (*)(double, double)>(same), *number->as_double, value.result.get().dblVal);
  }
}

INSTANTIATE_TEST_SUITE_P(every, own_table, testing::ValuesIn(table_cases()),
                         [](const auto& table) { return table.param.name; });

}  // namespace
}  // namespace ovtest
