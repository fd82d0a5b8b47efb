// Random work on a table beside a plain list of numbers: after every step both hold the same rows.
#include <gtest/gtest.h>

#include <random>

#include "engine_files.h"

namespace {

struct shape {
  ovtest::word_format format;
  int record_words;
};

/// A table of numbers without rows; wide records make pages of few rows, and thus many pages.
ovtest::bytes wide_table(const shape& of) {
  std::vector<ovtest::atom> atoms;
  for (int i = 0; i < of.record_words; ++i) {
    atoms.push_back(ovtest::number_atom("F" + std::to_string(i), i + 1, -7));
  }
  ovtest::header_words words;
  words.pages = static_cast<double>(((atoms.size() + 4) * 7 + 503) / 504);
  return ovtest::make_header(words, atoms, of.format);
}

class RandomWork {
 public:
  RandomWork(const shape& of, unsigned seed)
      : last_field_(static_cast<std::uint64_t>(of.record_words) - 1), random_(seed) {
    table_ = files_.open(wide_table(of));
  }

  void step() {
    const int choice = pick(100);
    if (choice < 40)
      append(1 + pick(120));
    else if (choice < 70)
      change_some();
    else if (choice < 85)
      table_->flush();
    else if (choice < 95)
      cut();
    else
      reopen();
  }

  void expect_same() {
    ASSERT_EQ(table_->getRowCount(), model_.size());
    for (std::size_t i = 0; i < model_.size(); ++i) {
      table_->goToRow(i + 1);
      ASSERT_EQ(table_->getDouble(last_field_), model_[i]) << "row " << i + 1;
    }
  }

  void reopen() {
    table_.reset();
    table_ = files_.reopen();
  }

 private:
  int pick(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

  void append(int rows) {
    for (int i = 0; i < rows; ++i) {
      table_->addRow();
      ASSERT_EQ(table_->getDouble(last_field_), -7);
      table_->setDouble(last_field_, ++next_);
      model_.push_back(next_);
    }
  }
  void change_some() {
    if (model_.empty()) return;
    std::size_t row = static_cast<std::size_t>(pick(static_cast<int>(model_.size())));
    table_->goToRow(row + 1);
    for (int i = pick(9); i >= 0 && row < model_.size(); --i, ++row) {
      table_->setDouble(last_field_, ++next_);
      model_[row] = next_;
      if (row + 1 < model_.size()) table_->nextRow();
    }
  }
  void cut() {
    if (model_.empty()) return;
    const auto rows = static_cast<std::size_t>(pick(static_cast<int>(model_.size())));
    ASSERT_TRUE(table_->onSetRowCount(rows));
    model_.resize(rows);
  }

  std::uint64_t last_field_;
  ovtest::engine_files files_;
  std::unique_ptr<ovf::table> table_;
  std::vector<double> model_;
  double next_ = 0;
  std::mt19937 random_;
};

TEST(RandomOperations, GiveTheRowsOfAPlainList) {
  using ovtest::double_words;
  using ovtest::single_words;
  // 250 words: two rows a page, two hundred rows a segment in double precision, four header pages.
  const shape shapes[] = {{single_words, 3}, {single_words, 60}, {double_words, 3}, {double_words, 250}};
  unsigned seed = 0;
  for (const shape& each : shapes) {
    for (int run = 0; run < 3; ++run) {
      RandomWork work(each, ++seed);
      SCOPED_TRACE("seed " + std::to_string(seed));
      for (int i = 0; i < 120; ++i) {
        work.step();
        if (i % 20 == 19) work.expect_same();
        if (::testing::Test::HasFatalFailure()) return;
      }
      work.reopen();
      work.expect_same();
    }
  }
}

}  // namespace
