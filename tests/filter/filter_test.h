// Evaluators for tests, asked by both roads.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "ovfile/filter.h"
#include "ovfile/smart.h"

namespace ovtest {

/// A new object of the parts that this program is linked with.
ovfile::pointer<IOvFilter> make_filter();
ovfile::pointer<IOvFilterValues> values_of(const ovfile::pointer<IOvFilter>& filter);

/// SetExpression with UTF-8.
HRESULT set_expression(IOvFilter& filter, std::string_view expression);
/// Evaluate with UTF-8; a failed status is a failed test.
SHORT evaluate(IOvFilter& filter, std::string_view values);
/// The names of the variables in their order.
std::vector<std::string> variables(IOvFilter& filter);
/// The values of a list one by one: what begins like a number as such, "-" and nothing as absent.
void set_values_one_by_one(IOvFilterValues& filter, std::string_view list);

/// The description of the error that SetExpression reports; "" when it does not fail.
std::string complaint_about(std::string_view expression);

/// Whether the values pass the expression, which must be a good one; both roads must agree.
bool passes(std::string_view expression, std::string_view values = {});

struct filter_case {
  const char* expression;
  const char* values;
  bool passes;
};

void check(const std::vector<filter_case>& cases);

}  // namespace ovtest
