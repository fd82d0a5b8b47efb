// Setting up from packages that the tests make, by a registry in a folder.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "command/command_test.h"
#include "command/duckdb_for_tests.h"
#include "command/kept_variables.h"

namespace {

namespace fs = std::filesystem;
using names = std::vector<std::string>;

constexpr const char* package = "@duckdb/node-bindings-linux-x64";
constexpr const char* version = "1.5.6-r.7";
constexpr const char* there = "ovfile: DuckDB 1.5.6 is in lib/libduckdb.so; OVFILE_DUCKDB has to name it\n";

class setup_linux_test : public ovtest::command_test {
 protected:
  setup_linux_test() {
    for (const char* name : {"OVFILE_DUCKDB", "FAKE_DUCKDB_VERSION", "XDG_DATA_HOME", "npm_config_registry",
                             "NPM_CONFIG_REGISTRY"}) {
      ovtest::set_environment(name, "");
    }
    ovtest::set_environment("HOME", folder() / "home");
    ovtest::set_environment("TMPDIR", temporary_.path());
    fs::create_directories(folder() / "made/package");
    fs::create_directories(folder() / "registry/@duckdb");
    // The tests run the program where they list what is left behind.
    fs::create_directory(folder() / "run");
  }
  ~setup_linux_test() override {
    ovtest::set_environment("TMPDIR", temporary_before_);
    EXPECT_TRUE(fs::is_empty(temporary_.path())) << "temporary files are left";
  }

  /// What a shell script in the test's folder writes; nothing where it fails.
  std::string shell(const std::string& script) const {
    const ovtest::process_result result = ovtest::run_process({"/bin/sh", "-c", script}, folder().path());
    EXPECT_EQ(result.status, 0) << result.error;
    return result.output;
  }

  /// Makes registry/p.tgz with this file as its library.
  void make_package(const fs::path& library) const {
    fs::copy_file(library, folder() / "made/package/libduckdb.so", fs::copy_options::overwrite_existing);
    shell("tar -C made -czf registry/p.tgz package");
  }

  std::string digest() const {
    return "sha512-" + shell(
                           "sha512sum registry/p.tgz | cut -c1-128 | tr a-f A-F | basenc -d --base16 | "
                           "base64 -w0");
  }

  std::string address(const std::string& leaf = "") const {
    return "file://" + (folder() / "registry").string() + leaf;
  }

  /// The registry's document, with one version.
  void publish(const std::string& integrity, const std::string& tarball, const char* number = version) const {
    write(std::string("registry/") + package, "{\"name\": \"x\", \"versions\": {\"" + std::string(number) +
                                                  "\": {\"dist\": {\"integrity\": \"" + integrity +
                                                  "\", \"tarball\": \"" + tarball + "\"}}}}");
  }
  void publish(const fs::path& library) const {
    make_package(library);
    publish(digest(), address("/p.tgz"));
  }

  names setup_arguments(const names& more = {}) const {
    names arguments = {"setup", "sql", "--folder", "lib", "--version", version, "--registry", address()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  ovtest::process_result run_there(names arguments) const {
    const char* const set = std::getenv("OVFILE_COMMAND");
    arguments.insert(arguments.begin(), set != nullptr ? set : OVFILE_COMMAND_PATH);
    return ovtest::run_process(arguments, folder() / "run");
  }

  void expect_done(const names& arguments, const std::string& words) const {
    const ovtest::process_result result = run_there(arguments);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.error, words);
  }

  /// Nothing is left behind, and what was there stays.
  void expect_refused(const names& arguments, const std::string& beginning) const {
    const std::string before = listing();
    const ovtest::process_result result = run_there(arguments);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.error.substr(0, beginning.size() + 8), "ovfile: " + beginning) << result.error;
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    EXPECT_EQ(listing(), before);
  }

