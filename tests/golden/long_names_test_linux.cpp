// The reference tables with long field names are made in a session that allows them: this program again,
// with settings of its own. (The user's settings on Windows are not touched for it.)
#include <gtest/gtest.h>

#include <fstream>

#include "support/process.h"
#include "support/reference_files.h"
#include "support/scratch_folder.h"

namespace ovtest {
namespace {

std::string filter_of_needy_recipes() {
  std::string filter;
  for (const std::string& name : reference_names()) {
    if (!reference_json(name).contains("recipe_needs")) continue;
    filter += (filter.empty() ? "" : ":") + std::string("every/recipe.*/") + test_name(name);
  }
  return filter;
}

TEST(long_names, recipes_make_the_same_bytes_where_they_are_allowed) {
  const std::string filter = filter_of_needy_recipes();
  if (filter.empty()) GTEST_SKIP() << "no reference tables with long names";
  const scratch_folder session;
  std::ofstream(session / "registry.reg") << "[HKEY_CURRENT_USER\\Software\\Orvexa\\OvFile]\n"
                                             "\"UseLongFieldNamesMaster\"=dword:00000001\n";
  const auto program = std::filesystem::absolute(testing::internal::GetArgvs().front());
  set_environment("OVFILE_ASKED_IN", session.path());
  const process_result ran =
      run_process({program.string(), "--gtest_filter=" + filter}, std::filesystem::current_path());
  set_environment("OVFILE_ASKED_IN", "");
  EXPECT_EQ(0, ran.status) << ran.output << ran.error;
  EXPECT_EQ(std::string::npos, ran.output.find("SKIPPED")) << ran.output;
  EXPECT_NE(std::string::npos, ran.output.find("[  PASSED  ]")) << ran.output;
}

}  // namespace
}  // namespace ovtest
