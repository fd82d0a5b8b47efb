// Fields added to an open table whose header has room for them: the bytes on disk, and what the table
// says of them, in both precisions and every byte order.
#include <gtest/gtest.h>

#include "field_files.h"

namespace {

using ovtest::bytes;
using ovtest::utf8;

class AddedFields : public ::testing::TestWithParam<ovtest::word_format> {
 protected:
  bool is_double() const { return GetParam().size == 8; }
  /// The holes with more atoms behind their five; `rows` as in hole_table.
  bytes grown(const std::vector<ovtest::atom>& more, int rows) const {
    bytes file = ovtest::hole_table(rows, GetParam());
    ovtest::put_number(file, 25, 5.0 + static_cast<double>(more.size()), GetParam());
    for (std::size_t i = 0; i < more.size(); ++i) ovtest::put_atom(file, 5 + i, more[i], GetParam());
    return file;
  }

  ovtest::engine_files files_;
};

TEST_P(AddedFields, ANumberByteForByte) {
  auto table = files_.open(ovtest::hole_table(3, GetParam()));
  EXPECT_EQ(table->addNumericField(OLESTR("AU_PPM"), 1.625), 4U);
  EXPECT_EQ(files_.content(), grown({ovtest::added_number("AU_PPM", 1.625)}, 3));
  EXPECT_EQ(table->addNumericField(OLESTR("CU"), -0.375F), 5U);
  const bytes expected =
      grown({ovtest::added_number("AU_PPM", 1.625), ovtest::added_number("CU", -0.375)}, 3);
  EXPECT_EQ(files_.content(), expected);
  table.reset();
  EXPECT_EQ(files_.content(), expected);
}

TEST_P(AddedFields, ATextByteForByte) {
  auto table = files_.open(ovtest::hole_table(3, GetParam()));
  EXPECT_EQ(table->addAlphaField(OLESTR("ROCKTYPE"), 9, OLESTR("granite")), 4U);
  std::vector<ovtest::atom> more;
  ovtest::add_added_text(more, "ROCKTYPE", 3, "granite");
  bytes expected = grown(more, 3);
  ovtest::end_defaults_with_zeros(expected, 5, 3, GetParam());
  EXPECT_EQ(files_.content(), expected);
  table.reset();
  EXPECT_EQ(files_.content(), expected);
}

TEST_P(AddedFields, EveryWordOfAnAddedNumber) {
  files_.open(ovtest::hole_table(0, GetParam()))->addNumericField(OLESTR("GRADE"), 1.0);
  const bytes file = files_.content();
  const std::string one = ovtest::raw_word(ovtest::hole_table(0, GetParam()), 26, GetParam());  // holds 1.0
  const std::string pad = is_double() ? "    " : "";
  const std::string zeros = is_double() ? std::string(4, '\0') : "";
  const std::string nothing(GetParam().size, '\0');
  const std::size_t first = (5 + 4) * 7;
  const std::string expected[] = {"GRAD" + pad, "E   " + pad, "N   " + zeros, nothing, one, nothing, one};
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_EQ(ovtest::raw_word(file, first + i, GetParam()), expected[i]) << "word " << i;
  }
}

TEST_P(AddedFields, WidthsAreRoundedUpToWordsAndZeroTakesOne) {
  const auto table = files_.open(ovtest::hole_table(0, GetParam()));
  const std::pair<const OLECHAR*, int> added[] = {
      {OLESTR("W0"), 0}, {OLESTR("W1"), 1}, {OLESTR("W4"), 4}, {OLESTR("W5"), 5}, {OLESTR("W9"), 9}};
  const int widths[] = {4, 4, 4, 8, 12};
  for (std::size_t i = 0; i < 5; ++i) {
    const std::uint64_t index =
        table->addAlphaField(added[i].first, added[i].second, OLESTR("ABCDEFGHIJKLMNOP"));
    EXPECT_EQ(index, 4 + i);
    EXPECT_EQ(table->getFieldWidth(index), widths[i]);
    EXPECT_EQ(utf8(table->getDefaultString(index)),
              std::string("ABCDEFGHIJKLMNOP").substr(0, static_cast<std::size_t>(widths[i])));
  }
  const auto again = files_.reopen(true);
  for (std::size_t i = 0; i < 5; ++i)
    EXPECT_EQ(again->getFieldWidthByName(added[i].first), std::size_t(widths[i]));
}

TEST_P(AddedFields, TheyAreImplicitAndEveryRowReadsTheirDefault) {
  auto table = files_.open(ovtest::hole_table(3, GetParam()));
  table->goToRow(2);
  table->addNumericField(OLESTR("GRADE"), 2.5);
  table->addAlphaField(OLESTR("ZONE"), 6, OLESTR("east"));
  for (int opened = 0; opened < 2; ++opened) {
    EXPECT_EQ(table->getFieldCount(), 6U);
    EXPECT_EQ(table->getFieldIndex(OLESTR("ZONE")), 5U);
    EXPECT_TRUE(table->isImplicit(4));
    EXPECT_TRUE(table->isImplicitByName(OLESTR("ZONE")));
    EXPECT_EQ(table->getFieldType(4), ovf::field_kind::numeric);
    EXPECT_EQ(table->getFieldType(5), ovf::field_kind::alphanumeric);
    EXPECT_EQ(table->getDefaultDouble(4), 2.5);
    EXPECT_EQ(table->getDefaultFloat(4), 2.5F);
    EXPECT_EQ(utf8(table->getString(5)), "east    ");
    // In a file of another byte order a row reads the default as the file holds it.
    if (GetParam().order == 0) {
      EXPECT_EQ(table->getDouble(4), 2.5);
    }
    EXPECT_EQ(table->storedNumber(4), nullptr);
    table = files_.reopen();
    table->goToRow(2);
  }
}

