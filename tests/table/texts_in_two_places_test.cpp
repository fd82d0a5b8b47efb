// A text may have its first word in the header alone and others in the rows: what makes the file anew loses
// none of them.
#include "edits_host.h"

namespace {

using list = std::vector<std::string>;

class TextsInTwoPlaces : public ovtest::EditsHost, public ::testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    EditsHost::SetUp();
    write();
    ASSERT_EQ(open(), S_OK);
    ASSERT_EQ(texts(2), (list{"everhere", "everthat", "everlast"}));
  }
  ovfile::pointer<IOvTableMaintenance> maintenance() const { return table_.query<IOvTableMaintenance>(); }

 private:
  /// A number N of 1, 2, 3 and a text MIXED of two words.
  void write() const {
    const ovtest::word_format format = GetParam() ? ovtest::double_words : ovtest::single_words;
    std::vector<ovtest::atom> atoms{ovtest::number_atom("N", 1, 0)};
    ovtest::add_text_atoms(atoms, "MIXED", 2, 1, "everelse");
    atoms[1].position = 0;
    atoms[2].position = 2;
    ovtest::header_words words;
    words.pages = 2;
    words.records_in_last_page = 3;
    ovtest::bytes file = ovtest::make_header(words, atoms, format);
    ovtest::add_page(file, format);
    const char* const stored[] = {"here", "that", "last"};
    for (std::size_t row = 0; row < 3; ++row) {
      ovtest::put_number(file, ovtest::record_word(1, row, 2, 1), static_cast<double>(row + 1), format);
      ovtest::put_text(file, ovtest::record_word(1, row, 2, 2), 1, stored[row], format);
    }
    ovtest::write_bytes(path(), file);
  }
};

TEST_P(TextsInTwoPlaces, AreSorted) {
  ASSERT_EQ(table_->Sort(1, VARIANT_FALSE), S_OK) << ovtest::reported();
  EXPECT_EQ(texts(2), (list{"everlast", "everthat", "everhere"}));
}

TEST_P(TextsInTwoPlaces, StayWhenARowIsDeleted) {
  ASSERT_EQ(table_->Close(), S_OK);
  ASSERT_EQ(open_set(), S_OK);
  ASSERT_EQ(set_->DeleteRow(1), S_OK) << ovtest::reported();
  set_ = {};
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(texts(2), (list{"everthat", "everlast"}));
}

TEST_P(TextsInTwoPlaces, StayInSomeOfTheRows) {
  const LONG rows[] = {3, 1};
  ASSERT_EQ(maintenance()->Rebuild(nullptr, 0, nullptr, 2, rows), S_OK) << ovtest::reported();
  EXPECT_EQ(texts(2), (list{"everlast", "everhere"}));
}

TEST_P(TextsInTwoPlaces, StayUnderTheTablesOwnSchema) {
  const auto schema = schema_of(table_);
  ASSERT_EQ(maintenance()->Rebuild(schema.get(), 0, nullptr, 0, nullptr), S_OK) << ovtest::reported();
  EXPECT_EQ(texts(2), (list{"everhere", "everthat", "everlast"}));
  ASSERT_EQ(table_->Repair(schema.get()), S_OK) << ovtest::reported();
  EXPECT_EQ(texts(2), (list{"everhere", "everthat", "everlast"}));
}

INSTANTIATE_TEST_SUITE_P(BothPrecisions, TextsInTwoPlaces, ::testing::Bool(),
                         [](const auto& each) { return each.param ? "double" : "single"; });

}  // namespace
