// The change of type between numbers, truth values, currencies and their texts, value by value.
#include "conversion_cases.h"

namespace {

using ovtest::conversion;
using ovtest::expect_all;

TEST(conversion, real_to_text_has_15_digits) {
  const conversion cases[] = {
      {"R8", "0.1/3FB999999999999A", "BSTR", "0.1"},
      {"R8", "-0/8000000000000000", "BSTR", "0"},
      {"R8", "1e15/430C6BF526340000", "BSTR", "1E+15"},
      {"R8", "1e14/42D6BCC41E900000", "BSTR", "10{*14}"},
      {"R8", "999999999999999.5/430C6BF52633FFFC", "BSTR", "1E+15"},
      {"R8", "0.0001/3F1A36E2EB1C432D", "BSTR", "0.0001"},
      {"R8", "0.00001/3EE4F8B588E368F1", "BSTR", "1E-05"},
      {"R8", "1/3/3FD5555555555555", "BSTR", "0.3{*15}"},
      {"R8", "5e-324/0000000000000001", "BSTR", "4.94065645841247E-324"},
      {"R8", "-1e30/C6293E5939A08CEA", "BSTR", "-1E+30"},
      {"R8", "inf/7FF0000000000000", "BSTR", "INF"},
      {"R8", "-inf/FFF0000000000000", "BSTR", "-INF"},
      {"R8", "nan/7FF8000000000000", "BSTR", "NAN"},
  };
  expect_all(cases);
}

TEST(conversion, exact_ties_in_text_go_away_from_zero) {
  const conversion cases[] = {
      // 16 digits that end in an exact 5, before it an even digit.
      {"R8", "100000000000.0625/42374876E8001000", "BSTR", "100000000000.063"},
      {"R8", "100000000000000.5/42D6BCC41E900020", "BSTR", "100000000000001"},
      {"R8", "-100000000000000.5/C2D6BCC41E900020", "BSTR", "-100000000000001"},
      {"R8", "100000000000002.5/42D6BCC41E9000A0", "BSTR", "100000000000003"},
      {"R8", "100000000000001.5/42D6BCC41E900060", "BSTR", "100000000000002"},
      {"R4", "1000000.5/49742408", "BSTR", "1000001"},
      {"R4", "1000002.5/49742428", "BSTR", "1000003"},
      {"R4", "100000.25/47C35020", "BSTR", "100000.3"},
      {"R4", "8388609/4B000001", "BSTR", "8388609"},
  };
  expect_all(cases);
}

TEST(conversion, float_to_text_has_7_digits) {
  const conversion cases[] = {
      {"R4", "0.1/3DCCCCCD", "BSTR", "0.1"},
      {"R4", "16777216/4B800000", "BSTR", "1.677722E+07"},
      {"R4", "1e7/4B189680", "BSTR", "1E+07"},
      {"R4", "8.5e9/4FFD51DA", "BSTR", "8.5E+09"},
      {"R4", "1e-45/00000001", "BSTR", "1.401298E-45"},
      {"R4", "3.4028235e38/7F7FFFFF", "BSTR", "3.402823E+38"},
      {"R4", "-0/80000000", "BSTR", "0"},
      {"R4", "nan/7FC00000", "BSTR", "NAN"},
  };
  expect_all(cases);
}

TEST(conversion, real_to_whole_rounds_halves_to_even) {
  const conversion cases[] = {
      {"R8", "0.5/3FE0000000000000", "I4", "0"},
      {"R8", "1.5/3FF8000000000000", "I4", "2"},
      {"R8", "-2.5/C004000000000000", "I2", "-2"},
      {"R8", "255.5/406FF00000000000", "UI1", "overflow"},
      {"R8", "-0.5/BFE0000000000000", "UI1", "0"},
      {"R8", "2^31/41E0000000000000", "I4", "overflow"},
      {"R8", "2^31/41E0000000000000", "UI4", "2147483648"},
      {"R8", "-2^63/C3E0000000000000", "I8", "-9223372036854775808"},
      {"R8", "2^63/43E0000000000000", "I8", "overflow"},
      {"R8", "2^63/43E0000000000000", "UI8", "9223372036854775808"},
      {"R8", "2^64/43F0000000000000", "UI8", "overflow"},
      {"R8", "inf/7FF0000000000000", "I4", "overflow"},
      {"R8", "nan/7FF8000000000000", "I4", "overflow"},
      {"R4", "nan/7FC00000", "UI1", "overflow"},
  };
  expect_all(cases);
}

TEST(conversion, wholes_of_one_width_share_their_bits) {
  const conversion cases[] = {
      {"I1", "-1", "UI1", "255"},
      {"UI1", "255", "I1", "-1"},
      {"UI2", "65535", "I2", "-1"},
      {"I2", "-1", "UI2", "65535"},
      {"UI4", "4294967295", "I4", "-1"},
      {"I4", "-1", "UI4", "4294967295"},
      {"I8", "-1", "UI8", "18446744073709551615"},
      {"UI8", "18446744073709551615", "I8", "-1"},
      {"I2", "-1", "UI4", "overflow"},
      {"I4", "-1", "UI8", "overflow"},
      {"I8", "70000", "UI2", "overflow"},
      {"UI8", "4294967296", "I4", "overflow"},
      {"BOOL", "-1", "UI1", "255"},
      {"BOOL", "-1", "UI8", "18446744073709551615"},
      {"INT", "-1", "UINT", "4294967295"},
      {"INT", "-5", "BSTR", "-5"},
  };
  expect_all(cases);
}

TEST(conversion, narrowing_to_float) {
  const conversion cases[] = {
      {"R8", "/47EFFFFFEFFFFFFF", "R4", "/7F7FFFFF"},
      {"R8", "/47EFFFFFF0000000", "R4", "overflow"},
      {"R8", "/C7EFFFFFF0000000", "R4", "overflow"},
      {"R8", "inf/7FF0000000000000", "R4", "overflow"},
      {"R8", "nan/7FF8000000000000", "R4", "/7FC00000"},
      {"R8", "-1e-300/81A56E1FC2F8F359", "R4", "/80000000"},
      {"I8", "-9007199254740993", "R4", "/DA000000"},
      {"UI8", "18446744073709551615", "R4", "/5F800000"},
  };
  expect_all(cases);
}

TEST(conversion, currencies) {
  const conversion cases[] = {
      {"R8", "1/32/3FA0000000000000", "CY", "cy:312"},
      {"R8", "3/32/3FB8000000000000", "CY", "cy:938"},
      {"R8", "/3F23A92A30553261", "CY", "cy:1"},  // just below 0.00015
      {"R8", "/3F0A36E2EB1C432D", "CY", "cy:1"},  // just above 0.00005
      {"R8", "/430A36E2EB1C432C", "CY", "cy:9223372036854775000"},
      {"R8", "/430A36E2EB1C432D", "CY", "overflow"},
      {"R8", "nan/7FF8000000000000", "CY", "overflow"},
      {"UI8", "922337203685477", "CY", "cy:9223372036854770000"},
      {"UI8", "18446744073709551615", "CY", "overflow"},
      {"I8", "-922337203685478", "CY", "overflow"},
      {"CY", "cy:-1", "BSTR", "-0.0001"},
      {"CY", "cy:-9223372036854775808", "BSTR", "-922337203685477.5808"},
      {"CY", "cy:120000", "BSTR", "12"},
      {"CY", "cy:25000", "I4", "2"},
      {"CY", "cy:-15000", "I4", "-2"},
      {"CY", "cy:-5000", "I8", "0"},
  };
  expect_all(cases);
}

TEST(conversion, truth) {
  const conversion cases[] = {
      {"BSTR", "tRuE", "BOOL", "-1"},
      {"BSTR", "FALSE", "BOOL", "0"},
      {"BSTR", "#TRUE#", "BOOL", "-1"},
      {"BSTR", "#true#", "BOOL", "mismatch"},
      {"BSTR", " true", "BOOL", "mismatch"},
      {"BSTR", "0.0", "BOOL", "0"},
      {"BSTR", "-0.1", "BOOL", "-1"},
      {"BSTR", "1e400", "BOOL", "overflow"},
      {"BSTR", "1e-400", "BOOL", "0"},
      {"BSTR", "5e-324", "BOOL", "-1"},
      {"BSTR", "4.9e-324", "BOOL", "0"},
      {"BSTR", "truex", "BOOL", "mismatch"},
      {"BSTR", "", "BOOL", "mismatch"},
      {"BOOL", "2", "BOOL", "2"},
      {"BOOL", "2", "BSTR", "2"},
      {"CY", "cy:1", "BOOL", "-1"},
      {"R8", "nan/7FF8000000000000", "BOOL", "-1"},
  };
  expect_all(cases);
}

TEST(conversion, nothing_and_errors) {
  const conversion cases[] = {
      {"EMPTY", "", "BSTR", ""},
      {"EMPTY", "", "R8", "/0000000000000000"},
      {"EMPTY", "", "BOOL", "0"},
      {"EMPTY", "", "NULL", ""},
      {"NULL", "", "BSTR", "mismatch"},
      {"NULL", "", "R8", "mismatch"},
      {"NULL", "", "NULL", ""},
      {"ERROR", "80020004", "I4", "mismatch"},
      {"ERROR", "80020004", "ERROR", "80020004"},
      {"I4", "5", "ERROR", "mismatch"},
  };
  expect_all(cases);
}

}  // namespace
