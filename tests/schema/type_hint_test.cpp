// The kind of table that a schema's field names make out.
#include <sstream>

#include "ovfile/table_kinds.h"
#include "schema/schema_test.h"

namespace ovtest {
namespace {

class type_hint : public schema_test {
 protected:
  void add_all(const std::string& names) {
    std::istringstream words(names);
    for (std::string word; words >> word;) ASSERT_EQ(S_OK, add_number(word.c_str()));
  }
  LONG hint() {
    OvFileType value{};
    EXPECT_EQ(S_OK, schema_->get_TypeHint(&value));
    return value;
  }
};

struct row {
  LONG hint;
  const char* names;
};

const row rows[] = {
    {0x40000002, "XP YP ZP PTN PVALUE"},
    {0x40000080,
     "X Y S1 S2 CODE COLOUR XMIN XMAX YMIN YMAX XSCALE YSCALE XORIG YORIG CHARSIZE "
     "ASPRATIO"},
    {0x40000004, "BHID FROM TO LENGTH X Y Z A0 B0"},
    {0x40000020, "IJK XC YC ZC XINC YINC ZINC XMORIG YMORIG ZMORIG NX NY NZ"},
    {0x40004000, "XINC YINC ZINC XMORIG YMORIG ZMORIG NX NY NZ"},
    {0x40000008, "TRIANGLE PID1 PID2 PID3"},
    {0x40000040, "XP YP ZP PID"},
    {0x42000000, "XCENTRE YCENTRE ZCENTRE SDIP SAZI"},
    {0x43000000, "FILENAM"},
    {0x40000800, "BLOCKID VOLUME TONNES DENSITY SLOT PERCENT DRAW START END"},
    {0x40000100, "DENSITY VOLUME TONNES"},
    {0x44000000, "ROSNUM ROSXPOS ROSYPOS ROSZMIN ROSZMAX ROSAZIM ROSFANG ROSBWID"},
    {0x40000000, "PVALUE VOLUME TONNES LENGTH ZMIN ZMAX GRADIENT XAREA"},
    {0x48000000, "PNUM1 PNUM2"},
    {0x49000000, "COLOUR PEN"},
    {0x4A000000, "FIELD TEST IN OUT"},
    {0x40001000, "BHID FROM TO"},
    {0x40002000, "BHID XCOLLAR YCOLLAR ZCOLLAR"},
    {0x4D000000, "BHID AT BRG DIP"},
    {0x4C000000,
     "PATTERN DESC ROW ROFFSET SPACING BURDEN DIP RNINC RNREPEAT RNFIRST HNFIRST "
     "HNINC HLENGTH SAMPLENG STEMMING"},
    {0x4E000000, "AZI DIP LAG AVE.DIST NO.PAIRS COVAR VGRAM PWRVGRAM"},
    {0x4F000000,
     "VREFNUM VANGLE1 VANGLE2 VANGLE3 VAXIS1 VAXIS2 VAXIS3 NUGGET ST1 ST1PAR1 "
     "ST1PAR2 ST1PAR3 ST1PAR4"},
    {0x40010000, "XP YP ZP AZI DIP ROLL RAD1 RAD2 RAD3"},
    {0x40000400, "XPT YPT ZPT"},
    {0x4B000000, "ATTNAME ATTTYPE VALUE MIN MAX DEFAULT"},
    {0x40020000, "XP YP ZP SDIP DIPDIRN SROLL HSIZE VSIZE IMAGE"},
    {0x40008000, "XP YP ZP SDIP DIPDIRN HSIZE VSIZE"},
    {0x58000000, "SREFNUM VALUE_IN"},
    {0x59000000,
     "SREFNUM SMETHOD SDIST1 SDIST2 SDIST3 SANGLE1 SANGLE2 SANGLE3 SAXIS1 SAXIS2 "
     "SAXIS3 OCTMETH MINOCT MINPEROC MAXPEROC MINNUM1 MAXNUM1 SVOLFAC2 MINNUM2 "
     "MAXNUM2 SVOLFAC3 MINNUM3 MAXNUM3 MAXKEY"},
    {0x5A000000,
     "SREFNUM SDIST1 SDIST2 SDIST3 SANGLE1 SANGLE2 SANGLE3 SAXIS1 SAXIS2 SAXIS3 "
     "MINNUM1 MAXNUM1 SVOLFAC2 MINNUM2 MAXNUM2 SVOLFAC3 MINNUM3 MAXNUM3 MAXKEY "
     "OPTKEY NSECTORS SPLITSEC MAXEMPSC MVSEARCH"},
    {0x5B000000,
     "VLAGDIST VDIP VAZI WVDIP WVAZI DISTANCE DIP AZI WAZI WDIP X1 Y1 Z1 X2 Y2 Z2 "
     "GRADE1"},
    {0x5C000000, "FIELD NRECORDS NSAMPLES NMISVALS MINIMUM MAXIMUM RANGE TOTAL MEAN"},
    {0x5D000000, "LOWER MIDDLE UPPER FREQENCY CUMFREQ. AVIVAL FREQ-% CUMF-% TOTVA"},
    {0x5E000000, "VOLUME LOWAREA UPAREA TOTAREA MINDIP MAXDIP NUMTRI"},
};

class type_hint_row : public type_hint, public testing::WithParamInterface<row> {};

TEST_P(type_hint_row, is_found_by_exactly_its_names) {
  add_all(GetParam().names);
  EXPECT_EQ(GetParam().hint, hint()) << GetParam().names;
}

TEST_P(type_hint_row, is_found_whatever_the_order_and_with_texts) {
  std::istringstream words(GetParam().names);
  std::vector<std::string> names(std::istream_iterator<std::string>(words), {});
  for (auto name = names.rbegin(); name != names.rend(); ++name) ASSERT_EQ(S_OK, add_text(name->c_str(), 8));
  EXPECT_EQ(GetParam().hint, hint()) << GetParam().names;
}

/// The kind itself is not found when one of its names is missing.
TEST_P(type_hint_row, needs_every_one_of_its_names) {
  std::istringstream words(GetParam().names);
  std::string first;
  words >> first;
  std::string rest;
  std::getline(words, rest);
  add_all(rest);
  EXPECT_TRUE(GetParam().hint == ovGenericTable || GetParam().hint != hint()) << rest;
}

INSTANTIATE_TEST_SUITE_P(every, type_hint_row, testing::ValuesIn(rows));

TEST_F(type_hint, is_known_for_34_kinds_in_a_fixed_order) {
  ASSERT_EQ(34U, std::size(ovfile::table_kinds));
  ASSERT_EQ(34U, std::size(rows));
  for (std::size_t i = 0; i < 34; ++i) {
    const ovfile::table_kind& kind = ovfile::table_kinds[i];
    std::string names;
    for (const std::string_view name : kind.fields()) names += std::string(name) + " ";
    if (i == 12) {
      EXPECT_EQ("PVALUE  VOLUME TONNES LENGTH ZMIN ZMAX GRADIENT XAREA ", names) << "a blank of its own";
      EXPECT_EQ(0x05000000, kind.type);
      continue;
    }
    EXPECT_EQ(std::string(rows[i].names) + " ", names);
    EXPECT_EQ(rows[i].hint, ovGenericTable | kind.type);
  }
}

TEST_F(type_hint, of_strings_with_a_further_field_is_strings) {
  add_all("XP YP ZP PTN PVALUE COLOUR");
  EXPECT_EQ(0x40000002, hint());
}

TEST_F(type_hint, of_an_empty_schema_is_a_generic_table) { EXPECT_EQ(0x40000000, hint()); }

TEST_F(type_hint, without_standard_fields_is_a_generic_table) {
  add_all("AU AG CU");
  EXPECT_EQ(0x40000000, hint());
}

TEST_F(type_hint, of_schedule_data_is_never_found) {
  add_all("PVALUE VOLUME TONNES LENGTH ZMIN ZMAX GRADIENT XAREA");
  ASSERT_EQ(S_OK, add_number("PVALUE "));
  EXPECT_EQ(0x40000000, hint());
}

TEST_F(type_hint, takes_the_first_kind_that_fits) {
  add_all("BHID FROM TO LENGTH X Y Z A0 B0 XCOLLAR YCOLLAR ZCOLLAR");
  EXPECT_EQ(0x40000004, hint()) << "desurveyed holes, not samples or collars";
}

TEST_F(type_hint, of_a_block_model_comes_before_the_grid) {
  add_all("XINC YINC ZINC XMORIG YMORIG ZMORIG NX NY NZ IJK XC YC ZC");
  EXPECT_EQ(0x40000020, hint());
}

TEST_F(type_hint, of_a_schedule_comes_before_results) {
  add_all("DENSITY VOLUME TONNES BLOCKID SLOT PERCENT DRAW START END");
  EXPECT_EQ(0x40000800, hint());
}

TEST_F(type_hint, goes_by_case) {
  add_all("xp YP ZP PTN PVALUE");
  EXPECT_EQ(0x40000000, hint());
}

TEST_F(type_hint, does_not_count_trailing_blanks_of_short_names) {
  ASSERT_EQ(S_OK, add_number("COLOUR  "));
  ASSERT_EQ(S_OK, add_number("PEN "));
  EXPECT_EQ(0x40000000 | 0x09000000, hint());
}

TEST_F(type_hint, does_not_take_longer_names_for_shorter_ones) {
  ASSERT_EQ(S_OK, add_number("FILENAM  "));
  EXPECT_EQ(0x40000000, hint()) << "nine characters with the blanks";
  add_all("FILENAMES");
  EXPECT_EQ(0x40000000, hint());
}

TEST_F(type_hint, is_kept_once_it_was_asked_for) {
  EXPECT_EQ(0x40000000, hint());
  ASSERT_EQ(S_OK, schema_->CreateStringsFile());
  EXPECT_EQ(0x40000000, hint());
  ASSERT_EQ(S_OK, schema_->SetSchemaUsingXML(
                      bstr("<OvFields>\n<OvField name=\"FILENAM\" type=\"numeric\"/>").get()));
  EXPECT_EQ(0x43000000, hint()) << "the XML form alone makes it be found anew";
}

TEST_F(type_hint, is_the_same_on_the_other_face) {
  add_all("PNUM1 PNUM2");
  const auto common = schema_.query<IZuCommonDataSchema>();
  OvFileType value{};
  EXPECT_EQ(S_OK, common->get_TypeHint(&value));
  EXPECT_EQ(0x48000000, value);
}

TEST_F(type_hint, needs_a_place_for_the_answer) { EXPECT_EQ(E_POINTER, schema_->get_TypeHint(nullptr)); }

}  // namespace
}  // namespace ovtest
