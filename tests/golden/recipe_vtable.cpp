// The calls of recipes as a compiled host makes them.
#include <map>
#include <stdexcept>
#include <string_view>

#include "golden/recipe.h"

namespace ovtest {
namespace {

/// The arguments of a call as their parameters want them.
class given {
 public:
  explicit given(const std::vector<variant>& arguments) : arguments_(arguments) {}
  BSTR text(std::size_t i) const { return arguments_.at(i).get().bstrVal; }
  LONG whole(std::size_t i) const { return arguments_.at(i).get().lVal; }
  VARIANT_BOOL truth(std::size_t i) const { return static_cast<VARIANT_BOOL>(whole(i)); }
  float single(std::size_t i) const { return arguments_.at(i).get().fltVal; }
  double number(std::size_t i) const { return arguments_.at(i).get().dblVal; }
  VARIANT value(std::size_t i) const { return arguments_.at(i).get(); }
  IDispatch* object(std::size_t i) const { return arguments_.at(i).get().pdispVal; }

 private:
  const std::vector<variant>& arguments_;
};

using schema_call = HRESULT (*)(IOvSchema&, const given&);
using table_call = HRESULT (*)(IOvTable&, const given&);

const std::map<std::string_view, schema_call>& schema_calls() {
  static const std::map<std::string_view, schema_call> calls{
      {"put_Description", [](IOvSchema& s, const given& a) { return s.put_Description(a.text(0)); }},
      {"put_DoublePrecision", [](IOvSchema& s, const given& a) { return s.put_DoublePrecision(a.truth(0)); }},
      {"AddNumericColumn",
       [](IOvSchema& s, const given& a) { return s.AddNumericColumn(a.text(0), a.number(1), a.whole(2)); }},
      {"AddStringColumn",
       [](IOvSchema& s, const given& a) {
         return s.AddStringColumn(a.text(0), a.whole(1), a.text(2), a.whole(3));
       }},
      {"CreateModelFile",
       [](IOvSchema& s, const given& a) {
         return s.CreateModelFile(a.number(0), a.number(1), a.number(2), a.number(3), a.number(4),
                                  a.number(5), a.whole(6), a.whole(7), a.whole(8), a.whole(9), a.whole(10),
                                  a.whole(11));
       }},
      {"CreateRegularGrid",
       [](IOvSchema& s, const given& a) {
         return s.CreateRegularGrid(a.number(0), a.number(1), a.number(2), a.number(3), a.number(4),
                                    a.number(5), a.whole(6), a.whole(7), a.whole(8), a.truth(9));
       }},
      {"CreatePointsFile", [](IOvSchema& s, const given&) { return s.CreatePointsFile(); }},
      {"CreateStringsFile", [](IOvSchema& s, const given&) { return s.CreateStringsFile(); }},
      {"CreateWfPointFile", [](IOvSchema& s, const given&) { return s.CreateWfPointFile(); }},
      {"CreateWfTriangleFile", [](IOvSchema& s, const given&) { return s.CreateWfTriangleFile(); }},
  };
  return calls;
}

const std::map<std::string_view, table_call>& table_calls() {
  static const std::map<std::string_view, table_call> calls{
      {"Create", [](IOvTable& t, const given& a) { return t.Create(a.text(0), a.object(1)); }},
      {"Close", [](IOvTable& t, const given&) { return t.Close(); }},
      {"AddRow", [](IOvTable& t, const given&) { return t.AddRow(); }},
      {"FlushChanges", [](IOvTable& t, const given&) { return t.FlushChanges(); }},
      {"GetFirstRow", [](IOvTable& t, const given&) { return t.GetFirstRow(); }},
      {"GetNextRow", [](IOvTable& t, const given&) { return t.GetNextRow(); }},
      {"GetRowAt", [](IOvTable& t, const given& a) { return t.GetRowAt(a.whole(0)); }},
      {"ReduceRowCountTo", [](IOvTable& t, const given& a) { return t.ReduceRowCountTo(a.whole(0)); }},
      {"SetColumn", [](IOvTable& t, const given& a) { return t.SetColumn(a.whole(0), a.value(1)); }},
      {"SetColumnDouble",
       [](IOvTable& t, const given& a) { return t.SetColumnDouble(a.whole(0), a.number(1)); }},
      {"SetColumnFloat",
       [](IOvTable& t, const given& a) { return t.SetColumnFloat(a.whole(0), a.single(1)); }},
      {"SetColumnString",
       [](IOvTable& t, const given& a) { return t.SetColumnString(a.whole(0), a.text(1)); }},
      {"SetColumnName", [](IOvTable& t, const given& a) { return t.SetColumnName(a.whole(0), a.text(1)); }},
      {"SetColumnDefaultFloat",
       [](IOvTable& t, const given& a) { return t.SetColumnDefaultFloat(a.whole(0), a.single(1)); }},
      {"SetColumnDefaultString",
       [](IOvTable& t, const given& a) { return t.SetColumnDefaultString(a.whole(0), a.text(1)); }},
      {"AddImplicitNumericColumnFloat",
       [](IOvTable& t, const given& a) { return t.AddImplicitNumericColumnFloat(a.text(0), a.single(1)); }},
  };
  return calls;
}

}  // namespace

HRESULT call_by_vtable(const recipe_call& call, recipe_bench& bench) {
  const given arguments(call.arguments);
  if (call.method->object == "schema") {
    return schema_calls().at(call.method->name)(*bench.schema, arguments);
  }
  return table_calls().at(call.method->name)(*bench.table, arguments);
}

}  // namespace ovtest
