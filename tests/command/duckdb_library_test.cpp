#include "command/duckdb/duckdb_library.h"

#include "command/command_test.h"
#include "command/duckdb/duckdb_file.h"
#include "command/duckdb_for_tests.h"
#include "command/failure.h"
#include "command/kept_variables.h"
#include "command/loaded_library.h"

namespace {

namespace fs = std::filesystem;

/// In this process, whose current folder is not the test's: names are whole paths.
class duckdb_library_test : public ovtest::command_test {
 protected:
  duckdb_library_test() {
    ovtest::set_environment("OVFILE_DUCKDB", "");
    ovtest::set_environment("FAKE_DUCKDB_VERSION", "");
    for (const char* name : {"HOME", "XDG_DATA_HOME", "LOCALAPPDATA"}) {
      ovtest::set_environment(name, folder() / "home");
    }
  }

  static void name_library(const fs::path& path) { ovtest::set_environment("OVFILE_DUCKDB", path); }

  /// Where the library is found, or why it is not.
  static std::string found() {
    try {
      return command::find_duckdb();
    } catch (const command::failure& error) {
      return error.what();
    }
  }

  /// What the program says of a file as DuckDB's library.
  std::string tried(const std::string& path) const {
    const ovtest::process_result result = run({"setup", "sql", "--try", path});
    EXPECT_EQ(result.status, result.error.empty() ? 0 : 1);
    return result.output + result.error;
  }

  static std::string file_name() { return command::duckdb_file_name; }

  ovtest::kept_variables kept_{
      {"OVFILE_DUCKDB", "FAKE_DUCKDB_VERSION", "HOME", "XDG_DATA_HOME", "LOCALAPPDATA"}};
};

constexpr const char* not_there =
    "this needs DuckDB's library, which is not there: `ovfile setup sql` puts it in place, or OVFILE_DUCKDB "
    "names one";

TEST_F(duckdb_library_test, without_one_it_is_told_how_to_get_one) { EXPECT_EQ(found(), not_there); }

TEST_F(duckdb_library_test, a_user_without_a_folder_is_told_the_same) {
  for (const char* name : {"HOME", "XDG_DATA_HOME", "LOCALAPPDATA"}) ovtest::set_environment(name, "");
  EXPECT_EQ(found(), not_there);
  EXPECT_THROW(command::user_data_folder(), command::failure);
}

TEST_F(duckdb_library_test, it_is_found_in_the_users_folder) {
  const fs::path users = command::user_data_folder();
  fs::create_directories(users);
  fs::copy_file(ovtest::fake_duckdb(), users / file_name());
  EXPECT_TRUE(fs::equivalent(found(), users / file_name()));
}

TEST_F(duckdb_library_test, the_named_one_counts_and_no_other) {
  const fs::path users = command::user_data_folder();
  fs::create_directories(users);
  fs::copy_file(ovtest::fake_duckdb(), users / file_name());
  name_library(ovtest::fake_duckdb());
  EXPECT_TRUE(fs::equivalent(found(), ovtest::fake_duckdb()));
  const fs::path missing = folder() / "missing.so";
  name_library(missing);
  EXPECT_EQ(found(), "OVFILE_DUCKDB stands for " + missing.string() +
                         ", which is not there; `ovfile setup sql` puts DuckDB's library in place");
}

TEST_F(duckdb_library_test, a_folder_is_named_for_the_library_in_it) {
  name_library(folder().path());
  EXPECT_EQ(found(), "OVFILE_DUCKDB stands for " + (folder() / file_name()).string() +
                         ", which is not there; `ovfile setup sql` puts DuckDB's library in place");
  fs::copy_file(ovtest::fake_duckdb(), folder() / file_name());
  EXPECT_TRUE(fs::equivalent(found(), folder() / file_name()));
}

TEST_F(duckdb_library_test, the_program_knows_its_folder) {
  EXPECT_TRUE(fs::equivalent(command::program_folder(), fs::path(OVFILE_COMMAND_PATH).parent_path()));
}

TEST_F(duckdb_library_test, every_1_from_1_4_on_can_be_used) {
  const std::string fake = ovtest::fake_duckdb().string();
  for (const char* version : {"v1.4.0", "v1.5.6", "v1.10.0", "1.4.1", "v1.6.0-dev12"}) {
    ovtest::set_environment("FAKE_DUCKDB_VERSION", version);
    const std::string number = version[0] == 'v' ? version + 1 : version;
    EXPECT_EQ(tried(fake), number + "\n");
  }
  for (const char* version :
       {"v1.1.3", "v1.3.2", "v0.10.0", "v2.0.0", "v12.3.0", "v1", "v1,5", "1.x", "abc"}) {
    ovtest::set_environment("FAKE_DUCKDB_VERSION", version);
    const std::string number = version[0] == 'v' ? version + 1 : version;
    EXPECT_EQ(tried(fake), "ovfile: " + fake + " is DuckDB " + number +
                               "; this program can use 1.4 and later ones that begin with 1\n");
  }
}

TEST_F(duckdb_library_test, a_library_that_lacks_functions_is_refused) {
  const std::string lacking = ovtest::lacking_duckdb().string();
  EXPECT_EQ(tried(lacking), "ovfile: " + lacking +
                                " is no library of DuckDB that this program can use: it lacks "
                                "duckdb_replacement_scan_set_error\n");
  const std::string own = OVFILE_LIBRARY_PATH;
  EXPECT_EQ(tried(own), "ovfile: " + own +
                            " is no library of DuckDB that this program can use: it lacks "
                            "duckdb_library_version\n");
}

TEST_F(duckdb_library_test, what_is_no_library_is_refused) {
  write("text.so", "This is no library.\n");
  write("empty.so", "");
  EXPECT_EQ(tried("text.so").find("ovfile: cannot load text.so: "), 0u) << tried("text.so");
  EXPECT_EQ(tried("empty.so").find("ovfile: cannot load empty.so: "), 0u) << tried("empty.so");
  EXPECT_EQ(tried("none.so"), "ovfile: cannot load none.so: there is no such file\n");
  EXPECT_EQ(tried("."), "ovfile: cannot load .: it is not a regular file\n");
}

/// Cuts a library off at many places; nothing but a refusal comes of it.
void expect_refused_when_cut(const std::string& library, const ovtest::scratch_folder& folder,
                             const std::function<std::string(const std::string&)>& tried) {
  const std::uintmax_t size = fs::file_size(library);
  fs::copy_file(library, folder / "cut.so");
  for (const std::uintmax_t left : {size / 2, size / 8, std::uintmax_t{5000}, std::uintmax_t{100},
                                    std::uintmax_t{64}, std::uintmax_t{10}}) {
    fs::resize_file(folder / "cut.so", left);
    const std::string words = tried("cut.so");
    EXPECT_EQ(words.find("ovfile: cannot load cut.so: "), 0u) << left << ": " << words;
  }
}

TEST_F(duckdb_library_test, a_library_that_was_cut_off_is_refused) {
  expect_refused_when_cut(ovtest::fake_duckdb().string(), folder(),
                          [this](const std::string& path) { return tried(path); });
}

TEST_F(duckdb_library_test, the_real_one_is_loaded_and_refused_when_cut_off) {
  const auto real = ovtest::duckdb_for_tests();
  if (!real) GTEST_SKIP() << "OVFILE_DUCKDB names no library";
  EXPECT_EQ(tried(*real).find("1."), 0u) << tried(*real);
  expect_refused_when_cut(*real, folder(), [this](const std::string& path) { return tried(path); });
}

}  // namespace
