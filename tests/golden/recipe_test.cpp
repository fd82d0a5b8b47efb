// Every reference table that the interfaces can make is made anew, byte for byte, through the vtables
// and by names.
#include <gtest/gtest.h>

#include "golden/recipe.h"
#include "support/file_bytes.h"
#include "support/reference_files.h"
#include "support/scratch_folder.h"

namespace ovtest {
namespace {

using nlohmann::json;

using road = HRESULT (*)(const recipe_call&, recipe_bench&);

std::vector<std::string> names_with_recipe() {
  std::vector<std::string> names;
  for (const std::string& name : reference_names()) {
    if (reference_json(name).contains("recipe")) names.push_back(name);
  }
  return names;
}

/// Where two files differ first, in words.
std::string first_difference(const bytes& expected, const bytes& received, std::size_t word_bytes) {
  std::size_t at = 0;
  while (at < expected.size() && at < received.size() && expected[at] == received[at]) ++at;
  std::string text = "expected " + std::to_string(expected.size()) + " bytes, received " +
                     std::to_string(received.size()) + "; the first difference is at byte " +
                     std::to_string(at) + ", page " + std::to_string(at / (512 * word_bytes)) + ", word " +
                     std::to_string(at / word_bytes % 512);
  if (at < expected.size() && at < received.size()) {
    text += ": expected " + std::to_string(expected[at]) + ", received " + std::to_string(received[at]);
  }
  return text;
}

/// What this process allows in double precision. A test of its own runs the recipes that need 24 in a
/// session where it is.
LONG longest_name() {
  LONG characters = 0;
  const auto schema = make_schema();
  schema->put_DoublePrecision(VARIANT_TRUE);
  schema->get_FieldNameMaxLength(&characters);
  return characters;
}

class recipe : public testing::TestWithParam<std::string> {
 protected:
  void run(road call_over) {
    const json table = reference_json(GetParam());
    if (table.contains("recipe_needs") && longest_name() < 24)
      GTEST_SKIP() << "needs " << table["recipe_needs"];
    const auto golden = copy_reference(table["file"], golden_.path());
    if (!golden) GTEST_SKIP() << table["file"] << " is packed, and gzip is not there to unpack it";
    recipe_bench bench;
    bench.folder = made_.path();
    std::filesystem::create_directories((bench.folder / table["file"].get<std::string>()).parent_path());
    for (const json& call : table["recipe"]) {
      clear_error();
      const HRESULT status = call_over(call_from(call, bench), bench);
      if (status == E_NOTIMPL) GTEST_SKIP() << call[1] << " answers E_NOTIMPL";
      ASSERT_GE(status, 0) << table["file"] << ": " << call.dump() << ": " << std::hex << status << " "
                           << take_error_text();
    }
    compare(table, *golden);
  }

  void compare(const json& table, const std::filesystem::path& golden) {
    const bytes expected = read_bytes(golden);
    const bytes received = read_bytes(made_ / table["file"].get<std::string>());
    const std::size_t word_bytes = table["precision"] == "double" ? 8 : 4;
    EXPECT_TRUE(expected == received)
        << table["file"] << ": " << first_difference(expected, received, word_bytes);
  }

  scratch_folder golden_;
  scratch_folder made_;
};

TEST_P(recipe, makes_the_same_bytes_through_vtables) { run(call_by_vtable); }

TEST_P(recipe, makes_the_same_bytes_by_names) { run(call_late_bound); }

INSTANTIATE_TEST_SUITE_P(every, recipe, testing::ValuesIn(names_with_recipe()),
                         [](const auto& table) { return test_name(table.param); });
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(recipe);

}  // namespace
}  // namespace ovtest
