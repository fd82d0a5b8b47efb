// A table made anew by a list of calls, through the vtables or by names.
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "support/component.h"

namespace ovtest {

/// What an argument is, by one letter: t text, l long, b truth, f float, d double, v variant, n name of
/// a file in the folder, o the schema object.
struct recipe_method {
  std::string_view object;
  std::string_view name;
  std::string_view arguments;
};

/// Throws for a method that no recipe may hold.
const recipe_method& find_method(std::string_view object, std::string_view name);

/// The two objects of a recipe and the folder of its file.
struct recipe_bench {
  owned<IOvTable> table = make_table();
  owned<IOvSchema> schema = make_schema();
  std::filesystem::path folder;
};

/// One call, its arguments made for their parameters.
struct recipe_call {
  const recipe_method* method = nullptr;
  std::vector<variant> arguments;
};

recipe_call call_from(const nlohmann::json& call, const recipe_bench& bench);

/// What the method itself answered.
HRESULT call_by_vtable(const recipe_call& call, recipe_bench& bench);
HRESULT call_late_bound(const recipe_call& call, recipe_bench& bench);

}  // namespace ovtest
