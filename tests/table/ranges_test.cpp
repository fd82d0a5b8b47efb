#include <cmath>
#include <limits>
#include <random>

#include "table_host.h"

namespace {

using ovtest::call;
using ovtest::TableHost;
using ovtest::text_of;

constexpr const char* no_minimum = "GetColumnMin failed, index is not valid";
constexpr const char* no_maximum = "GetColumnMax failed, index is not valid";
constexpr double absent = -1e30;

class Ranges : public TableHost {
 protected:
  /// Columns by their kinds: N a stored number, I an implicit one, A a text.
  void make(const std::string& kinds, bool is_double) {
    auto schema = ovfile::create_schema();
    schema->put_DoublePrecision(is_double ? VARIANT_TRUE : VARIANT_FALSE);
    for (std::size_t i = 0; i < kinds.size(); ++i) {
      const auto name = text_of("C" + std::to_string(i));
      if (kinds[i] == 'A') {
        schema->AddStringColumn(name.get(), 4, text_of(std::string("7")).get(), 0);
      } else {
        schema->AddNumericColumn(name.get(), 2.5, kinds[i] == 'I' ? 1 : 0);
      }
    }
    ASSERT_EQ(create(schema), S_OK);
  }
  void add_row(const std::vector<double>& values) {
    ASSERT_EQ(table_->AddRow(), S_OK);
    for (std::size_t i = 0; i < values.size(); ++i) {
      ASSERT_EQ(table_->SetColumnDouble(static_cast<LONG>(i + 1), values[i]), S_OK);
    }
  }
  double minimum(LONG column) {
    double value = 77;
    EXPECT_EQ(table_->GetColumnMin(column, &value), S_OK);
    return value;
  }
  double maximum(LONG column) {
    double value = 77;
    EXPECT_EQ(table_->GetColumnMax(column, &value), S_OK);
    return value;
  }
};

TEST_F(Ranges, AreTheSmallestAndLargestOrdinaryValues) {
  make("NNI", true);
  add_row({3, -5});
  add_row({absent, 1e30});
  add_row({1e-30, 8});
  add_row({-2, 2});
  EXPECT_EQ(minimum(1), -2);
  EXPECT_EQ(maximum(1), 3);
  EXPECT_EQ(minimum(2), -5);
  EXPECT_EQ(maximum(2), 8);
  EXPECT_EQ(minimum(3), 2.5);
  EXPECT_EQ(maximum(3), 2.5);
}

TEST_F(Ranges, OfATextAreAbsent) {
  for (const bool is_double : {false, true}) {
    make("ANA", is_double);
    add_row({});
    EXPECT_EQ(minimum(1), absent);
    EXPECT_EQ(maximum(1), absent);
    EXPECT_EQ(minimum(3), absent);
    EXPECT_EQ(maximum(3), absent);
    EXPECT_EQ(minimum(2), 2.5);
  }
}

TEST_F(Ranges, OfAnEmptyTableAreNotThere) {
  make("N", true);
  double value = 77;
  EXPECT_REPORT(table_->GetColumnMin(1, &value), no_minimum);
  EXPECT_EQ(value, 0);
  value = 77;
  EXPECT_REPORT(table_->GetColumnMax(1, &value), no_maximum);
  EXPECT_EQ(value, 0);
  add_row({4});
  EXPECT_REPORT(table_->GetColumnMin(1, &value), no_minimum);
}

TEST_F(Ranges, HaveNoColumnOutsideTheTable) {
  make("NN", true);
  add_row({1, 2});
  for (const LONG column : std::vector<LONG>{0, -1, 3, 1000, std::numeric_limits<LONG>::min()}) {
    double value = 77;
    EXPECT_REPORT(table_->GetColumnMin(column, &value), no_minimum);
    EXPECT_EQ(value, 0);
    EXPECT_REPORT(table_->GetColumnMax(column, &value), no_maximum);
  }
  EXPECT_EQ(table_->GetColumnMin(1, nullptr), E_POINTER);
  EXPECT_EQ(table_->GetColumnMax(1, nullptr), E_POINTER);
}

TEST_F(Ranges, BeginWithTheFirstRowWhateverItHolds) {
  make("NN", true);
  add_row({absent, 1e30});
  add_row({5, 6});
  EXPECT_EQ(minimum(1), absent);
  EXPECT_EQ(maximum(1), 5);
  EXPECT_EQ(minimum(2), 6);
  EXPECT_EQ(maximum(2), 1e30);
}

TEST_F(Ranges, OfAColumnOfTopsHaveAnAbsentMinimum) {
  make("N", true);
  add_row({1e30});
  add_row({1e30});
  EXPECT_EQ(minimum(1), absent);
  EXPECT_EQ(maximum(1), 1e30);
}

TEST_F(Ranges, BeginAgainInRowTwoBehindALastText) {
  make("NNA", true);
  add_row({1, 100});
  add_row({5, 200});
  add_row({7, 150});
  EXPECT_EQ(minimum(1), 5);  // the first row's 1 is forgotten
  EXPECT_EQ(maximum(1), 7);
  EXPECT_EQ(minimum(2), 100);
  EXPECT_EQ(maximum(2), 200);
}

TEST_F(Ranges, NeedNoValidRowAndLeaveTheCursorOnARow) {
  make("N", true);
  for (const double value : {1.0, 2.0, 3.0}) add_row({value});
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  EXPECT_EQ(maximum(1), 3);
  EXPECT_EQ(row(), 2);
  ASSERT_EQ(table_->Close(), S_OK);
  table_ = ovfile::create_table();
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(table_->GetRowAt(0), S_FALSE);
  EXPECT_EQ(minimum(1), 1);
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(at_end(), 0);
  EXPECT_EQ(at_beginning(), 0);
}

TEST_F(Ranges, OnlyWiden) {
  make("NA", true);
  add_row({1});
  add_row({9});
  EXPECT_EQ(maximum(1), 9);
  ASSERT_EQ(table_->SetColumnDouble(1, 4), S_OK);
  EXPECT_EQ(maximum(1), 9);  // the 9 is gone from the table
  ASSERT_EQ(table_->SetColumnDouble(1, 20), S_OK);
  EXPECT_EQ(maximum(1), 20);
  ASSERT_EQ(table_->SetColumnFloat(1, -0.1F), S_OK);
  EXPECT_EQ(minimum(1), static_cast<double>(-0.1F));
  ASSERT_EQ(table_->SetColumn(1, ovfile::variant(-0.2F).get()), S_OK);
  EXPECT_EQ(minimum(1), -0.2);
  ASSERT_EQ(table_->SetColumn(1, ovfile::variant(LONG{30}).get()), S_OK);
  EXPECT_EQ(maximum(1), 30);
  for (const double special : {absent, -2e30, 1e30, 2e30, 1e-30}) {
    ASSERT_EQ(table_->SetColumnDouble(1, special), S_OK);
  }
  EXPECT_EQ(minimum(1), -0.2);
  EXPECT_EQ(maximum(1), 30);
}

TEST_F(Ranges, AreNotWidenedByTexts) {
  make("NA", true);
  add_row({1});
  EXPECT_EQ(maximum(1), 1);
  ASSERT_EQ(table_->SetColumn(1, ovfile::variant(text_of(std::string("50"))).get()), S_OK);
  ASSERT_EQ(table_->SetColumnString(1, text_of(std::string("60")).get()), S_OK);
  EXPECT_EQ(maximum(1), 1);
  ASSERT_EQ(table_->SetColumn(2, ovfile::variant(12.0).get()), S_OK);
  EXPECT_EQ(maximum(2), absent);
}

TEST_F(Ranges, AreNotFoundAnew) {
  make("N", true);
  add_row({1});
  EXPECT_EQ(maximum(1), 1);
  ASSERT_EQ(table_->Close(), S_OK);
  make("N", true);
  add_row({500});
  EXPECT_EQ(minimum(1), 1);
  EXPECT_EQ(maximum(1), 500);  // widened by the value that was stored
}

TEST_F(Ranges, OfAColumnAddedSinceAreNotThere) {
  make("N", true);
  add_row({1});
  EXPECT_EQ(maximum(1), 1);
  ASSERT_EQ(table_->AddImplicitNumericColumnDouble(text_of(std::string("NEW")).get(), 3), S_OK);
  double value = 77;
  EXPECT_REPORT(table_->GetColumnMin(2, &value), no_minimum);
  EXPECT_EQ(value, 0);
}

TEST_F(Ranges, WithoutATableThereAreNone) {
  double value = 77;
  EXPECT_REPORT(table_->GetColumnMin(1, &value), no_minimum);
  EXPECT_EQ(value, 0);
}

TEST_F(Ranges, OfEveryByteOrderAreTheSame) {
  for (const int order : {0, 256, 1024, 1280}) {
    const ovtest::word_format format{4, order};
    ovtest::header_words words;
    words.pages = 2;
    words.records_in_last_page = 4;
    ovtest::bytes file =
        ovtest::make_header(words, {ovtest::number_atom("A", 1), ovtest::number_atom("B", 2)}, format);
    ovtest::add_page(file, format);
    const double values[][2] = {{0.1, -5}, {-1e30, 1e30}, {123456.75, 1e-3}, {-2.5, 7}};
    for (std::size_t row = 0; row < 4; ++row) {
      for (std::size_t field = 0; field < 2; ++field) {
        ovtest::put_number(file, ovtest::record_word(1, row, 2, field + 1), values[row][field], format);
      }
    }
    ovtest::write_bytes(path(), file);
    table_ = ovfile::create_table();
    ASSERT_EQ(open(1), S_OK);
    EXPECT_EQ(minimum(1), -2.5) << order;
    EXPECT_EQ(maximum(1), 123456.75) << order;
    EXPECT_EQ(minimum(2), -5) << order;
    EXPECT_EQ(maximum(2), 7) << order;
  }
}

TEST_F(Ranges, OfNumbersThatAreNoneAreThoseOfTheOthers) {
  make("NN", true);
  const double none = std::numeric_limits<double>::quiet_NaN();
  add_row({3, none});
  add_row({none, 4});
  add_row({5, none});
  EXPECT_EQ(minimum(1), 3);
  EXPECT_EQ(maximum(1), 5);
  // One in the first row begins the range and stays: no number is less, none is more.
  EXPECT_TRUE(std::isnan(minimum(2)));
  EXPECT_TRUE(std::isnan(maximum(2)));
}

TEST_F(Ranges, OfALinkAreThoseOfItsTarget) {
  make_rows(3);
  auto link = ovfile::create_schema();
  link->put_Description(text_of(std::string("LINKtable.ovt .")).get());
  link->AddNumericColumn(text_of(std::string("X")).get(), 0, 0);
  ASSERT_EQ(create(link, "link.ovt"), S_OK);
  ASSERT_EQ(table_->Close(), S_OK);
  ASSERT_EQ(open(0, "link.ovt"), S_OK);
  EXPECT_EQ(minimum(2), 1);
  EXPECT_EQ(maximum(2), 3);
  EXPECT_EQ(maximum(3), 2.75);
}

TEST_F(Ranges, ARowThatCannotBeReadIsReported) {
  make("N", true);
  for (int i = 0; i < 60000; ++i) add_row({1.0 * i});
  ASSERT_EQ(table_->Close(), S_OK);
  ovtest::failing_files disk;
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(table_->GetRowAt(7), S_OK);
  disk.fail_nth(call::read, 1);
  double value = 77;
  EXPECT_EQ(table_->GetColumnMin(1, &value), E_FAIL);
  EXPECT_EQ(row(), 7);
  EXPECT_EQ(value, 0);
  EXPECT_NE(ovtest::reported(), "(none)");
  disk.fail_nothing();
  ASSERT_EQ(table_->GetFirstRow(), S_OK);
  EXPECT_EQ(maximum(1), 59999);
}

/// What a host's own walk gives.
struct model {
  std::vector<double> low, high;

