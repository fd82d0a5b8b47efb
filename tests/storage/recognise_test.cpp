#include "storage/recognise.h"

#include <gtest/gtest.h>

#include "support/failing_files.h"
#include "support/scratch_folder.h"
#include "support/table_bytes.h"

namespace {

using ovtest::message_of;

class Recognise : public ::testing::Test {
 protected:
  /// Recognises a file with these bytes.
  ovf::recognition of(const ovtest::bytes& content) {
    ovtest::write_bytes(path_, content);
    return ovf::recognise(ovtest::wide_path(path_));
  }
  static ovtest::bytes single_page(double mark, double atoms, int order) {
    const ovtest::word_format format{4, order};
    ovtest::bytes page(2048, ' ');
    ovtest::put_number(page, 24, mark, format);
    ovtest::put_number(page, 25, atoms, format);
    return page;
  }

  ovtest::scratch_folder folder_;
  std::filesystem::path path_ = folder_ / "table";
};

TEST_F(Recognise, SinglePrecisionInEachOfTheFourByteOrders) {
  for (const int order : {0, 256, 1024, 1280}) {
    const ovf::recognition found = of(single_page(987654, 3, order));
    EXPECT_FALSE(found.is_double);
    EXPECT_EQ(static_cast<int>(found.order), order);
  }
}

TEST_F(Recognise, DoublePrecisionByItsOwnMark) {
  ovtest::bytes page(4096, ' ');
  ovtest::put_number(page, 24, 456789, ovtest::double_words);
  EXPECT_TRUE(of(page).is_double);
}

TEST_F(Recognise, AFileWithoutAMarkByItsFieldCount) {
  for (const int order : {0, 256, 1024, 1280}) {
    const ovf::recognition found = of(single_page(-1, 12, order));
    EXPECT_FALSE(found.is_double);
    EXPECT_EQ(static_cast<int>(found.order), order) << order;
  }
  EXPECT_EQ(of(single_page(-1, 0, 0)).order, ovf::byte_order::native);
  EXPECT_EQ(of(single_page(-1, 64, 0)).order, ovf::byte_order::native);
}

TEST_F(Recognise, AFieldCountThatNoTableHas) {
  EXPECT_EQ(message_of([&] { of(single_page(-1, 65, 0)); }), "Unrecognised file type.");
  EXPECT_EQ(message_of([&] { of(single_page(-1, 13.5, 0)); }), "Not a valid orvexa table");
  EXPECT_EQ(message_of([&] { of(single_page(-1, -1, 0)); }), "Not a valid orvexa table");
}

TEST_F(Recognise, FilesTooShortForAnyMark) {
  EXPECT_EQ(message_of([&] { of({}); }), "Not a valid orvexa table");
  EXPECT_EQ(message_of([&] { of(ovtest::bytes(103, 0)); }), "Not a valid orvexa table");
}

TEST_F(Recognise, AProbeThatCannotOpenNamesTheFile) {
  const std::filesystem::path missing = folder_ / "missing";
  EXPECT_EQ(message_of([&] { ovf::recognise(ovtest::wide_path(missing)); }),
            "cannot open file " + ovf::utf8_from_wide(ovtest::wide_path(missing)));
}

}  // namespace
