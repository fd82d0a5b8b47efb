// A machine that stops while rows are appended and values set: what waits for the disk with `sync` is there,
// and no row that the header counts reads as zeros, in whatever order the disk took the rest.
#include <gtest/gtest.h>

#include "engine_files.h"
#include "support/forgetful_files.h"

namespace {

using ovtest::bytes;
using ovtest::hole_table;
using ovtest::loss;

constexpr int rows_there = 100;
constexpr int rows_more = 300;  // three pages more

class LostValues : public ::testing::TestWithParam<ovtest::word_format> {
 protected:
  /// Stops at call `n` of what waits; true when it went through.
  template <class Work>
  bool work_until(int n, std::vector<bytes>& found, Work work) {
    ovtest::engine_files files;
    ovtest::write_bytes(files.path(), hole_table(rows_there, GetParam()));
    ovtest::forgetful_files disk({files.name()});
    const auto table = files.reopen();
    disk.stop_at(n);
    try {
      work(*table);
      table->sync();
    } catch (const std::exception&) {
      EXPECT_TRUE(disk.has_stopped());
    }
    for (const loss what : {loss::all, loss::contents_only, loss::all_but_header}) {
      found.push_back(disk.found(files.name(), what));
    }
    return !disk.has_stopped();
  }

  /// What word 3 of each row holds.
  static std::vector<double> depths(const bytes& file) {
    ovtest::engine_files files;
    const auto table = files.open(file, true);
    std::vector<double> all;
    for (std::uint64_t row = 1; row <= table->getRowCount(); ++row) {
      table->goToRow(row);
      all.push_back(table->getDouble(1));
    }
    return all;
  }

  template <class Work, class Check>
  void stop_everywhere(Work work, Check check) {
    bool went_through = false;
    for (int n = 1; !went_through; ++n) {
      ASSERT_LT(n, 200);
      SCOPED_TRACE("stopped at call " + std::to_string(n));
      std::vector<bytes> found;
      went_through = work_until(n, found, work);
      for (const bytes& file : found) check(depths(file), went_through);
    }
  }
};

TEST_P(LostValues, NoAppendedRowIsZeros) {
  stop_everywhere(
      [](ovf::table& table) {
        for (int row = rows_there + 1; row <= rows_there + rows_more; ++row) {
          table.addRow();
          table.setDouble(1, row + 0.25);
        }
      },
      [](const std::vector<double>& found, bool went_through) {
        if (went_through) {
          EXPECT_EQ(found.size(), std::size_t{rows_there + rows_more});
        }
        ASSERT_GE(found.size(), std::size_t{rows_there});
        for (std::size_t i = 0; i < found.size(); ++i) EXPECT_EQ(found[i], static_cast<double>(i) + 1.25);
      });
}

TEST_P(LostValues, AValueIsTheOldOrTheNewOne) {
  stop_everywhere(
      [](ovf::table& table) {
        for (const std::uint64_t row : {3U, 50U, 51U}) {
          table.goToRow(row);
          table.setDouble(1, -7.5);
        }
      },
      [](const std::vector<double>& found, bool went_through) {
        ASSERT_EQ(found.size(), std::size_t{rows_there});
        for (std::size_t i = 0; i < found.size(); ++i) {
          const bool was_set = i == 2 || i == 49 || i == 50;
          const double old = static_cast<double>(i) + 1.25;
          EXPECT_TRUE(found[i] == (was_set ? -7.5 : old) || (!went_through && found[i] == old)) << found[i];
        }
      });
}

INSTANTIATE_TEST_SUITE_P(Precisions, LostValues,
                         ::testing::Values(ovtest::single_words, ovtest::double_words),
                         [](const auto& each) { return each.param.size == 8 ? "double" : "single"; });

}  // namespace
