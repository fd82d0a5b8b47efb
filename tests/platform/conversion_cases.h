// Conversions as tables of cases. Reals are written with their bits (see written_value.h).
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "system_exceptions.h"
#include "written_value.h"

namespace ovtest {

struct conversion {
  const char* from;
  const char* value;
  const char* to;
  const char* result;  ///< or the name of a status
};

inline std::string status_name(HRESULT status) {
  if (status == DISP_E_TYPEMISMATCH) return "mismatch";
  if (status == DISP_E_OVERFLOW) return "overflow";
  if (status == E_INVALIDARG) return "invalid";
  return "status " + std::to_string(status);
}

inline std::string answer(const conversion& each) {
  const ovf::variant source = ovtest::written_value(each.from, each.value);
  ovf::variant result;
  const HRESULT status = ovf::change_type(*result.out(), source, ovtest::type_named(each.to));
  return FAILED(status) ? status_name(status) : ovtest::shown(result);
}

inline std::string expected(const conversion& each) {
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

}  // namespace ovtest
