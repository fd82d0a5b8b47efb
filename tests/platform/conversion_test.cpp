// The change of type, value by value. Reals are written with their bits (see written_value.h).
#include <gtest/gtest.h>

#include "system_exceptions.h"
#include "written_value.h"

namespace {

struct conversion {
  const char* from;
  const char* value;
  const char* to;
  const char* result;  ///< or the name of a status
};

std::string status_name(HRESULT status) {
  if (status == DISP_E_TYPEMISMATCH) return "mismatch";
  if (status == DISP_E_OVERFLOW) return "overflow";
  if (status == E_INVALIDARG) return "invalid";
  return "status " + std::to_string(status);
}

std::string answer(const conversion& each) {
  const ovf::variant source = ovtest::written_value(each.from, each.value);
  ovf::variant result;
  const HRESULT status = ovf::change_type(*result.out(), source, ovtest::type_named(each.to));
  return FAILED(status) ? status_name(status) : ovtest::shown(result);
}

std::string expected(const conversion& each) {
  const std::string_view text = each.result;
  const bool is_status = text == "mismatch" || text == "overflow" || text == "invalid";
  return is_status ? std::string(text) : ovtest::normal_form(each.to, text);
}

template <std::size_t Count>
void expect_all(const conversion (&cases)[Count]) {
  for (const conversion& each : cases) {
    if (ovtest::system_answers_otherwise(each.from, each.value, each.to)) continue;
    EXPECT_EQ(answer(each), expected(each)) << each.from << ' ' << each.value << " to " << each.to;
  }
}

TEST(conversion, text_to_real_is_correctly_rounded) {
  const conversion cases[] = {
      {"BSTR", "0.1", "R8", "/3FB999999999999A"},
      {"BSTR", "9007199254740993", "R8", "/4340000000000000"},
      {"BSTR", "9007199254740993.00000000000000000000000000001", "R8", "/4340000000000001"},
      {"BSTR", "1e23", "R8", "/44B52D02C7E14AF6"},
      {"BSTR", "2.2250738585072011e-308", "R8", "/000FFFFFFFFFFFFF"},
      {"BSTR", "5e-324", "R8", "/0000000000000001"},
      {"BSTR", "2.4703282292062327e-324", "R8", "/0000000000000000"},
      {"BSTR", "2.4703282292062328e-324", "R8", "/0000000000000001"},
      {"BSTR", "1.7976931348623157e308", "R8", "/7FEFFFFFFFFFFFFF"},
      {"BSTR", "1.7976931348623159e308", "R8", "overflow"},
      {"BSTR", "-1e400", "R8", "overflow"},
      {"BSTR", "1e-400", "R8", "/0000000000000000"},
      {"BSTR", "-1e-400", "R8", "/8000000000000000"},
      // Straight to a float: by way of a double this one would be rounded up twice.
      {"BSTR", "1.00000017881393432617187499", "R4", "/3F800001"},
      {"BSTR", "1.00000017881393432617187501", "R4", "/3F800002"},
      {"BSTR", "16777217", "R4", "/4B800000"},
      {"BSTR", "3.4028235677973367e38", "R4", "overflow"},
      {"BSTR", "3.4028235677973366e38", "R4", "/7F7FFFFF"},
      {"BSTR", "1e-45", "R4", "/00000001"},
      {"BSTR", "1e-46", "R4", "/00000000"},
  };
  expect_all(cases);
}

TEST(conversion, long_texts_are_read_to_the_end) {
  const conversion cases[] = {
      {"BSTR", "1{*400}", "R8", "overflow"},
      {"BSTR", "0.0{*400}1", "R8", "/0000000000000000"},
      {"BSTR", "0.0{*300}1e301", "R8", "/3FF0000000000000"},
      {"BSTR", "10{*300}e-300", "R8", "/3FF0000000000000"},
      {"BSTR", "0{*5000}7", "R8", "/401C000000000000"},
      // Half an ulp above 1, then a 1 in the 2,000th place: only reading it all rounds up.
      {"BSTR", "1.000000000000000111022302462515654042363166809082031250{*1940}1", "R8", "/3FF0000000000001"},
      {"BSTR", "1.000000000000000111022302462515654042363166809082031250{*1940}", "R8", "/3FF0000000000000"},
  };
  expect_all(cases);
}

TEST(conversion, exponents_of_any_length) {
  const conversion cases[] = {
      {"BSTR", "1e99999", "R8", "overflow"},
      {"BSTR", "1e2147483648", "R8", "overflow"},
      {"BSTR", "1e4294967297", "R8", "overflow"},
      {"BSTR", "1e99999999999999999999999999", "R8", "overflow"},
      {"BSTR", "1e-99999999999999999999999999", "R8", "/0000000000000000"},
      {"BSTR", "1e-99999999999999999999999999", "I4", "0"},
      {"BSTR", "0e99999999999999999999999999", "R8", "/0000000000000000"},
      {"BSTR", "1e0000000000000000000000005", "R8", "/40F86A0000000000"},
      {"BSTR", "-1E+00000000000000000000003", "I4", "-1000"},
      {"BSTR", "1e99999999999999999999999999", "I4", "overflow"},
      {"BSTR", "1e99999999999999999999999999x", "R8", "mismatch"},
  };
  expect_all(cases);
}

TEST(conversion, what_counts_as_a_number) {
  const conversion cases[] = {
      {"BSTR", " \\x09\\x0A\\x0B\\x0C\\x0D12\\xA0\\u3000\\u2003", "R8", "/4028000000000000"},
      {"BSTR", "+-1", "R8", "/BFF0000000000000"},
      {"BSTR", "-+1", "R8", "/BFF0000000000000"},
      {"BSTR", "--1", "R8", "mismatch"},
      {"BSTR", "-1-", "R8", "mismatch"},
      {"BSTR", "+1-", "R8", "/BFF0000000000000"},
      {"BSTR", "(5)", "R8", "/C014000000000000"},
      {"BSTR", "-(5)", "R8", "/C014000000000000"},
      {"BSTR", "(5", "R8", "mismatch"},
      {"BSTR", "5)", "R8", "mismatch"},
      {"BSTR", "$ - 5", "R8", "/C014000000000000"},
      {"BSTR", "$$5", "R8", "mismatch"},
      {"BSTR", "$5e2", "R8", "mismatch"},
      {"BSTR", "1,234.5", "R8", "/40934A0000000000"},
      {"BSTR", ",1", "R8", "mismatch"},
      {"BSTR", "1..5", "R8", "mismatch"},
      {"BSTR", ".", "R8", "mismatch"},
      {"BSTR", "", "R8", "mismatch"},
      {"BSTR", "1 2", "R8", "mismatch"},
      {"BSTR", "1e", "R8", "mismatch"},
      {"BSTR", "1e+", "R8", "mismatch"},
      {"BSTR", "e5", "R8", "mismatch"},
      {"BSTR", "1e5.5", "R8", "mismatch"},
      {"BSTR", "0x10", "R8", "mismatch"},
      {"BSTR", "nan", "R8", "mismatch"},
      {"BSTR", "inf", "R8", "mismatch"},
      {"BSTR", "1\\x002", "R8", "/3FF0000000000000"},
      {"BSTR", "\\x001", "R8", "mismatch"},
      {"BSTR", "\\u0661", "R8", "mismatch"},
      {"BSTR", "\\u22121", "R8", "mismatch"},
      {"BSTR", "\\xB2", "R8", "mismatch"},
  };
  expect_all(cases);
}

TEST(conversion, bits_are_taken_as_they_stand) {
  const conversion cases[] = {
      {"BSTR", "&HFF", "I4", "255"},
      {"BSTR", "&o17", "I4", "15"},
      {"BSTR", "&HFFFFFFFF", "I4", "-1"},
      {"BSTR", "&HFFFFFFFF", "I8", "4294967295"},
      {"BSTR", "&H1FFFFFFFF", "I4", "overflow"},
      {"BSTR", "&HFFFF", "I2", "-1"},
      {"BSTR", "&H80000000", "R8", "/C1E0000000000000"},
      {"BSTR", "&H80000001", "R8", "overflow"},
      {"BSTR", "-&H10", "I4", "16"},
      {"BSTR", "&H", "I4", "mismatch"},
      {"BSTR", "&HG", "I4", "mismatch"},
      {"BSTR", "&O8", "I4", "mismatch"},
      {"BSTR", "&10", "I4", "mismatch"},
      {"BSTR", "$&H10", "I4", "mismatch"},
      {"BSTR", "&H10$", "I4", "mismatch"},
      {"BSTR", "&H10", "CY", "overflow"},
      {"BSTR", "&HFFFFFFFFFFFFFFFF", "UI8", "18446744073709551615"},
      {"BSTR", "&H1FFFFFFFFFFFFFFFF", "UI8", "overflow"},
      {"BSTR", "&H10000000000000001", "R8", "overflow"},
      {"BSTR", "&H10000000000000000x", "R8", "mismatch"},
  };
  expect_all(cases);
}

TEST(conversion, text_to_whole_rounds_the_exact_number_halves_to_even) {
  const conversion cases[] = {
      {"BSTR", "0.5", "I4", "0"},
      {"BSTR", "1.5", "I4", "2"},
      {"BSTR", "2.5", "I4", "2"},
      {"BSTR", "-2.5", "I4", "-2"},
      {"BSTR", "2.5000000000000000001", "I4", "3"},
      {"BSTR", "2.4999999999999999999", "I4", "2"},
      {"BSTR", "0.07", "I4", "0"},
      {"BSTR", "25e-1", "I4", "2"},
      {"BSTR", "2147483647.49999999999999999", "I4", "2147483647"},
      {"BSTR", "2147483647.5", "I4", "overflow"},
      {"BSTR", "-2147483648.5", "I4", "-2147483648"},
      {"BSTR", "9223372036854775807", "I8", "9223372036854775807"},
      {"BSTR", "9223372036854775808", "I8", "overflow"},
      {"BSTR", "-9223372036854775808", "I8", "-9223372036854775808"},
      {"BSTR", "18446744073709551615", "UI8", "18446744073709551615"},
      {"BSTR", "18446744073709551615.5", "UI8", "overflow"},
      {"BSTR", "-0.4", "UI1", "0"},
      {"BSTR", "-0.6", "UI1", "overflow"},
      {"BSTR", "255.5", "UI1", "overflow"},
  };
  expect_all(cases);
}

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

TEST(conversion, dates_as_text) {
  const conversion cases[] = {
      {"DATE", "0/0000000000000000", "BSTR", "12:00:00 AM"},
      {"DATE", "1.5/3FF8000000000000", "BSTR", "12/31/1899 12:00:00 PM"},
      {"DATE", "-1.25/BFF4000000000000", "BSTR", "12/29/1899 6:00:00 AM"},
      {"DATE", "59/404D800000000000", "BSTR", "2/27/1900"},
      {"DATE", "61/404E800000000000", "BSTR", "3/1/1900"},
      {"DATE", "-657434/C124103400000000", "BSTR", "1/1/100"},
      {"DATE", "-657434.5/C124103500000000", "BSTR", "1/1/100 12:00:00 PM"},
      {"DATE", "-657435/C124103600000000", "BSTR", "invalid"},
      {"DATE", "2958466/4146924100000000", "BSTR", "invalid"},
      {"DATE", "2958465.99999999/41469240FFFFFFEB", "BSTR", "invalid"},
      {"DATE", "1.999999/3FFFFFFEF39085F5", "BSTR", "1/1/1900 12:00:00 AM"},
      {"DATE", "-1.999999/BFFFFFFEF39085F5", "BSTR", "12/30/1899 12:00:00 AM"},
      {"DATE", "nan/7FF8000000000000", "BSTR", "invalid"},
      {"R8", "2958466/4146924100000000", "DATE", "overflow"},
      {"R8", "-657434.999/C1241035FF7CED91", "DATE", "/C1241035FF7CED91"},
      {"R8", "nan/7FF8000000000000", "DATE", "overflow"},
      {"I4", "2958466", "DATE", "overflow"},
  };
  expect_all(cases);
}

TEST(conversion, texts_as_dates) {
  const conversion cases[] = {
      {"BSTR", "2001-02-03", "DATE", "36925/40E207A000000000"},
      {"BSTR", " 2001-2-3 ", "DATE", "36925/40E207A000000000"},
      {"BSTR", "2001/2/3", "DATE", "36925/40E207A000000000"},
      {"BSTR", "2/3/2001", "DATE", "36925/40E207A000000000"},
      {"BSTR", "2-3-2001", "DATE", "36925/40E207A000000000"},
      {"BSTR", "02/03/01", "DATE", "36925/40E207A000000000"},
      {"BSTR", "31/12/2001", "DATE", "37256/40E2310000000000"},
      {"BSTR", "2001-13-01", "DATE", "36904/40E2050000000000"},
      {"BSTR", "2000-02-29", "DATE", "36585/40E1DD2000000000"},
      {"BSTR", "2001-02-29", "DATE", "mismatch"},
      {"BSTR", "2/30/2001", "DATE", "mismatch"},
      {"BSTR", "13/13/2001", "DATE", "mismatch"},
      {"BSTR", "0100-01-01", "DATE", "-657434/C124103400000000"},
      {"BSTR", "9999-12-31 23:59:59", "DATE", "/41469240FFFF9EE9"},
      {"BSTR", "10000-01-01", "DATE", "mismatch"},
      {"BSTR", "1/2/49", "DATE", "54425/40EA932000000000"},
      {"BSTR", "1/2/50", "DATE", "18265/40D1D64000000000"},
      {"BSTR", "2001-02-03 04:05:06", "DATE", "/40E207A57258BF25"},
      {"BSTR", "2001-02-03 4:05 PM", "DATE", "/40E207B571C71C71"},
      {"BSTR", "2001-02-03 4 pm", "DATE", "/40E207B555555555"},
      {"BSTR", "04:05 2001-02-03", "DATE", "/40E207A571C71C71"},
      {"BSTR", "12:00", "DATE", "/3FE0000000000000"},
      {"BSTR", "12:05 AM", "DATE", "/3F6C71C71C71C71C"},
      {"BSTR", "2001-02-03 24:00:00", "DATE", "mismatch"},
      {"BSTR", "2001-02-03 23:60", "DATE", "mismatch"},
      {"BSTR", "1899-12-29 06:00:00", "DATE", "-1.25/BFF4000000000000"},
      {"BSTR", "February 3, 2001", "DATE", "36925/40E207A000000000"},
      {"BSTR", "3 FEB 2001", "DATE", "36925/40E207A000000000"},
      {"BSTR", "2001-Feb-3", "DATE", "36925/40E207A000000000"},
      {"BSTR", "June 31 2001", "DATE", "mismatch"},
      {"BSTR", "Janu 5 2001", "DATE", "mismatch"},
      {"BSTR", "2001-02-03x", "DATE", "mismatch"},
      {"BSTR", "2001-02-03-", "DATE", "mismatch"},
      {"BSTR", "-2001-02-03", "DATE", "mismatch"},
      {"BSTR", "2001--02-03", "DATE", "mismatch"},
      {"BSTR", "1.2.2001", "DATE", "mismatch"},
      {"BSTR", "1:2:3:4", "DATE", "mismatch"},
      {"BSTR", "2001-02-03\\x00x", "DATE", "36925/40E207A000000000"},
      {"BSTR", "", "DATE", "mismatch"},
      {"BSTR", "5", "DATE", "mismatch"},
      {"BSTR", "1e5", "DATE", "mismatch"},
      {"BSTR", "99999999999999999999-1-1", "DATE", "mismatch"},
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
