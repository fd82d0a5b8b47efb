// Long calls of the library: they show how far they have come, and a signal ends them.
#include <signal.h>

#include "command/edit_fixture.h"
#include "command/first_bytes_linux.h"
#include "support/started_program_linux.h"

namespace {

using ovtest::names;

class long_call_test : public ovtest::edit_test {
 protected:
  void make_long_table() const {
    std::string csv = "A,B\n";
    for (int i = 0; i < 200000; ++i)
      csv += std::to_string(200000 - i) + ".5,text " + std::to_string(i) + "\n";
    write("in.csv", csv);
    run_quietly({"import", "in.csv", "t.ovt"});
  }

  /// What the program shows on a terminal when its bar need not wait.
  std::string seen_at_once(const std::string& arguments) const {
    ovtest::set_environment("OVFILE_PROGRESS", "0");
    const ovtest::shown seen =
        ovtest::on_terminal("exec \"$OVFILE\" " + arguments + " >/dev/null", folder().path());
    ovtest::set_environment("OVFILE_PROGRESS", "");
    EXPECT_EQ(seen.end.status, 0);
    return seen.text;
  }
};

struct stopped_work {
  names arguments;
  int signal;
};

const std::vector<stopped_work> rebuilding = {{{"sort", "t.ovt", "--by", "A"}, SIGINT},
                                              {{"sort", "t.ovt", "--by", "A"}, SIGTERM},
                                              {{"alter", "t.ovt", "--drop", "B"}, SIGTERM},
                                              {{"alter", "t.ovt", "--drop", "B"}, SIGHUP},
                                              {{"delete-rows", "t.ovt", "--rows", "5-10000"}, SIGINT}};

TEST_F(long_call_test, a_signal_while_a_table_is_written_anew_leaves_the_old_one) {
  make_long_table();
  const std::string before = read("t.ovt");
  for (const stopped_work& work : rebuilding) {
    SCOPED_TRACE(work.arguments.front() + " and signal " + std::to_string(work.signal));
    names arguments = work.arguments;
    arguments.insert(arguments.begin(), program());
    ovtest::started_program started(arguments, folder().path());
    EXPECT_NE(goes_on_to_first_bytes(started, folder().path()), std::filesystem::path());
    const ovtest::ended_program end = started.wait_after(work.signal);
    EXPECT_TRUE(end.was_ended_by(work.signal)) << end.status;
    EXPECT_TRUE(read("t.ovt") == before);
    EXPECT_EQ(files(), (names{"in.csv", "t.ovt"}));
  }
}

TEST_F(long_call_test, a_signal_ends_a_signature) {
  make_long_table();
  const std::string before = read("t.ovt");
  const ovtest::full_pipe output(folder() / "full");
  ovtest::set_environment("OVFILE_PROGRESS", "0");
  for (const int signal : {SIGINT, SIGTERM}) {
    const auto [end, seen] =
        ovtest::on_terminal("exec \"$OVFILE\" sign t.ovt >full", folder().path(), {"\rsigning [", signal});
    EXPECT_NE(seen.find("\rsigning ["), seen.npos) << seen;
    EXPECT_EQ(ovtest::left_on_terminal(seen), "") << seen;
    EXPECT_TRUE(end.was_ended_by(signal)) << end.status;
    EXPECT_TRUE(read("t.ovt") == before);
  }
  ovtest::set_environment("OVFILE_PROGRESS", "");
}

TEST_F(long_call_test, a_terminal_sees_how_far_a_new_table_has_come) {
  make_long_table();
  for (const char* arguments :
       {"alter t.ovt --drop B", "sort t.ovt --by A", "delete-rows t.ovt --rows 1,3"}) {
    const std::string seen = seen_at_once(arguments);
    EXPECT_NE(seen.find("\rwriting ["), seen.npos) << arguments << ": " << seen;
    EXPECT_NE(seen.find("\r\x1B[K"), seen.npos) << arguments << ": " << seen;
  }
}

TEST_F(long_call_test, a_terminal_sees_how_far_a_signature_has_come) {
  make_long_table();
  const std::string seen = seen_at_once("sign t.ovt");
  EXPECT_NE(seen.find("\rsigning ["), seen.npos) << seen;
  EXPECT_EQ(seen.substr(seen.size() - 4), "\r\x1B[K") << "wiped away";
}

TEST_F(long_call_test, a_terminal_sees_no_bar_for_quick_work) {
  write("in.csv", "A\n2\n1\n");
  run_quietly({"import", "in.csv", "t.ovt"});
  ovtest::set_environment("OVFILE_PROGRESS", "1e9");  // beyond a day: as if it were not set
  const ovtest::shown seen = ovtest::on_terminal("exec \"$OVFILE\" sort t.ovt --by A", folder().path());
  ovtest::set_environment("OVFILE_PROGRESS", "");
  EXPECT_EQ(seen.text, "");
  EXPECT_EQ(seen.end.status, 0);
}

}  // namespace
