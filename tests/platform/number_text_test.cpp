// What a text says as a number, value by value.
#include "conversion_cases.h"

namespace {

using ovtest::conversion;
using ovtest::expect_all;

TEST(number_text, text_to_real_is_correctly_rounded) {
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

TEST(number_text, long_texts_are_read_to_the_end) {
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

TEST(number_text, exponents_of_any_length) {
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

TEST(number_text, what_counts_as_a_number) {
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

TEST(number_text, bits_are_taken_as_they_stand) {
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

TEST(number_text, text_to_whole_rounds_the_exact_number_halves_to_even) {
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

}  // namespace
