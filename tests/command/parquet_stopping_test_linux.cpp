// Parquet when the world outside ends the work, in little memory, and under names that only some systems
// know.
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "command/first_bytes_linux.h"
#include "command/parquet_fixture.h"
#include "support/sanitized.h"
#include "support/shared_data.h"
#include "support/started_program_linux.h"

namespace {

namespace fs = std::filesystem;
using names = std::vector<std::string>;

/// The programs that are started put their temporary files there.
class temporary_files_in {
 public:
  explicit temporary_files_in(const fs::path& path) : before_(fs::temp_directory_path()) {
    ovtest::set_environment("TMPDIR", path);
  }
  temporary_files_in(const temporary_files_in&) = delete;
  temporary_files_in& operator=(const temporary_files_in&) = delete;
  ~temporary_files_in() { ovtest::set_environment("TMPDIR", before_); }

 private:
  fs::path before_;
};

class parquet_stopping_test : public ovtest::parquet_test {
 protected:
  std::unique_ptr<ovtest::started_program> start(names arguments) const {
    arguments.insert(arguments.begin(), program());
    return std::make_unique<ovtest::started_program>(arguments, folder().path());
  }

  ovtest::process_result limited(const std::string& arguments) const {
    return shell("ulimit -f 200; exec \"$OVFILE\" " + arguments);
  }

  void make_long_table(int rows) const {
    EXPECT_EQ(run({"sql",
                   "select range::double as A, (range * 7919) % 1000003 as B, hash(range) / 1e6 as C, "
                   "hash(range + 7) / 1e6 as D, range % 5 as E, range % 7 as F, 'text ' || range % 100 as G, "
                   "random() as H from range(" +
                       std::to_string(rows) + ")",
                   "--output", "t.ovt"})
                  .error,
              "");
  }
};

TEST_F(parquet_stopping_test, a_disk_that_is_full_leaves_no_parquet) {
  make_long_table(100000);
  write("out.parquet", "old");
  const ovtest::process_result file = limited("export t.ovt out.parquet");
  EXPECT_EQ(file.status, 1);
  EXPECT_EQ(
      file.error,
      "ovfile: cannot write out.parquet: IO Error: Could not write file \"out.parquet\": File too large\n");
  EXPECT_EQ(read("out.parquet"), "old");
  const ovtest::process_result folders = limited("export t.ovt out --partition-by E");
  EXPECT_EQ(folders.status, 1);
  EXPECT_THAT(folders.error,
              testing::StartsWith("ovfile: cannot write out: IO Error: Could not write file \"out/E="));
  EXPECT_THAT(folders.error, testing::EndsWith(": File too large\n"));
  EXPECT_EQ(files(), (names{"out.parquet", "t.ovt"}));
}

TEST_F(parquet_stopping_test, a_disk_that_is_full_leaves_no_table) {
  make_parquet("in.parquet", "select range as A, hash(range)::varchar as B from range(100000)");
  write("t.ovt", "old");
  const ovtest::process_result result = limited("import in.parquet t.ovt");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.error, testing::StartsWith("ovfile: cannot write t.ovt: "));
  EXPECT_EQ(result.error.find(".NEW"), std::string::npos) << result.error;
  EXPECT_EQ(read("t.ovt"), "old");
  EXPECT_EQ(files(), (names{"in.parquet", "t.ovt"}));
}

TEST_F(parquet_stopping_test, a_signal_leaves_nothing) {
  make_long_table(500000);
  run_quietly({"export", "t.ovt", "in.parquet"});
  const ovtest::scratch_folder temporary;
  const temporary_files_in there(temporary.path());
  const std::vector<names> works = {{"export", "t.ovt", "out.parquet"},
                                    {"export", "t.ovt", "out", "--partition-by", "E"},
                                    {"import", "in.parquet", "new.ovt"}};
  for (const names& work : works) {
    for (const int signal : {SIGTERM, SIGINT}) {
      for (const bool has_begun : {false, true}) {
        SCOPED_TRACE(work[0] + " " + work[2] + ", signal " + std::to_string(signal) +
                     (has_begun ? ", after the first bytes" : ", with the first new file"));
        const auto started = start(work);
        if (has_begun) {
          EXPECT_NE(goes_on_to_first_bytes(*started, folder().path()), fs::path());
        } else {
          EXPECT_TRUE(started->goes_on_to(ovtest::folder_change::creation, folder().path()));
        }
        const ovtest::ended_program end = started->wait_after(signal);
        EXPECT_TRUE(end.was_ended_by(signal)) << end.status;
        EXPECT_EQ(files(), (names{"in.parquet", "t.ovt"}));
        EXPECT_TRUE(fs::is_empty(temporary.path()));
      }
    }
  }
}

