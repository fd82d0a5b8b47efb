#include "golden/recipe.h"

#include <stdexcept>

#include "golden/expected_json.h"
#include "support/late_bound.h"

namespace ovtest {
namespace {

using nlohmann::json;

constexpr recipe_method methods[] = {
    {"schema", "put_Description", "t"},
    {"schema", "put_DoublePrecision", "b"},
    {"schema", "AddNumericColumn", "tdl"},
    {"schema", "AddStringColumn", "tltl"},
    {"schema", "CreateModelFile", "ddddddllllll"},
    {"schema", "CreatePointsFile", ""},
    {"schema", "CreateRegularGrid", "ddddddlllb"},
    {"schema", "CreateStringsFile", ""},
    {"schema", "CreateWfPointFile", ""},
    {"schema", "CreateWfTriangleFile", ""},
    {"table", "Create", "no"},
    {"table", "Close", ""},
    {"table", "AddRow", ""},
    {"table", "FlushChanges", ""},
    {"table", "GetFirstRow", ""},
    {"table", "GetNextRow", ""},
    {"table", "GetRowAt", "l"},
    {"table", "ReduceRowCountTo", "l"},
    {"table", "SetColumn", "lv"},
    {"table", "SetColumnDouble", "ld"},
    {"table", "SetColumnFloat", "lf"},
    {"table", "SetColumnString", "lt"},
    {"table", "SetColumnName", "lt"},
    {"table", "SetColumnDefaultFloat", "lf"},
    {"table", "SetColumnDefaultString", "lt"},
    {"table", "AddImplicitNumericColumnFloat", "tf"},
};

variant variant_from(const json& value) {
  const std::string& type = value.begin().key();
  const json& content = value.begin().value();
  if (type == "R4") return variant(static_cast<float>(number_from(content)));
  if (type == "R8") return variant(number_from(content));
  if (type == "I4") return variant(content.get<LONG>());
  if (type == "BSTR") return text_variant(content.get<std::string>());
  throw std::runtime_error("unknown variant " + type);
}

variant argument_from(char kind, const json& value, const recipe_bench& bench) {
  switch (kind) {
    case 't':
      return text_variant(value.get<std::string>());
    case 'l':
    case 'b':
      return variant(value.get<LONG>());
    case 'f':
      return variant(static_cast<float>(number_from(value)));
    case 'd':
      return variant(number_from(value));
    case 'n':
      return text_variant(to_utf8(wide_path(bench.folder / value.get<std::string>())));
    case 'o':
      return object_variant(bench.schema.get());
    default:
      return variant_from(value);
  }
}

/// Property puts carry their kind in the name that the contract gives them.
constexpr std::string_view put_prefix = "put_";

}  // namespace

const recipe_method& find_method(std::string_view object, std::string_view name) {
  for (const recipe_method& method : methods) {
    if (method.object == object && method.name == name) return method;
  }
  throw std::runtime_error("no recipe may call " + std::string(name));
}

recipe_call call_from(const json& call, const recipe_bench& bench) {
  recipe_call made;
  made.method = &find_method(call[0].get<std::string>(), call[1].get<std::string>());
  const std::string_view kinds = made.method->arguments;
  if (call.size() != kinds.size() + 2) throw std::runtime_error("wrong arguments: " + call.dump());
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    made.arguments.push_back(argument_from(kinds[i], call[i + 2], bench));
  }
  return made;
}

HRESULT call_late_bound(const recipe_call& call, recipe_bench& bench) {
  std::string_view name = call.method->name;
  const bool puts = name.substr(0, put_prefix.size()) == put_prefix;
  if (puts) name.remove_prefix(put_prefix.size());
  IDispatch& object = call.method->object == "schema" ? static_cast<IDispatch&>(*bench.schema)
                                                      : static_cast<IDispatch&>(*bench.table);
  const late_answer answer =
      call_by_name(object, name, puts ? DISPATCH_PROPERTYPUT : DISPATCH_METHOD, call.arguments);
  return answer.status == DISP_E_EXCEPTION ? answer.code : answer.status;
}

}  // namespace ovtest
