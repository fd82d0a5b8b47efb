#include "filter/filter_test.h"

#include <cstdlib>

#include "filter/filter_object.h"

namespace ovtest {

namespace {

template <class Interface>
ovfile::pointer<Interface> owned(void* made) {
  ovfile::pointer<Interface> owner;
  *owner.out() = static_cast<Interface*>(made);
  return owner;
}

void set_one(IOvFilterValues& filter, LONG variable, const std::string& value) {
  if (value.empty() || value == "-") {
    EXPECT_EQ(S_OK, filter.SetAbsent(variable));
  } else if (char* end = nullptr; std::strtod(value.c_str(), &end), *end == '\0') {
    EXPECT_EQ(S_OK, filter.SetNumber(variable, std::strtod(value.c_str(), nullptr)));
  } else {
    EXPECT_EQ(S_OK, filter.SetText(variable, ovfile::text(value).get()));
  }
}

}  // namespace

ovfile::pointer<IOvFilter> make_filter() {
  void* made = nullptr;
  EXPECT_EQ(S_OK, ovf::filter::filter_object::create(IID_IOvFilter, &made));
  return owned<IOvFilter>(made);
}

ovfile::pointer<IOvFilterValues> values_of(const ovfile::pointer<IOvFilter>& filter) {
  void* made = nullptr;
  EXPECT_EQ(S_OK, filter->QueryInterface(IID_IOvFilterValues, &made));
  return owned<IOvFilterValues>(made);
}

HRESULT set_expression(IOvFilter& filter, std::string_view expression) {
  return filter.SetExpression(ovfile::text(expression).get());
}

SHORT evaluate(IOvFilter& filter, std::string_view values) {
  SHORT result = -7;
  EXPECT_EQ(S_OK, filter.Evaluate(ovfile::text(values).get(), &result));
  return result;
}

std::vector<std::string> variables(IOvFilter& filter) {
  LONG count = -1;
  EXPECT_EQ(S_OK, filter.GetVariableCount(&count));
  std::vector<std::string> names;
  for (LONG i = 0; i < count; ++i) {
    ovfile::text name;
    EXPECT_EQ(S_OK, filter.GetVariableName(i, name.out()));
    names.push_back(name.utf8());
  }
  return names;
}

void set_values_one_by_one(IOvFilterValues& filter, std::string_view list) {
  LONG variable = 0;
  for (std::size_t start = 0; start <= list.size(); ++variable) {
    const std::size_t end = std::min(list.find(',', start), list.size());
    set_one(filter, variable, std::string(list.substr(start, end - start)));
    start = end + 1;
  }
}

std::string complaint_about(std::string_view expression) {
  const auto filter = make_filter();
  SetErrorInfo(0, nullptr);
  const HRESULT status = set_expression(*filter.get(), expression);
  if (status == S_OK) return {};
  EXPECT_EQ(E_FAIL, status);
  const ovfile::error error = ovfile::error::take(status);
  EXPECT_EQ("OvFilter", error.source());
  EXPECT_TRUE(variables(*filter.get()).empty());
  EXPECT_EQ(0, evaluate(*filter.get(), "1,2,3"));
  return error.what();
}

bool passes(std::string_view expression, std::string_view values) {
  const auto filter = make_filter();
  EXPECT_EQ("", complaint_about(expression)) << expression;
  EXPECT_EQ(S_OK, set_expression(*filter.get(), expression));
  const SHORT result = evaluate(*filter.get(), values);
  EXPECT_TRUE(result == 0 || result == 1) << result;

  const auto one_by_one = values_of(filter);
  if (!variables(*filter.get()).empty()) set_values_one_by_one(*one_by_one.get(), values);
  SHORT tested = -7;
  EXPECT_EQ(S_OK, one_by_one->Test(&tested));
  EXPECT_EQ(result, tested) << "the roads differ: " << expression << " with " << values;
  return result != 0;
}

void check(const std::vector<filter_case>& cases) {
  for (const filter_case& one : cases) {
    EXPECT_EQ(one.passes, passes(one.expression, one.values)) << one.expression << " with " << one.values;
  }
}

}  // namespace ovtest