TEST_F(parquet_stopping_test, a_large_table_goes_out_and_comes_back_in_little_memory) {
  if (ovtest::is_sanitized) GTEST_SKIP() << "the sanitizer's own memory would be counted";
  constexpr std::size_t most = std::size_t{130} << 20;  // the table would not fit beside the programs
  make_long_table(1000000);
  const ovtest::ended_program out = start({"export", "t.ovt", "out.parquet", "--memory", "100MB"})->wait();
  EXPECT_EQ(out.status, 0);
  EXPECT_LT(out.most_bytes, most);
  const ovtest::ended_program in = start({"import", "out.parquet", "back.ovt", "--memory", "100MB"})->wait();
  EXPECT_EQ(in.status, 0);
  EXPECT_LT(in.most_bytes, most);
  EXPECT_EQ(run_quietly({"diff", "t.ovt", "back.ovt"}), "");
}

TEST_F(parquet_stopping_test, a_folder_that_takes_no_files_is_told) {
  make_table("A,B\n1,x\n");
  run_quietly({"export", "t.ovt", "in.parquet"});
  ASSERT_EQ(::chmod(folder().path().c_str(), 0555), 0);
  const auto run_as_user = [&](const names& arguments) {
    names all = ::geteuid() != 0 ? names{"/usr/bin/env"}
                                 : names{"/usr/bin/setpriv", "--bounding-set=-dac_override,-dac_read_search"};
    all.push_back(program());
    all.insert(all.end(), arguments.begin(), arguments.end());
    return ovtest::run_process(all, folder().path());
  };
  EXPECT_EQ(run_as_user({"export", "t.ovt", "out.parquet"}).error,
            "ovfile: cannot create out.parquet: Permission denied\n");
  EXPECT_EQ(run_as_user({"export", "t.ovt", "out", "--partition-by", "B"}).error,
            "ovfile: cannot write out: Permission denied\n");
  EXPECT_EQ(run_as_user({"import", "in.parquet", "new.ovt"}).error,
            "ovfile: cannot create new.ovt: Permission denied\n");
  ASSERT_EQ(::chmod(folder().path().c_str(), 0755), 0);
  EXPECT_EQ(files(), (names{"in.csv", "in.parquet", "t.ovt"}));
}

TEST_F(parquet_stopping_test, names_with_any_characters_are_names) {
  make_table("A,B\n1,x\n2,y\n");
  // What a pattern of one of these would find is no part of it.
  run_quietly({"export", "t.ovt", "axb.parquet", "--where", "A > 100"});
  for (const std::string name :
       {"a*b", "a[bc]", "a?", "it's", "d\"q", "a b", "é日", "a\\b", "{a,b}", "%20", "a;b"}) {
    SCOPED_TRACE(name);
    run_quietly({"export", "t.ovt", name + ".parquet"});
    run_quietly({"import", name + ".parquet", "back.ovt"});
    EXPECT_EQ(run_quietly({"diff", "t.ovt", "back.ovt"}), "");
    run_quietly({"export", "t.ovt", name, "--partition-by", "B"});
    run_quietly({"import", name, "back.ovt"});
    EXPECT_EQ(run_quietly({"diff", "t.ovt", "back.ovt"}), "");
    fs::remove_all(folder() / name);
  }
}

TEST_F(parquet_stopping_test, long_names_come_back_where_they_are_allowed) {
  EXPECT_EQ(run({"settings", "long-field-names", "on", "--now"}).status, 0);
  for (const char* name : {"d_names_long", "d_names_long_1252", "d_names_long_same_start"}) {
    const fs::path source = ovtest::shared_folder() / "golden" / (std::string(name) + ".ovt");
    if (!fs::exists(source)) GTEST_SKIP() << source << " is not there";
    run_quietly({"export", source, "out.parquet"});
    run_quietly({"import", "out.parquet", "back.ovt"});
    EXPECT_EQ(run_quietly({"diff", source, "back.ovt"}), "");
  }
}

}  // namespace
