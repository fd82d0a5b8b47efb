// The tests of this program leave the user's registry and session alone. A test that starts its program
// again shares its own with it by naming their folder in OVFILE_ASKED_IN.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

namespace {

class own_settings : public testing::Environment {
 public:
  void SetUp() override {
    const char* shared = getenv("OVFILE_ASKED_IN");
    if (shared != nullptr && *shared != '\0') {
      use(shared);
      return;
    }
    std::string pattern = testing::TempDir() + "ovfile-settings-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    use(folder_);
  }
  void TearDown() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

 private:
  static void use(const std::filesystem::path& folder) {
    setenv("OVFILE_REGISTRY", (folder / "registry.reg").c_str(), 1);
    setenv("OVFILE_ATOMS", (folder / "atoms").c_str(), 1);
  }

  std::filesystem::path folder_;
};

const testing::Environment* const settings = testing::AddGlobalTestEnvironment(new own_settings);

}  // namespace
