// Control characters that a table holds reach no terminal.
#include "command/shown_text.h"
#include "command/command_test.h"

namespace {

using ovtest::process_result;

TEST(shown_text, a_value_has_a_full_stop_for_each_control_character) {
  std::string out = "<";
  EXPECT_EQ(command::append_shown(out, "a\x1B[2J\t\n\x7F\xC2\x9B\xC2\xA0\xC3\xA9"), 11u);
  EXPECT_EQ(out, "<a.[2J....\xC2\xA0\xC3\xA9");
}

TEST(shown_text, lines_keep_tabs_and_line_feeds) {
  EXPECT_EQ(command::shown_lines("a\tb\nc"), "a\tb\nc");
  EXPECT_EQ(command::shown_lines("a\x1B[2J\tb\r\n\xC2\x9B"
                                 "31m"),
            "a.[2J\tb.\n.31m");
  EXPECT_EQ(command::shown_lines("\xC2\xA0\xC3\xA9"), "\xC2\xA0\xC3\xA9");
}

TEST(shown_text, bytes_that_are_no_utf8_are_no_control_characters_either) {
  EXPECT_EQ(command::shown_lines("a\x9B"
                                 "2J\xE9z\xC2"),
            "a.2J\xE9z\xC2");
}

class terminal_test : public ovtest::command_test {
 protected:
  /// A table whose description, default and value would clear a screen, and which has bytes that the code
  /// page leaves free: they come as C1.
  terminal_test() {
    write("t.csv", "T,A\n" + controls() + ",1\n");
    run_quietly({"import", "t.csv", "t.ovt", "--description", "d" + controls() + "e"});
    run_quietly({"default", "t.ovt", "T=u" + controls() + "v"});
  }

  static std::string controls() { return "x\x1B[2J\x7F\xC2\x81\xC2\x9Dy"; }

  static void expect_harmless(const process_result& result) {
    for (const std::string& text : {result.output, result.error}) {
      EXPECT_EQ(command::shown_lines(text), text);
    }
  }
};

TEST_F(terminal_test, listings_and_messages_hold_no_control_character) {
  write("u.csv", "T,A\nz,1\n");
  run_quietly({"import", "u.csv", "u.ovt"});
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{"info", "t.ovt"},
                                             {"info", "t.ovt", "--json"},
                                             {"schema", "t.ovt"},
                                             {"schema", "t.ovt", "--json"},
                                             {"stats", "t.ovt"},
                                             {"stats", "t.ovt", "--json"},
                                             {"head", "t.ovt"},
                                             {"diff", "t.ovt", "u.ovt"},
                                             {"sign", "t.ovt"},
                                             {"verify", "t.ovt"},
                                             {"verify", "t.ovt", "--json"},
                                             {"info", "no\x1B[2J.ovt"},
                                             {"head", "t.ovt", "--columns", "\x1B[2J"}}) {
    SCOPED_TRACE(arguments.front() + " " + arguments.back());
    expect_harmless(run(arguments));
  }
  EXPECT_NE(run({"info", "t.ovt"}).output.find("dx.[2J...ye"), std::string::npos);
  EXPECT_NE(run({"info", "no\x1B[2J.ovt"}).error.find("no.[2J.ovt"), std::string::npos);
}

TEST_F(terminal_test, json_has_control_characters_by_their_numbers) {
  const std::string json = run_quietly({"info", "t.ovt", "--json"});
  EXPECT_NE(json.find("\"dx\\u001b[2J\\u007f\\u0081\\u009dye\""), std::string::npos) << json;
}

TEST_F(terminal_test, names_of_files_hold_no_control_character) {
  const std::string name = "e\x1B[2J\xC2\x9B.ovt";
  std::error_code error;
  std::filesystem::copy_file(folder() / "t.ovt", folder() / name, error);
  if (error) GTEST_SKIP() << "the system takes no such name";
  for (const char* verb : {"info", "schema", "stats", "head", "sign", "verify"}) {
    SCOPED_TRACE(verb);
    expect_harmless(run({verb, name}));
  }
  EXPECT_TRUE(run_quietly({"sign", name}).ends_with("  e.[2J..ovt\n"));
}

TEST_F(terminal_test, what_programs_read_keeps_every_byte) {
  EXPECT_EQ(run_quietly({"export", "t.ovt", "-"}), "T,A\n" + controls() + ",1\n");
}

}  // namespace
