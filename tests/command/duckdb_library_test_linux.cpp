// The loader ends a process that touches what its file does not have.
#include <sys/stat.h>

#include "command/command_test.h"
#include "command/duckdb_for_tests.h"
#include "command/loaded_library.h"

namespace {

namespace fs = std::filesystem;

class duckdb_file_linux_test : public ovtest::command_test {
 protected:
  std::string refusal(const std::string& path) const {
    const ovtest::process_result result = run({"setup", "sql", "--try", path});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    return result.error;
  }
};

TEST_F(duckdb_file_linux_test, wherever_a_library_is_cut_off_it_is_told) {
  fs::copy_file(ovtest::fake_duckdb(), folder() / "cut.so");
  const std::uintmax_t size = fs::file_size(folder() / "cut.so");
  std::string reason;
  for (std::uintmax_t left = size - 1; left > 64; left -= left > 600 ? 499 : 7) {
    fs::resize_file(folder() / "cut.so", left);
    EXPECT_EQ(command::load_library((folder() / "cut.so").string(), command::binding::at_once, reason),
              nullptr);
    EXPECT_EQ(reason, "the file is cut off") << left;
  }
  EXPECT_EQ(refusal("cut.so"), "ovfile: cannot load cut.so: the file is cut off\n");
  for (const std::uintmax_t left : std::initializer_list<std::uintmax_t>{63, 16, 4, 1, 0}) {
    fs::resize_file(folder() / "cut.so", left);
    EXPECT_EQ(command::load_library((folder() / "cut.so").string(), command::binding::at_once, reason),
              nullptr);
    EXPECT_EQ(reason, "file too short") << left;
  }
}

TEST_F(duckdb_file_linux_test, headers_that_point_anywhere_are_told) {
  const ovtest::bytes library = ovtest::read_bytes(ovtest::fake_duckdb());
  // Where the segments' and the sections' headers begin, and how many there are.
  for (const std::size_t at : {std::size_t{32}, std::size_t{40}, std::size_t{56}, std::size_t{60}}) {
    ovtest::bytes damaged = library;
    const std::size_t width = at < 48 ? 8 : 2;
    for (std::size_t i = 0; i < width; ++i) damaged[at + i] = static_cast<ovtest::bytes::value_type>(0xFF);
    ovtest::write_bytes(folder() / "damaged.so", damaged);
    EXPECT_EQ(refusal("damaged.so"), "ovfile: cannot load damaged.so: the file is cut off\n") << at;
  }
}

TEST_F(duckdb_file_linux_test, a_library_of_another_kind_of_processor_is_told) {
  ovtest::bytes library = ovtest::read_bytes(ovtest::fake_duckdb());
  library[4] = static_cast<ovtest::bytes::value_type>(1);  // 32 bit
  ovtest::write_bytes(folder() / "other.so", library);
  EXPECT_EQ(refusal("other.so"), "ovfile: cannot load other.so: wrong ELF class: ELFCLASS32\n");
}

TEST_F(duckdb_file_linux_test, a_pipe_does_not_keep_it_waiting) {
  ASSERT_EQ(::mkfifo((folder() / "pipe.so").c_str(), 0600), 0);
  EXPECT_EQ(refusal("pipe.so"), "ovfile: cannot load pipe.so: it is not a regular file\n");
}

TEST_F(duckdb_file_linux_test, a_name_alone_means_the_current_folder) {
  EXPECT_EQ(refusal("libz.so.1"), "ovfile: cannot load libz.so.1: there is no such file\n");
  fs::copy_file(ovtest::fake_duckdb(), folder() / "libz.so.1");
  EXPECT_EQ(run({"setup", "sql", "--try", "libz.so.1"}).error, "");
}

}  // namespace