TEST_P(AddedFields, RowsTheCurrentRowAndTheCursorStay) {
  const auto table = files_.open(ovtest::hole_table(200, GetParam()));
  table->goToRow(168);
  table->addNumericField(OLESTR("GRADE"), 2.5);
  EXPECT_EQ(table->getRowCount(), 200U);
  EXPECT_EQ(table->currentRow(), 168U);
  EXPECT_EQ(utf8(table->getString(0)), "H168    ");
  for (int row = 169; row <= 200; ++row) {
    table->nextRow();
    ASSERT_EQ(utf8(table->getString(0)).substr(0, 4), "H" + std::to_string(row));
  }
  EXPECT_EQ(ovtest::message_of([&] { table->nextRow(); }),
            "index out of bounds: row past the end of the table");
}

TEST_P(AddedFields, ChangesThatWereNotFlushedYetAreKept) {
  auto table = files_.open(ovtest::hole_table(3, GetParam()));
  table->goToRow(2);
  table->setString(0, OLESTR("NEW"));
  table->addRow();
  table->setString(0, OLESTR("LAST"));
  table->addNumericField(OLESTR("GRADE"), 2.5);
  EXPECT_EQ(table->currentRow(), 4U);
  EXPECT_EQ(utf8(table->getString(0)), "LAST    ");
  table.reset();
  table = files_.reopen();
  EXPECT_EQ(table->getRowCount(), 4U);
  table->goToRow(2);
  EXPECT_EQ(utf8(table->getString(0)), "NEW     ");
  table->goToRow(4);
  EXPECT_EQ(utf8(table->getString(0)), "LAST    ");
}

TEST_P(AddedFields, TheirDefaultsCanBeChanged) {
  auto table = files_.open(ovtest::hole_table(1, GetParam()));
  table->addNumericField(OLESTR("GRADE"), 2.5);
  table->addAlphaField(OLESTR("ZONE"), 8, {});
  table->setDefaultDouble(4, -1);
  table->setDefaultString(5, OLESTR("west end"));
  table.reset();
  table = files_.reopen();
  EXPECT_EQ(table->getDefaultDouble(4), -1);
  EXPECT_EQ(utf8(table->getDefaultString(5)), "west end");
}

TEST_P(AddedFields, SpareBytesWhereAnEntryGoesAreOverwritten) {
  bytes before = ovtest::hole_table(1, GetParam());
  for (std::size_t word = 63; word < 70; ++word) {
    ovtest::put_raw(before, word, std::string(8, '\x55'), GetParam());
  }
  files_.open(before)->addNumericField(OLESTR("GRADE"), 2.5);
  EXPECT_EQ(files_.content(), grown({ovtest::added_number("GRADE", 2.5)}, 1));
}

TEST_P(AddedFields, InATableOpenedForReadingTheyStayInMemory) {
  const bytes before = ovtest::hole_table(3, GetParam());
  auto table = files_.open(before, true);
  table->goToRow(2);
  EXPECT_EQ(table->addNumericField(OLESTR("GRADE"), 2.5), 4U);
  EXPECT_EQ(table->addAlphaField(OLESTR("ZONE"), 8, OLESTR("east")), 5U);
  table->renameField(1, OLESTR("LENGTH"));
  EXPECT_EQ(table->getFieldCount(), 6U);
  EXPECT_EQ(table->getDefaultDouble(4), 2.5);
  EXPECT_EQ(table->getFieldIndex(OLESTR("LENGTH")), 1U);
  EXPECT_EQ(utf8(table->getString(0)), "H2      ");
  table.reset();
  EXPECT_EQ(files_.content(), before);
}

INSTANTIATE_TEST_SUITE_P(Formats, AddedFields, ::testing::ValuesIn(ovtest::all_formats),
                         [](const auto& each) { return ovtest::format_name(each.param); });

/// A file without a mark tells its byte order by its count of atoms, and 3 in two of the orders has the
/// bytes of 3 in another one.
TEST(AddedField, ACountThatTellsAnotherByteOrderIsRefused) {
  const std::string words = "the table has no precision mark and cannot have this number of fields";
  for (const auto& [order, is_refused] :
       {std::pair{0, false}, std::pair{256, true}, std::pair{1024, true}, std::pair{1280, false}}) {
    SCOPED_TRACE(order);
    const ovtest::word_format format{4, order};
    ovtest::header_words header;
    header.mark = 1;
    const bytes before =
        ovtest::make_header(header, {ovtest::number_atom("X", 1), ovtest::number_atom("Y", 2)}, format);
    ovtest::engine_files files;
    auto table = files.open(before);
    EXPECT_EQ(ovtest::message_of([&] { table->addNumericField(OLESTR("Z"), 0.5F); }),
              is_refused ? words : "");
    if (is_refused) {
      EXPECT_EQ(files.content(), before);
    }
    table->addAlphaField(OLESTR("TEXT"), 8, {});
    table.reset();
    EXPECT_EQ(files.reopen()->getFieldCount(), is_refused ? 3U : 4U);
  }
}

}  // namespace
