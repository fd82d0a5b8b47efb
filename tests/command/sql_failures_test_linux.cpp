// A folder for temporary files that is not there.
#include "command/sql_fixture.h"

namespace {

using ovtest::names;

class sql_temporary_test : public ovtest::sql_test {
 protected:
  /// Runs `ovfile` alone with the variable.
  ovtest::process_result run_without_folder(const std::string& arguments) const {
    const char* const set = std::getenv("OVFILE_COMMAND");
    ovtest::set_environment("OVFILE", set != nullptr ? set : OVFILE_COMMAND_PATH);
    return ovtest::run_process({"/bin/sh", "-c", "TMPDIR=/nonexistent exec \"$OVFILE\" " + arguments},
                               folder().path());
  }
};

TEST_F(sql_temporary_test, what_does_not_need_it_is_done) {
  for (const char* arguments :
       {"sql 'select 1 as A' --output a.csv", "sql 'select 1 as A' --output a.parquet",
        "import a.parquet a.ovt", "export a.ovt b.parquet", "sql \"from 'a.ovt'\" --output c.ovt"}) {
    const ovtest::process_result result = run_without_folder(arguments);
    EXPECT_EQ(result.status, 0) << arguments;
    EXPECT_EQ(result.error, "") << arguments;
  }
  EXPECT_EQ(read("a.csv"), "A\n1\n");
  EXPECT_EQ(files(), (names{"a.csv", "a.ovt", "a.parquet", "b.parquet", "c.ovt"}));
}

TEST_F(sql_temporary_test, what_needs_it_names_it) {
  const ovtest::process_result result = run_without_folder(
      "sql 'select i::varchar as S from range(3000000) r(i) order by S' --memory 60MB --output a.csv");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.error,
            "ovfile: IO Error: Failed to create directory \"/nonexistent/ovfile-sql\": No such file or "
            "directory\n");
  EXPECT_EQ(files(), names{});
}

}  // namespace