  static bool special(double value) { return value <= -1e30 || value >= 1e30 || value == 1e-30; }

  void update(std::size_t column, double value) {
    if (special(value)) return;
    if (high[column] < value) high[column] = value;
    if (value < low[column]) low[column] = value;
  }

  void walk(IOvTable& table, const std::string& kinds, bool is_double) {
    LONG rows = 0;
    EXPECT_EQ(table.GetRowCount(&rows), S_OK);
    table.GetFirstRow();
    bool seed = false;
    for (LONG row = 1; row <= rows; ++row) {
      for (std::size_t i = 0; i < kinds.size(); ++i) {
        if (row == 1) {
          low.push_back(1e30);
          high.push_back(-1e30);
          seed = true;
        }
        if (kinds[i] == 'A') continue;
        double value = 0;
        float small = 0;
        if (is_double) {
          EXPECT_EQ(table.GetColumnAsDouble(static_cast<LONG>(i + 1), &value), S_OK);
        } else {
          EXPECT_EQ(table.GetColumnAsFloat(static_cast<LONG>(i + 1), &small), S_OK);
          value = static_cast<double>(small);
        }
        if (seed) low[i] = high[i] = value;
        seed = false;
        update(i, value);
      }
      table.GetNextRow();
    }
    for (double& each : low) each = each == 1e30 ? -1e30 : each;
  }
};

bool same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

TEST_F(Ranges, OfRandomTablesAreThoseOfAPlainWalk) {
  std::mt19937 random(2024);
  const auto pick = [&](unsigned below) { return static_cast<unsigned>(random() % below); };
  const std::vector<double> specials = {absent, 1e30,      1e-30, -2e30,
                                        0.0,    -0.0,      0.1,   std::numeric_limits<double>::quiet_NaN(),
                                        -3e38,  123456.789};
  for (int round = 0; round < 200; ++round) {
    table_ = ovfile::create_table();
    std::string kinds;
    for (unsigned i = pick(5); i > 0; --i) kinds += "NNAI"[pick(4)];
    kinds.insert(pick(static_cast<unsigned>(kinds.size()) + 1), 1, "NA"[pick(2)]);  // rows need one
    const bool is_double = pick(2) == 0;
    make(kinds, is_double);
    const unsigned rows = pick(4) == 0 ? pick(3) : pick(60);
    for (unsigned row = 0; row < rows; ++row) {
      ASSERT_EQ(table_->AddRow(), S_OK);
      for (std::size_t i = 0; i < kinds.size(); ++i) {
        if (kinds[i] != 'N') continue;
        const double value = pick(3) == 0 ? specials[pick(10)] : static_cast<double>(pick(2000)) / 8 - 100;
        ASSERT_EQ(table_->SetColumnDouble(static_cast<LONG>(i + 1), value), S_OK);
      }
    }
    model expected;
    expected.walk(*table_.get(), kinds, is_double);
    for (std::size_t i = 0; i < expected.low.size(); ++i) {
      const LONG column = static_cast<LONG>(i + 1);
      EXPECT_TRUE(same(minimum(column), expected.low[i]))
          << kinds << " round " << round << " column " << column;
      EXPECT_TRUE(same(maximum(column), expected.high[i])) << kinds << " round " << round;
    }
    double value = 0;
    if (rows == 0) EXPECT_REPORT(table_->GetColumnMin(1, &value), no_minimum);
  }
}

}  // namespace
