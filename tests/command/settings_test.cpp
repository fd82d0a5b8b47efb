#include "command/command_test.h"
#include "command/settings_keeper.h"

namespace {

class settings_test : public ovtest::command_test {
 protected:
  /// Changes a setting, which is told on standard error.
  void expect_told(std::vector<std::string> arguments, const std::string& line) const {
    arguments.insert(arguments.begin(), "settings");
    const ovtest::process_result result = run(arguments);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.error, "ovfile: " + line + "\n");
  }

  std::string shown() const { return run_quietly({"settings"}); }

  static std::string settings(const char* chosen, const char* session, const char* longest) {
    return std::string("long-field-names  ") + chosen + "\nthis session      " + session +
           "\nlongest name      " + longest + " characters in double precision, 8 in single\n";
  }

  ovtest::settings_keeper keeper_;
};

TEST_F(settings_test, long_field_names_are_off_at_first) { EXPECT_EQ(shown(), settings("off", "off", "8")); }

TEST_F(settings_test, a_choice_counts_from_the_next_login_on) {
  expect_told({"long-field-names", "on"},
              "long field names are on from the next login on; --now sets this session too");
  EXPECT_EQ(shown(), settings("on", "off", "8"));
  expect_told({"long-field-names", "off"}, "long field names are off, in this session too");
  EXPECT_EQ(shown(), settings("off", "off", "8"));
}

TEST_F(settings_test, now_sets_this_session_too) {
  expect_told({"long-field-names", "on", "--now"},
              "long field names are on for programs that start from now on");
  EXPECT_TRUE(keeper_.is_marked());
  EXPECT_EQ(shown(), settings("on", "on", "24"));
  EXPECT_EQ(round_trip("A_NAME_OF_24_CHARACTERS_\n1\n"), "A_NAME_OF_24_CHARACTERS_\n1\n");
  run_quietly({"rename", "t.ovt", "A_NAME_OF_24_CHARACTERS_", "ANOTHER_LONG_NAME"});
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "ANOTHER_LONG_NAME\n1\n");
  expect_told({"--now", "long-field-names", "off"},
              "long field names are off for programs that start from now on");
  EXPECT_TRUE(keeper_.is_marked());
  EXPECT_EQ(shown(), settings("off", "off", "8"));
}

TEST_F(settings_test, xml_does_not_hold_long_names) {
  expect_told({"long-field-names", "on", "--now"},
              "long field names are on for programs that start from now on");
  round_trip("LONG_FIELD_NAME,B\n1,2\n");
  const ovtest::process_result xml = run({"schema", "t.ovt", "--xml"});
  EXPECT_EQ(xml.status, 0);
  EXPECT_EQ(xml.error,
            "ovfile: warning: t.ovt: the XML form does not hold all of this schema (names of more than 8 "
            "characters, quotes, blank texts, digits of defaults); --json does\n");
}

TEST_F(settings_test, showing_them_does_not_mark_the_session) {
  keeper_.unmark();
  EXPECT_EQ(shown(), "long-field-names  off\nthis session      decided when first needed\n");
  EXPECT_FALSE(keeper_.is_marked());
  expect_told({"long-field-names", "on"}, "long field names are on, in this session too");
  EXPECT_EQ(shown(), "long-field-names  on\nthis session      decided when first needed\n");
  EXPECT_FALSE(keeper_.is_marked());
  EXPECT_EQ(round_trip("A_NAME_OF_24_CHARACTERS_\n1\n"), "A_NAME_OF_24_CHARACTERS_\n1\n");
  EXPECT_EQ(shown(), settings("on", "on", "24"));
}

TEST_F(settings_test, wrong_usage_is_told) {
  expect_wrong_usage({"settings", "--now"}, "--now goes with on or off");
  expect_wrong_usage({"settings", "long-field-names", "--now"}, "--now goes with on or off");
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"settings", "short-names", "on"},
                                                    {"settings", "long-field-names", "maybe"}}) {
    EXPECT_EQ(run(arguments).status, 2);
  }
  EXPECT_EQ(run_quietly({"settings", "long-field-names"}), settings("off", "off", "8"));
}

}  // namespace