  /// Everything below the program's folder; files with size and time.
  std::string listing() const {
    return shell("find run home -type d -printf '%p\\n' -o -printf '%p %s %T@\\n' 2>/dev/null | sort");
  }

  bool is_fake_in_place(const std::string& name = "run/lib/libduckdb.so") const {
    return ovtest::read_bytes(folder() / name) == ovtest::read_bytes(ovtest::fake_duckdb());
  }

  ovtest::kept_variables kept_{{"OVFILE_DUCKDB", "FAKE_DUCKDB_VERSION", "HOME", "XDG_DATA_HOME", "PATH",
                                "npm_config_registry", "NPM_CONFIG_REGISTRY"}};
  std::filesystem::path temporary_before_ = fs::temp_directory_path();
  ovtest::scratch_folder temporary_;
};

TEST_F(setup_linux_test, the_library_of_the_package_is_put_in_place) {
  publish(ovtest::fake_duckdb());
  expect_done(setup_arguments(), there);
  EXPECT_TRUE(is_fake_in_place());
  EXPECT_EQ(shell("find run | sort"), "run\nrun/lib\nrun/lib/libduckdb.so\n");
}

TEST_F(setup_linux_test, it_is_put_in_place_once) {
  publish(ovtest::fake_duckdb());
  expect_done(setup_arguments(), there);
  const std::string before = listing();
  fs::remove(folder() / "registry/p.tgz");
  expect_done(setup_arguments(),
              "ovfile: DuckDB 1.5.6 is already in lib/libduckdb.so; OVFILE_DUCKDB has to name it\n");
  EXPECT_EQ(listing(), before);
  expect_refused(setup_arguments({"--force"}), "cannot get file://");
  publish(ovtest::fake_duckdb());
  expect_done(setup_arguments({"--force"}), there);
  EXPECT_NE(listing(), before);
}

TEST_F(setup_linux_test, another_version_or_a_damaged_library_is_replaced) {
  publish(ovtest::fake_duckdb());
  expect_done(setup_arguments(), there);
  fs::resize_file(folder() / "run/lib/libduckdb.so", 5000);
  expect_done(setup_arguments(), there);
  EXPECT_TRUE(is_fake_in_place());
  publish(digest(), address("/p.tgz"), "1.4.1-r.2");
  ovtest::set_environment("FAKE_DUCKDB_VERSION", "v1.4.1");
  const std::string before = listing();
  // What is there says 1.4.1 too.
  expect_done({"setup", "sql", "--folder", "lib", "--version", "1.4.1-r.2", "--registry", address()},
              "ovfile: DuckDB 1.4.1 is already in lib/libduckdb.so; OVFILE_DUCKDB has to name it\n");
  EXPECT_EQ(listing(), before);
}

TEST_F(setup_linux_test, one_that_ends_its_process_is_not_taken_for_there) {
  publish(ovtest::fake_duckdb());
  expect_done(setup_arguments(), there);
  const ovtest::kept_variables fault({"FAKE_DUCKDB_FAULT"});
  ovtest::set_environment("FAKE_DUCKDB_FAULT", "crash");
  expect_refused(setup_arguments(),
                 "the library of " + address("/p.tgz is of no use here: a trial of it ended with "));
}

TEST_F(setup_linux_test, the_users_folder_is_made_for_the_user_alone) {
  publish(ovtest::fake_duckdb());
  const fs::path library = folder() / "home/.local/share/ovfile/libduckdb.so";
  expect_done({"setup", "sql", "--version", version, "--registry", address()},
              "ovfile: DuckDB 1.5.6 is in " + library.string() + "\n");
  EXPECT_TRUE(is_fake_in_place("home/.local/share/ovfile/libduckdb.so"));
  EXPECT_EQ(shell("stat -c %a home home/.local/share/ovfile"), "700\n700\n");
  ovtest::set_environment("XDG_DATA_HOME", folder() / "data");
  expect_done({"setup", "sql", "--version", version, "--registry", address()},
              "ovfile: DuckDB 1.5.6 is in " + (folder() / "data/ovfile/libduckdb.so").string() + "\n");
  ovtest::set_environment("XDG_DATA_HOME", "relative");
  expect_done({"setup", "sql", "--version", version, "--registry", address()},
              "ovfile: DuckDB 1.5.6 is already in " + library.string() + "\n");
}

TEST_F(setup_linux_test, the_registry_of_npms_settings_is_asked) {
  publish(ovtest::fake_duckdb());
  ovtest::set_environment("npm_config_registry", address("/"));
  expect_done({"setup", "sql", "--folder", "lib", "--version", version}, there);
  EXPECT_TRUE(is_fake_in_place());
}

TEST_F(setup_linux_test, a_copy_of_npms_registry_gives_the_files_too) {
  make_package(ovtest::fake_duckdb());
  publish(digest(), "https://registry.npmjs.org/p.tgz");
  expect_done(setup_arguments(), there);
  EXPECT_TRUE(is_fake_in_place());
}

TEST_F(setup_linux_test, one_of_several_digests_is_the_right_one) {
  make_package(ovtest::fake_duckdb());
  publish("sha1-2jmj7l5rSw0yVb/vlWAYkK/YBwk= " + digest(), address("/p.tgz"));
  expect_done(setup_arguments(), there);
}

TEST_F(setup_linux_test, a_file_is_taken_with_its_digest) {
  make_package(ovtest::fake_duckdb());
  fs::rename(folder() / "registry/p.tgz", folder() / "run/p.tgz");
  expect_refused({"setup", "sql", "--folder", "lib", "--from", "p.tgz"},
                 std::string("p.tgz is not ") + package + " 1.5.6-r.1: its digest is sha512-");
  fs::copy_file(folder() / "run/p.tgz", folder() / "registry/p.tgz");
  expect_done({"setup", "sql", "--folder", "lib", "--from", "p.tgz", "--integrity", digest()}, there);
  EXPECT_TRUE(is_fake_in_place());
}

TEST_F(setup_linux_test, a_package_that_is_not_what_was_published_is_refused) {
  publish(ovtest::fake_duckdb());
  expect_done(setup_arguments(), there);
  make_package(ovtest::lacking_duckdb());
  expect_refused(setup_arguments({"--force"}), address("/p.tgz") + " is not " + package +
                                                   " 1.5.6-r.7: its digest is " + digest() + ", not ");
  EXPECT_TRUE(is_fake_in_place());
}

TEST_F(setup_linux_test, a_registry_cannot_hand_out_another_file_as_the_known_version) {
  make_package(ovtest::fake_duckdb());
  publish(digest(), address("/p.tgz"), "1.5.6-r.1");
  expect_refused({"setup", "sql", "--folder", "lib", "--registry", address()},
                 address("/p.tgz") + " is not " + package + " 1.5.6-r.1: its digest is " + digest() +
                     ", not sha512-IXcrZJE6kEqM0Z4wwdVnGBHX/frOS33VPNAwDXQ/"
                     "Q+Fs84b058Qe94chrCCIcNJlG8Y3UHIUU4eBeCQxW5mN1Q==\n");
}

TEST_F(setup_linux_test, a_package_that_cannot_be_unpacked_is_refused) {
  publish(ovtest::fake_duckdb());
  expect_done(setup_arguments(), there);
  fs::resize_file(folder() / "registry/p.tgz", fs::file_size(folder() / "registry/p.tgz") / 2);
  publish(digest(), address("/p.tgz"));
  expect_refused(setup_arguments({"--force"}), "cannot unpack " + address("/p.tgz: "));
  write("registry/p.tgz", "no package\n");
  publish(digest(), address("/p.tgz"));
  expect_refused(setup_arguments({"--force"}), "cannot unpack " + address("/p.tgz: "));
  EXPECT_TRUE(is_fake_in_place());
}

TEST_F(setup_linux_test, a_package_without_the_library_is_refused) {
  write("made/package/README.md", "Nothing else.\n");
  shell("tar -C made -czf registry/p.tgz package");
  publish(digest(), address("/p.tgz"));
  expect_refused(setup_arguments(), "cannot unpack " + address("/p.tgz: "));
  shell("ln -s /etc/passwd made/package/libduckdb.so; tar -C made -czf registry/p.tgz package");
  publish(digest(), address("/p.tgz"));
  expect_refused(setup_arguments(), "cannot unpack " + address("/p.tgz: package/libduckdb.so is no file\n"));
}

TEST_F(setup_linux_test, a_library_of_no_use_does_not_replace_one_that_works) {
  publish(ovtest::fake_duckdb());
  expect_done(setup_arguments(), there);
  const std::string useless = "the library of " + address("/p.tgz is of no use here: ");
  publish(ovtest::lacking_duckdb());
  expect_refused(setup_arguments({"--force"}), useless);
  write("text", "no library\n");
  publish(folder() / "text");
  expect_refused(setup_arguments({"--force"}), useless);
  publish(ovtest::fake_duckdb());
  ovtest::set_environment("FAKE_DUCKDB_VERSION", "v1.1.3");
  expect_refused(setup_arguments(), useless);
  EXPECT_TRUE(is_fake_in_place());
}

TEST_F(setup_linux_test, a_registry_without_the_package_is_told) {
  const std::string document = address("/@duckdb%2fnode-bindings-linux-x64");
  expect_refused(setup_arguments(), "cannot get " + document + ": ");
  for (const char* text : {"", "<html>", "{}", "[1]", "{\"versions\": 5}", "{\"versions\": {"}) {
    write(std::string("registry/") + package, text);
    expect_refused(setup_arguments(), document + " is no document of a package registry\n");
  }
  const std::string none = address() + " has no version 1.5.6-r.7 of " + package + "\n";
  for (const char* text : {"{\"versions\": {}}", "{\"versions\": {\"1.5.6-r.7\": 1}}",
                           "{\"versions\": {\"1.5.6-r.7\": {\"dist\": {\"tarball\": null}}}}"}) {
    write(std::string("registry/") + package, text);
    expect_refused(setup_arguments(), none);
  }
  publish("", address("/p.tgz"));
  expect_refused(setup_arguments(), address("/p.tgz has no digest in the registry; --integrity tells it\n"));
  publish("sha512-x", address("/p.tgz"));
  expect_refused(setup_arguments(), "cannot get " + address("/p.tgz: "));
}

TEST_F(setup_linux_test, a_place_that_cannot_be_written_is_told) {
  publish(ovtest::fake_duckdb());
  write("run/file", "x");
  names arguments = setup_arguments();
  arguments[3] = "file/lib";
  expect_refused(arguments, "cannot make the folder file/lib: Not a directory\n");
  arguments[3] = "file";
  expect_refused(arguments, "cannot make the folder file: Not a directory\n");
  fs::create_directories(folder() / "run/lib/libduckdb.so");
  expect_refused(setup_arguments(), "cannot write lib/libduckdb.so: it is not a regular file\n");
  if (::geteuid() == 0) return;  // nothing is forbidden to the superuser
  fs::create_directory(folder() / "run/closed");
  fs::permissions(folder() / "run/closed", fs::perms::owner_read | fs::perms::owner_exec);
  arguments[3] = "closed";
  expect_refused(arguments, "cannot create closed/libduckdb.so: Permission denied\n");
}

TEST_F(setup_linux_test, a_disk_that_is_full_leaves_nothing) {
  make_package(ovtest::fake_duckdb());
  fs::copy_file(folder() / "registry/p.tgz", folder() / "run/p.tgz");
  const char* const set = std::getenv("OVFILE_COMMAND");
  ovtest::set_environment("OVFILE", set != nullptr ? set : OVFILE_COMMAND_PATH);
  ovtest::set_environment("DIGEST", digest());
  const std::string before = listing();
  const ovtest::process_result result =
      ovtest::run_process({"/bin/sh", "-c",
                           "ulimit -f 4; exec \"$OVFILE\" setup sql --folder lib --from p.tgz --integrity "
                           "\"$DIGEST\" 2>&1 | cat"},
                          folder() / "run");
  EXPECT_EQ(result.output.find("ovfile: cannot unpack p.tgz: "), 0u) << result.output;
  EXPECT_EQ(listing(), before);
}

TEST_F(setup_linux_test, a_system_without_curl_or_tar_is_told) {
  publish(ovtest::fake_duckdb());
  fs::copy_file(folder() / "registry/p.tgz", folder() / "run/p.tgz");
  const std::string digest_of_it = digest();
  fs::create_directory(folder() / "nothing");
  const std::string before = listing();
  ovtest::set_environment("PATH", folder() / "nothing");
  const ovtest::process_result downloaded = run_there(setup_arguments());
  EXPECT_EQ(downloaded.error, "ovfile: cannot start curl: No such file or directory\n");
  EXPECT_EQ(downloaded.status, 1);
  const ovtest::process_result given =
      run_there({"setup", "sql", "--folder", "lib", "--from", "p.tgz", "--integrity", digest_of_it});
  EXPECT_EQ(given.error, "ovfile: cannot start tar: No such file or directory\n");
  EXPECT_EQ(given.status, 1);
  ovtest::set_environment("PATH", "/usr/bin:/bin");
  EXPECT_EQ(listing(), before);
}

TEST_F(setup_linux_test, a_signal_during_the_download_leaves_nothing) {
  const std::string document = (folder() / "registry/@duckdb/node-bindings-linux-x64").string();
  ASSERT_EQ(::mkfifo(document.c_str(), 0600), 0);
  const std::string before = listing();
  const char* const set = std::getenv("OVFILE_COMMAND");
  const std::string program = set != nullptr ? set : OVFILE_COMMAND_PATH;
  const pid_t child = ::fork();
  if (child == 0) {
    const std::string registry = address();
    if (::chdir((folder() / "run").c_str()) != 0) ::_exit(127);
    ::execl(program.c_str(), "ovfile", "setup", "sql", "--folder", "lib", "--registry", registry.c_str(),
            static_cast<char*>(nullptr));
    ::_exit(127);
  }
  // Returns when the download has begun to read.
  const int writer = ::open(document.c_str(), O_WRONLY);
  ::kill(child, SIGTERM);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ::close(writer);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
  EXPECT_EQ(listing(), before);
}

TEST_F(setup_linux_test, the_real_library_is_set_up) {
  const auto real = ovtest::duckdb_for_tests();
  if (!real) GTEST_SKIP() << "OVFILE_DUCKDB names no library";
  fs::create_symlink(*real, folder() / "made/package/libduckdb.so");
  shell("tar -C made -chf - package | gzip -1 >registry/p.tgz");
  const ovtest::process_result result =
      run_there({"setup", "sql", "--folder", "lib", "--from", "../registry/p.tgz", "--integrity", digest()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error.find("ovfile: DuckDB 1."), 0u) << result.error;
  shell("cmp made/package/libduckdb.so run/lib/libduckdb.so");
  if (fs::file_size(*real) != 70'546'800) return;
  // Damage where a trial does not come by: the package is asked for, and this one is not it.
  shell("dd if=/dev/zero of=run/lib/libduckdb.so bs=64K seek=416 count=1 conv=notrunc 2>&1");
  const ovtest::process_result again =
      run_there({"setup", "sql", "--folder", "lib", "--version", "1.5.6-r.1", "--from", "../registry/p.tgz"});
  EXPECT_NE(again.error.find(" is not " + std::string(package)), std::string::npos) << again.error;
}

}  // namespace
