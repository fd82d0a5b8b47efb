// The standard fields of the common kinds of table.
#include "schema/schema_test.h"

namespace ovtest {
namespace {

class templates : public schema_test {
 protected:
  /// name=default, with an i behind an implicit one, parted by blanks.
  std::string fields() {
    std::string text;
    for (LONG i = 1; i <= count(); ++i) {
      EXPECT_EQ(is_double_ ? 2 : 1, type(i)) << "all are numbers";
      std::ostringstream line;
      line << name(i) << '=' << number_default(i) << (implicit(i) != 0 ? "i" : "");
      text += (i == 1 ? "" : " ") + line.str();
    }
    return text;
  }
  bool is_double_ = false;
};

TEST_F(templates, block_model_counts_its_cells_and_keeps_increments_in_the_records) {
  EXPECT_EQ(S_OK, schema_->CreateModelFile(10, 10, 5, 0, 0, 0, 0, 99, 0, 49, 0, 19));
  EXPECT_EQ("IJK=0 XC=0 YC=0 ZC=0 XINC=10 YINC=10 ZINC=5 XMORIG=0i YMORIG=0i ZMORIG=0i NX=100i NY=50i NZ=20i",
            fields());
  EXPECT_EQ(13, count());
}

TEST_F(templates, block_model_ignores_the_smallest_indexes) {
  EXPECT_EQ(S_OK, schema_->CreateModelFile(1, 2, 3, -4.5, 5.5, 6.25, 7, 9, 8, 9, 9, 9));
  EXPECT_EQ(
      "IJK=0 XC=0 YC=0 ZC=0 XINC=1 YINC=2 ZINC=3 XMORIG=-4.5i YMORIG=5.5i ZMORIG=6.25i NX=10i NY=10i NZ=10i",
      fields());
}

TEST_F(templates, block_model_wraps_the_largest_index) {
  EXPECT_EQ(S_OK, schema_->CreateModelFile(1, 1, 1, 0, 0, 0, 0, 2147483647, 0, -1, 0, -2));
  EXPECT_EQ(-2147483648.0, number_default(11));
  EXPECT_EQ(0.0, number_default(12));
  EXPECT_EQ(-1.0, number_default(13));
}

TEST_F(templates, regular_grid_stores_the_largest_indexes_and_is_all_implicit) {
  EXPECT_EQ(S_OK, schema_->CreateRegularGrid(10, 10, 5, 1, 2, 3, 99, 49, 19, VARIANT_FALSE));
  EXPECT_EQ("XINC=10i YINC=10i ZINC=5i XMORIG=1i YMORIG=2i ZMORIG=3i NX=99i NY=49i NZ=19i", fields());
}

TEST_F(templates, regular_grid_has_an_explicit_cell_number_when_asked) {
  EXPECT_EQ(S_OK, schema_->CreateRegularGrid(10, 10, 5, 0, 0, 0, 99, 49, 19, 1));
  EXPECT_EQ("IJK=0 XINC=10i YINC=10i ZINC=5i XMORIG=0i YMORIG=0i ZMORIG=0i NX=99i NY=49i NZ=19i", fields())
      << "anything but 0 asks for it";
}

TEST_F(templates, points) {
  EXPECT_EQ(S_OK, schema_->CreatePointsFile());
  EXPECT_EQ("XPT=0 YPT=0 ZPT=0", fields());
}

TEST_F(templates, strings) {
  EXPECT_EQ(S_OK, schema_->CreateStringsFile());
  EXPECT_EQ("XP=0 YP=0 ZP=0 PTN=0 PVALUE=0", fields());
}

TEST_F(templates, wireframe_triangles_have_the_triangle_last) {
  EXPECT_EQ(S_OK, schema_->CreateWfTriangleFile());
  EXPECT_EQ("PID1=0 PID2=0 PID3=0 TRIANGLE=0", fields());
}

TEST_F(templates, wireframe_points) {
  EXPECT_EQ(S_OK, schema_->CreateWfPointFile());
  EXPECT_EQ("XP=0 YP=0 ZP=0 PID=0", fields());
}

TEST_F(templates, append_to_what_is_there_in_its_precision) {
  is_double_ = true;
  ASSERT_EQ(S_OK, schema_->put_DoublePrecision(VARIANT_TRUE));
  ASSERT_EQ(S_OK, add_number("AU", 1.5));
  EXPECT_EQ(S_OK, schema_->CreatePointsFile());
  EXPECT_EQ("AU=1.5 XPT=0 YPT=0 ZPT=0", fields());
  EXPECT_EQ(8, size(4));
}

TEST_F(templates, leave_out_what_is_beyond_256_fields) {
  for (int i = 0; i < 254; ++i) ASSERT_EQ(S_OK, add_number("N"));
  EXPECT_EQ(S_OK, schema_->CreatePointsFile());
  EXPECT_EQ(256, count());
  EXPECT_EQ("YPT", name(256));
}

TEST_F(templates, succeed_without_a_field_on_a_read_only_schema) {
  ASSERT_EQ(S_OK, schema_->put_ReadOnly(VARIANT_TRUE));
  EXPECT_EQ(S_OK, schema_->CreateModelFile(1, 1, 1, 0, 0, 0, 0, 1, 0, 1, 0, 1));
  EXPECT_EQ(S_OK, schema_->CreateRegularGrid(1, 1, 1, 0, 0, 0, 1, 1, 1, VARIANT_TRUE));
  EXPECT_EQ(S_OK, schema_->CreatePointsFile());
  EXPECT_EQ(S_OK, schema_->CreateStringsFile());
  EXPECT_EQ(S_OK, schema_->CreateWfTriangleFile());
  EXPECT_EQ(S_OK, schema_->CreateWfPointFile());
  EXPECT_EQ(0, count());
}

TEST_F(templates, are_of_the_kind_that_they_are_for) {
  EXPECT_EQ(S_OK, schema_->CreateWfTriangleFile());
  OvFileType kind{};
  EXPECT_EQ(S_OK, schema_->get_TypeHint(&kind));
  EXPECT_EQ(0x40000008, kind);
}

}  // namespace
}  // namespace ovtest
