// Dates and their texts, value by value.
#include "conversion_cases.h"

namespace {

using ovtest::conversion;
using ovtest::expect_all;

TEST(date_text, dates_as_text) {
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

TEST(date_text, texts_as_dates) {
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

}  // namespace
