// Whether a file is noticed to be another one, or to have changed.
#include "file_identity.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "support/file_bytes.h"
#include "support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;

class file_identity_test : public testing::Test {
 protected:
  std::string name() const { return (folder_ / "a").string(); }
  void write(const char* leaf, const ovtest::bytes& content) const {
    ovtest::write_bytes(folder_ / leaf, content);
  }
  ovtest::scratch_folder folder_;
};

TEST_F(file_identity_test, a_file_that_nobody_touches_stays_the_same) {
  write("a", ovtest::bytes(10));
  const std::string before = command::file_identity(name());
  EXPECT_NE(before, "");
  EXPECT_EQ(command::file_identity(name()), before);
}

TEST_F(file_identity_test, another_size_is_noticed) {
  write("a", ovtest::bytes(10));
  const std::string before = command::file_identity(name());
  fs::resize_file(folder_ / "a", 9);
  EXPECT_NE(command::file_identity(name()), before);
}

TEST_F(file_identity_test, another_file_of_the_same_size_and_time_is_noticed) {
  write("a", ovtest::bytes(10));
  write("b", ovtest::bytes(10));
  fs::last_write_time(folder_ / "b", fs::last_write_time(folder_ / "a"));
  const std::string before = command::file_identity(name());
  fs::rename(folder_ / "b", folder_ / "a");
  EXPECT_NE(command::file_identity(name()), before);
}

TEST_F(file_identity_test, another_time_is_noticed) {
  write("a", ovtest::bytes(10));
  const std::string before = command::file_identity(name());
  fs::last_write_time(folder_ / "a", fs::last_write_time(folder_ / "a") + std::chrono::seconds(2));
  EXPECT_NE(command::file_identity(name()), before);
}

TEST_F(file_identity_test, a_file_that_is_not_there_has_none) {
  EXPECT_EQ(command::file_identity(name()), "");
}

}  // namespace
