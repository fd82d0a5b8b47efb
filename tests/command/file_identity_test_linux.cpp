#include "file_identity.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "support/file_bytes.h"
#include "support/scratch_folder.h"

namespace {

TEST(file_identity_linux_test, a_change_whose_time_was_set_back_is_noticed) {
  const ovtest::scratch_folder folder;
  const std::filesystem::path file = folder / "a";
  ovtest::write_text(file, "what was looked at");
  const auto then = std::filesystem::last_write_time(file);
  const std::string before = command::file_identity(file.string());
  // Times of files are as coarse as the kernel's clock.
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  ovtest::write_text(file, "what is loaded now");
  std::filesystem::last_write_time(file, then);
  EXPECT_NE(command::file_identity(file.string()), before);
}

}  // namespace
