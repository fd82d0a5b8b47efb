// What becomes of the values of a table under another schema: types, precisions, bytes.
#include "repair_host.h"

namespace {

using ovtest::add_number;
using ovtest::add_text;
using ovtest::bytes;
using ovtest::empty_schema;
using ovtest::words;

class RepairedValues : public ovtest::RepairHost {};

INSTANTIATE_TEST_SUITE_P(BothPrecisions, RepairedValues, ::testing::Bool(),
                         [](const auto& each) { return each.param ? "double" : "single"; });

TEST_P(RepairedValues, AnImplicitColumnBecomesAStoredOneAndBack) {
  open_rows(3);
  auto schema = empty_schema(GetParam());
  add_text(schema, "BHID", 8);
  add_number(schema, "DEPTH", 40, 1);
  add_number(schema, "DENSITY", 0);
  add_text(schema, "ZONE", 4, "N", 1);
  EXPECT_EQ(repair(schema), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{40, 40}));
  EXPECT_EQ(numbers(3), (std::vector<double>{2.75, 2.75}));
  EXPECT_EQ(texts(4), (std::vector<std::string>{"N   ", "N   "}));
}

TEST_P(RepairedValues, NumbersBecomeTexts) {
  open_rows(4);
  ASSERT_EQ(table_->SetColumnDouble(2, 12.5), S_OK);
  ASSERT_EQ(table_->GetNextRow(), S_OK);
  ASSERT_EQ(table_->SetColumnDouble(2, -123456.75), S_OK);
  auto schema = empty_schema(GetParam());
  add_text(schema, "DEPTH", 8);
  EXPECT_EQ(repair(schema), S_OK);
  // What is longer than the column is cut.
  EXPECT_EQ(texts(1), (std::vector<std::string>{"12.5    ", "-123456.", "3       "}));
}

TEST_P(RepairedValues, TextsOfNumbersBecomeDoublesAlone) {
  open_rows(3);
  ASSERT_EQ(table_->SetColumnString(1, words("12.5").get()), S_OK);
  ASSERT_EQ(table_->GetNextRow(), S_OK);
  ASSERT_EQ(table_->SetColumnString(1, words("-1e30").get()), S_OK);
  auto to_floats = empty_schema(false);
  add_number(to_floats, "BHID");
  // Floats are read by a getter that refuses texts.
  EXPECT_REPORT(repair(to_floats), "invalid data type... numeric requested");
  auto to_doubles = empty_schema(true);
  add_number(to_doubles, "BHID");
  EXPECT_EQ(repair(to_doubles), S_OK);
  EXPECT_EQ(numbers(1), (std::vector<double>{12.5, -1e30}));
}

TEST_P(RepairedValues, ATextThatIsNoNumberFailsInTheEnginesWordsAndTheTableStays) {
  open_rows(3);
  const bytes before = content();
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  auto schema = empty_schema(GetParam());
  add_number(schema, "BHID");
  add_number(schema, "DEPTH");
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(repair(schema), E_FAIL);
  const std::string mismatch = ovf::utf8_from_wide(ovf::com_error(DISP_E_TYPEMISMATCH).message());
  EXPECT_EQ(ovtest::reported(), GetParam() ? mismatch : "invalid data type... numeric requested");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(row(), 2);
  EXPECT_EQ(depth(), 2);
  EXPECT_EQ(fields(), 3);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(RepairedValues, TheOtherPrecision) {
  open_rows(3);
  ASSERT_EQ(table_->SetColumnDouble(2, 0.1), S_OK);
  auto schema = empty_schema(!GetParam());
  add_text(schema, "BHID", 8);
  add_number(schema, "DEPTH");
  EXPECT_EQ(repair(schema), S_OK);
  EXPECT_EQ(facts_of(table_).wordBytes, GetParam() ? 4 : 8);
  // A float that becomes a double is tidied.
  EXPECT_EQ(numbers(2), (std::vector<double>{0.1, 2}));
  EXPECT_EQ(texts(1), (std::vector<std::string>{"none    ", "none    "}));
}

TEST_P(RepairedValues, ANumberBeyondSinglePrecisionFailsAndTheTableStays) {
  open_rows(3);
  ASSERT_EQ(table_->SetColumnDouble(2, GetParam() ? 1e300 : 1e30), S_OK);
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  const bytes before = content();
  auto schema = empty_schema(false);
  add_number(schema, "DEPTH");
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(repair(schema), GetParam() ? E_FAIL : S_OK);
  if (!GetParam()) return;
  EXPECT_EQ(ovtest::reported(), ovf::utf8_from_wide(ovf::com_error(DISP_E_OVERFLOW).message()));
  EXPECT_EQ(content(), before);
}

/// All bytes of a small case: A kept, T added.
TEST_P(RepairedValues, TheWholeFile) {
  const ovtest::word_format format = GetParam() ? ovtest::double_words : ovtest::single_words;
  ovtest::header_words header;
  header.names = "NAME-ONENAME-TWO";
  header.description = "before";
  header.owner = "GEOLOGY ";
  header.pages = 2;
  header.records_in_last_page = 3;
  bytes before =
      ovtest::make_header(header, {ovtest::number_atom("A", 1, 9), ovtest::number_atom("B", 2)}, format);
  ovtest::add_page(before, format);
  for (std::size_t row = 0; row < 3; ++row) {
    ovtest::put_number(before, ovtest::record_word(1, row, 2, 1), static_cast<double>(row) + 0.5, format);
    ovtest::put_number(before, ovtest::record_word(1, row, 2, 2), 100, format);
  }
  ovtest::write_bytes(path(), before);

  auto schema = empty_schema(GetParam());
  add_text(schema, "T", 12, "ABCDEFGHIJ");
  add_number(schema, "A", 4);
  add_text(schema, "E", 4, "");
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(repair(schema), S_OK);
  ASSERT_EQ(table_->Close(), S_OK);

  header.description = "repaired";
  header.records_in_last_page = 2;
  std::vector<ovtest::atom> atoms;
  ovtest::add_text_atoms(atoms, "T", 3, 1, "ABCDEFGHIJ");
  atoms.push_back(ovtest::number_atom("A", 4, 4));
  ovtest::add_text_atoms(atoms, "E", 1, 5);
  bytes after = ovtest::make_header(header, atoms, format);
  ovtest::add_page(after, format);
  for (std::size_t row = 0; row < 2; ++row) {
    const std::size_t word = ovtest::record_word(1, row, 5, 1);
    // Texts are put, not defaulted: the fifth byte of a long word is 0, and what follows shows behind it.
    const std::string_view wide_words[] = {{"ABCD\0FGH", 8}, {"EFGH\0J  ", 8}, {"IJ  \0   ", 8}};
    const std::string_view short_words[] = {"ABCD", "EFGH", "IJ  "};
    for (std::size_t i = 0; i < 3; ++i) {
      ovtest::put_raw(after, word + i, GetParam() ? wide_words[i] : short_words[i], format);
    }
    ovtest::put_number(after, word + 3, static_cast<double>(row) + 0.5, format);
    ovtest::put_raw(after, word + 4, GetParam() ? "        " : "    ", format);
  }
  const bytes found = content();
  ASSERT_EQ(found.size(), after.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    ASSERT_EQ(found[i], after[i]) << "byte " << i << ", word " << i / format.size;
  }
}

}  // namespace
