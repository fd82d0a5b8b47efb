#include <gtest/gtest.h>

#include <cmath>

#include "engine_files.h"

namespace {

using namespace std::string_literals;
using ovtest::double_words;
using ovtest::message_of;
using ovtest::raw_word;
using ovtest::single_words;
using ovtest::utf8;

constexpr const char* no_field = "index out of range, field not found.";

class Values : public ::testing::TestWithParam<ovtest::word_format> {
 protected:
  std::unique_ptr<ovf::table> opened(int rows = 3) {
    auto table = files_.open(ovtest::hole_table(rows, GetParam()));
    table->firstRow();
    return table;
  }
  bool is_double() const { return GetParam().size == 8; }

  ovtest::engine_files files_;
};

TEST_P(Values, NumbersAndTextsOfTheCurrentRow) {
  const auto table = opened();
  EXPECT_EQ(table->getDouble(1), 1.25);
  EXPECT_EQ(table->getFloat(1), 1.25F);
  EXPECT_EQ(utf8(table->getString(0)), "H1      ");
  EXPECT_EQ(utf8(table->getString(1)), "1.25");
  EXPECT_EQ(table->getValue(1).type(), is_double() ? VT_R8 : VT_R4);
  EXPECT_EQ(table->getValue(0).type(), VT_BSTR);
  table->nextRow();
  EXPECT_EQ(table->getDouble(1), 2.25);
}

TEST_P(Values, ImplicitFieldsReadTheirDefaultAndWritingThemChangesNothing) {
  const auto table = opened();
  EXPECT_EQ(table->getDouble(2), 2.75);
  EXPECT_EQ(utf8(table->getString(3)), "ore ");
  EXPECT_TRUE(table->isImplicit(2));
  EXPECT_TRUE(table->isImplicitByName(OLESTR("LITH")));
  EXPECT_FALSE(table->isImplicit(0));
  const ovtest::bytes before = files_.content();
  table->setDouble(2, 9);
  table->setFloat(2, 9);
  table->setString(2, OLESTR("9"));
  table->setString(2, OLESTR("no number"));
  table->setDouble(2, 1e300);
  table->setString(3, OLESTR("none"));
  table->flush();
  EXPECT_EQ(table->getDouble(2), 2.75);
  EXPECT_EQ(utf8(table->getString(3)), "ore ");
  EXPECT_EQ(files_.content(), before);
}

TEST_P(Values, ATextWhoseFirstWordIsImplicitKeepsTheOthersInItsRows) {
  std::vector<ovtest::atom> atoms;
  ovtest::add_text_atoms(atoms, "MIXED", 2, 1, "everelse");
  atoms[0].position = 0;
  atoms[1].position = 1;
  ovtest::header_words words;
  words.pages = 2;
  words.records_in_last_page = 1;
  ovtest::bytes file = ovtest::make_header(words, atoms, GetParam());
  ovtest::add_page(file, GetParam());
  ovtest::put_text(file, ovtest::record_word(1, 0, 1, 1), 1, "here", GetParam());
  const auto table = files_.open(file);
  table->firstRow();
  EXPECT_EQ(utf8(table->getString(0)), "everhere");
  table->setString(0, OLESTR("nevernow"));
  table->flush();
  EXPECT_EQ(utf8(table->getString(0)),
            "ever"
            "rnow");
}

TEST(Defaults, AreWrittenWithTheRightCountOfPagesInATableWithoutRows) {
  ovtest::bytes file = ovtest::hole_table(0, double_words);
  ovtest::put_number(file, 26, 2, double_words);
  ovtest::engine_files files;
  {
    const auto table = files.open(file);
    table->flush();
    EXPECT_EQ(files.content(), file);
    table->setDefaultDouble(2, 2.5);
    table->flush();
  }
  ovtest::bytes changed = files.content();
  EXPECT_EQ(changed.size(), file.size());
  ovtest::put_number(file, 26, 1, double_words);
  EXPECT_TRUE(std::equal(file.begin(), file.begin() + 27 * 8, changed.begin()));
}

TEST_P(Values, FieldsByIndexAndName) {
  const auto table = opened();
  EXPECT_EQ(table->getFieldCount(), 4U);
  EXPECT_EQ(utf8(table->getFieldName(0)), "BHID");
  EXPECT_EQ(table->getFieldWidth(0), 8);
  EXPECT_EQ(table->getFieldWidth(1), 4);
  EXPECT_EQ(table->getFieldWidthByName(OLESTR("LITH")), 4U);
  EXPECT_EQ(table->getFieldType(0), ovf::field_kind::alphanumeric);
  EXPECT_EQ(table->getFieldTypeByName(OLESTR("DEPTH")), ovf::field_kind::numeric);
  EXPECT_EQ(table->getFieldIndex(OLESTR("DENSITY")), 2U);
  EXPECT_EQ(message_of([&] { table->getFieldIndex(OLESTR("density")); }), "unknown field name...");
  EXPECT_EQ(message_of([&] { table->isImplicitByName(OLESTR("X")); }), "unknown field name...");
  EXPECT_EQ(utf8(table->getFieldName(4)), "");
  EXPECT_EQ(message_of([&] { table->getFieldName(5); }), "field index out of range");
}

TEST_P(Values, EveryAccessorRefusesAnIndexBeyondTheFields) {
  const auto table = opened();
  const ovf::variant value(1.0);
  EXPECT_EQ(message_of([&] { table->getValue(4); }), no_field);
  EXPECT_EQ(message_of([&] { table->getFloat(4); }), no_field);
  EXPECT_EQ(message_of([&] { table->getDouble(4); }), no_field);
  EXPECT_EQ(message_of([&] { table->getString(4); }), no_field);
  EXPECT_EQ(message_of([&] { table->setDouble(4, 1); }), no_field);
  EXPECT_EQ(message_of([&] { table->setFloat(4, 1); }), no_field);
  EXPECT_EQ(message_of([&] { table->setString(4, OLESTR("1")); }), no_field);
  EXPECT_EQ(message_of([&] { table->setValue(4, value); }), no_field);
  EXPECT_EQ(message_of([&] { table->getDefaultValue(4); }), no_field);
  EXPECT_EQ(message_of([&] { table->getDefaultFloat(4); }), no_field);
  EXPECT_EQ(message_of([&] { table->getDefaultDouble(4); }), no_field);
  EXPECT_EQ(message_of([&] { table->getDefaultString(4); }), no_field);
  EXPECT_EQ(message_of([&] { table->setDefaultString(4, OLESTR("")); }), no_field);
  EXPECT_EQ(message_of([&] { table->setDefaultFloat(4, 1); }), no_field);
  EXPECT_EQ(message_of([&] { table->setDefaultDouble(4, 1); }), no_field);
  EXPECT_EQ(message_of([&] { table->isImplicit(4); }), no_field);
  EXPECT_EQ(message_of([&] { table->getFieldWidth(4); }), no_field);
  EXPECT_EQ(message_of([&] { table->getFieldType(4); }), no_field);
  EXPECT_EQ(message_of([&] { table->setValueByName(OLESTR("NO"), value); }), "unknown field name...");
  EXPECT_EQ(message_of([&] { table->getDefaultValueByName(OLESTR("NO")); }), "unknown field name...");
}

TEST_P(Values, KindsThatDoNotFitAreRefusedInTheirOwnWords) {
  const auto table = opened();
  EXPECT_EQ(message_of([&] { table->getFloat(0); }), "invalid data type... numeric requested");
  EXPECT_EQ(message_of([&] { table->getDouble(0); }), "invalid data type... numeric requested");
  EXPECT_EQ(message_of([&] { table->setFloat(0, 1); }), "invalid field type... expected string data");
  EXPECT_EQ(message_of([&] { table->setDouble(0, 1); }), "invalid field type... expected string data");
  EXPECT_EQ(message_of([&] { table->getDefaultFloat(0); }), "invalid data type... numeric requested");
  EXPECT_EQ(message_of([&] { table->getDefaultDouble(0); }), "invalid data type... numeric requested");
  EXPECT_EQ(message_of([&] { table->setDefaultString(1, OLESTR("x")); }),
            "Cannot write alphanumeric value to a non-alphanumeric field.");
  EXPECT_EQ(message_of([&] { table->setDefaultFloat(0, 1); }),
            "Cannot write numeric value to an alphanumeric field.");
  EXPECT_EQ(message_of([&] { table->setDefaultDouble(3, 1); }),
            "Cannot write numeric value to an alphanumeric field.");
}

TEST_P(Values, TextForANumberIsConvertedOrRefused) {
  const auto table = opened();
  table->setString(1, OLESTR("12.5"));
  EXPECT_EQ(table->getDouble(1), 12.5);
  EXPECT_EQ(message_of([&] { table->setString(1, OLESTR("12.5m")); }), "Error: Invalid number");
  EXPECT_EQ(message_of([&] { table->setString(1, OLESTR("")); }), "Error: Invalid number");
  EXPECT_EQ(table->getDouble(1), 12.5);
  table->setValueByName(OLESTR("DEPTH"), ovf::variant(ovf::wide_view(OLESTR("-3"))));
  EXPECT_EQ(table->getDouble(1), -3);
}

TEST_P(Values, ANumberForATextIsWrittenAsText) {
  const auto table = opened();
  table->setValue(0, ovf::variant(12.5));
  EXPECT_EQ(utf8(table->getString(0)), "12.5    ");
}

TEST_P(Values, WrittenNumbersReachTheFile) {
  auto table = opened();
  table->goToRow(2);
  table->setDouble(1, 7.5);
  table->nextRow();
  table->setFloat(1, -0.5F);
  table.reset();
  ovtest::bytes expected = ovtest::hole_table(3, GetParam());
  ovtest::put_number(expected, ovtest::record_word(1, 1, 3, 3), 7.5, GetParam());
  ovtest::put_number(expected, ovtest::record_word(1, 2, 3, 3), -0.5, GetParam());
  EXPECT_EQ(files_.content(), expected);
}

TEST_P(Values, DefaultsAreReadAndWrittenInTheHeader) {
  auto table = opened();
  EXPECT_EQ(table->getDefaultDouble(1), -1);
  EXPECT_EQ(table->getDefaultFloat(2), 2.75F);
  EXPECT_EQ(utf8(table->getDefaultString(0)), "none    ");
  EXPECT_EQ(utf8(table->getDefaultString(2)), "2.75");
  table->setDefaultDouble(2, 3.5);
  EXPECT_EQ(table->getDouble(2), 3.5);
  table->setDefaultFloat(1, 0.25F);
  table->setDefaultString(0, OLESTR("hole-number"));
  EXPECT_EQ(utf8(table->getDefaultString(0)), "hole-num");
  table.reset();
  ovtest::bytes expected = ovtest::hole_table(3, GetParam());
  const std::size_t first_default = 4 * 7 + 6;
  const std::string zeros(4, '\0');
  ovtest::put_raw(expected, first_default, "hole" + zeros, GetParam());
  ovtest::put_raw(expected, first_default + 7, "-num" + zeros, GetParam());
  ovtest::put_number(expected, first_default + 14, 0.25, GetParam());
  ovtest::put_number(expected, first_default + 21, 3.5, GetParam());
  EXPECT_EQ(files_.content(), expected);
}

TEST_P(Values, ARecordIsReadAndWrittenWhole) {
  auto table = opened();
  std::byte record[3 * 8];
  table->readRecord(99, record);  // the row argument is not used
  EXPECT_EQ(std::memcmp(record, "H1  ", 4), 0);
  table->goToRow(3);
  table->writeRecord(0, record);
  EXPECT_EQ(table->getDouble(1), 1.25);
  table.reset();
  ovtest::bytes expected = ovtest::hole_table(3, GetParam());
  ovtest::put_text(expected, ovtest::record_word(1, 2, 3, 1), 2, "H1", GetParam());
  ovtest::put_number(expected, ovtest::record_word(1, 2, 3, 3), 1.25, GetParam());
  EXPECT_EQ(files_.content(), expected);
}

TEST_P(Values, WithoutARowNothingIsRead) {
  const auto table = opened(0);
  EXPECT_EQ(message_of([&] { table->getValue(1); }), "index out of bounds");
  EXPECT_EQ(message_of([&] { table->setDouble(1, 1); }), "index out of bounds");
  std::byte record[3 * 8];
  EXPECT_EQ(message_of([&] { table->readRecord(0, record); }), "index out of bounds");
  EXPECT_EQ(message_of([&] { table->writeRecord(0, record); }), "index out of bounds");
}

TEST_P(Values, ATextOfNulsIsEmpty) {
  ovtest::bytes file = ovtest::text_table(2, "", GetParam());
  const std::size_t first = ovtest::record_word(1, 0, 2, 1);
  ovtest::put_raw(file, first, std::string(8, '\0'), GetParam());
  ovtest::put_raw(file, first + 1, std::string(8, '\0'), GetParam());
  const auto table = files_.open(file);
  table->firstRow();
  EXPECT_EQ(table->getValue(0).type(), VT_EMPTY);
  EXPECT_EQ(utf8(table->getString(0)), "");
}

INSTANTIATE_TEST_SUITE_P(BothPrecisions, Values, ::testing::Values(single_words, double_words),
                         [](const auto& each) { return each.param.size == 4 ? "single" : "double"; });

/// The raw words of a text field of `width` words after writing `text` to it.
std::vector<std::string> written_words(int width, const ovf::wide& text, ovtest::word_format format) {
  ovtest::engine_files files;
  auto table = files.open(ovtest::text_table(width, "old text of the field", format));
  table->firstRow();
  table->setString(0, text);
  table.reset();
  std::vector<std::string> words;
  const ovtest::bytes content = files.content();
  for (std::size_t i = 0; i < static_cast<std::size_t>(width); ++i) {
    words.push_back(raw_word(content, 512 + i, format));
  }
  return words;
}

using raw_words = std::vector<std::string>;

TEST(TextWords, SinglePrecisionCutsAndPads) {
  EXPECT_EQ(written_words(2, OLESTR("ABCDEFGHIJ"), single_words), (raw_words{"ABCD", "EFGH"}));
  EXPECT_EQ(written_words(2, OLESTR("AB"), single_words), (raw_words{"AB  ", "    "}));
  EXPECT_EQ(written_words(2, OLESTR(""), single_words), (raw_words{"    ", "    "}));
}

TEST(TextWords, DoublePrecisionShowsWhatFollowsBehindANul) {
  EXPECT_EQ(written_words(3, OLESTR("ABCDEFGHIJ"), double_words),
            (raw_words{"ABCD\0FGH"s, "EFGH\0J  "s, "IJ  \0   "s}));
  EXPECT_EQ(written_words(2, OLESTR("AB"), double_words), (raw_words{"AB  \0   "s, "    \0   "s}));
  EXPECT_EQ(written_words(2, OLESTR(""), double_words), (raw_words{"        ", "        "}));
  EXPECT_EQ(written_words(1, OLESTR("ABCDEFGH"), double_words), (raw_words{"ABCD\0FGH"s}));
}

TEST(TextWords, ReadBackWithTheirTrailingBlanks) {
  ovtest::engine_files files;
  const auto table = files.open(ovtest::text_table(3, "", double_words));
  table->firstRow();
  table->setString(0, OLESTR("ABCDEFGHIJ"));
  EXPECT_EQ(utf8(table->getString(0)), "ABCDEFGHIJ  ");
  table->setString(0, OLESTR("AB"));
  EXPECT_EQ(utf8(table->getString(0)), "AB          ");
}

TEST(OtherByteOrders, ValuesAndDefaultsTakeTheirOwnRoads) {
  for (const int order : {256, 1024, 1280}) {
    ovtest::engine_files files;
    const ovtest::word_format format{4, order};
    auto table = files.open(ovtest::hole_table(2, format));
    table->firstRow();
    EXPECT_EQ(table->getDouble(1), 1.25) << order;
    EXPECT_EQ(utf8(table->getString(0)), "H1      ");
    EXPECT_EQ(table->getDefaultDouble(2), 2.75);
    EXPECT_NE(table->getDouble(2), 2.75);  // the word as the file holds it
    table->setValue(1, ovf::variant(8.5));
    EXPECT_EQ(table->getDouble(1), 8.5);
    table->nextRow();
    table->setFloat(1, 1.5F);  // stored as given, not in the file's order
    table->setDefaultFloat(2, 3.5F);
    EXPECT_EQ(table->getDefaultFloat(2), 3.5F);
    std::byte record[12];
    table->firstRow();
    table->readRecord(0, record);
    EXPECT_EQ(ovf::load_number<ovf::single_precision>(record + 8, ovf::byte_order::native), 8.5F);
    table.reset();
    ovtest::bytes expected = ovtest::hole_table(2, format);
    ovtest::put_number(expected, ovtest::record_word(1, 0, 3, 3), 8.5, format);
    ovtest::put_number(expected, ovtest::record_word(1, 1, 3, 3), 1.5, single_words);
    ovtest::put_number(expected, 4 * 7 + 6 + 21, 3.5, format);
    EXPECT_EQ(files.content(), expected);
  }
}

TEST(OtherByteOrders, AWholeRecordGoesInInNativeOrder) {
  ovtest::engine_files files;
  const ovtest::word_format format{4, 1280};
  auto table = files.open(ovtest::hole_table(1, format));
  table->firstRow();
  std::byte record[12];
  table->readRecord(0, record);
  ovf::store_number<ovf::single_precision>(record + 8, 42, ovf::byte_order::native);
  table->writeRecord(0, record);
  EXPECT_EQ(table->getDouble(1), 42);
  table.reset();
  ovtest::bytes expected = ovtest::hole_table(1, format);
  ovtest::put_number(expected, ovtest::record_word(1, 0, 3, 3), 42, format);
  EXPECT_EQ(files.content(), expected);
}

TEST(SinglePrecision, ADoubleThatNoFloatHoldsIsRefused) {
  ovtest::engine_files files;
  const auto table = files.open(ovtest::hole_table(1, single_words));
  table->firstRow();
  EXPECT_NE(message_of([&] { table->setDouble(1, 1e300); }), "");
  EXPECT_EQ(message_of([&] { table->setValue(1, ovf::variant(1e300)); }), "Error: Invalid number");
  EXPECT_EQ(table->getDouble(1), 1.25);
}

TEST(ReadOnly, ChangesStayInMemory) {
  ovtest::engine_files files;
  const ovtest::bytes before = ovtest::hole_table(2, single_words);
  auto table = files.open(before, true);
  table->firstRow();
  table->setDouble(1, 5);
  EXPECT_EQ(table->getDouble(1), 5);
  table->flush();
  table.reset();
  EXPECT_EQ(files.content(), before);
}

}  // namespace
