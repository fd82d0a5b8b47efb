// The tests of this program leave the user's registry and session alone.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <string>

namespace {

class own_settings : public testing::Environment {
 public:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "ovfile-settings-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    setenv("OVFILE_REGISTRY", (folder_ / "registry.reg").c_str(), 1);
    setenv("OVFILE_ATOMS", (folder_ / "atoms").c_str(), 1);
  }
  void TearDown() override {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

 private:
  std::filesystem::path folder_;
};

const testing::Environment* const settings = testing::AddGlobalTestEnvironment(new own_settings);

}  // namespace
