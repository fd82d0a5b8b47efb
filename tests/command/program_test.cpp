// Help, version and wrong usage.
#include "command/command_test.h"

namespace {

using program_test = ovtest::command_test;

constexpr const char* commands[] = {"import",      "info",     "head",  "export", "stats",        "diff",
                                    "sign",        "schema",   "new",   "set",    "default",      "sort",
                                    "delete-rows", "truncate", "alter", "rename", "add-implicit", "kinds",
                                    "settings",    "sql",      "setup", "verify"};

TEST_F(program_test, help_names_every_command) {
  const std::string help = run_quietly({"--help"});
  for (const char* name : commands) {
    EXPECT_NE(help.find("\n  " + std::string(name) + " "), help.npos) << name;
  }
}

TEST_F(program_test, every_command_has_help) {
  for (const char* name : commands) {
    const std::string help = run_quietly({name, "--help"});
    EXPECT_NE(help.find("Usage: ovfile " + std::string(name)), help.npos) << help;
    EXPECT_EQ(run_quietly({name, "-h"}), help);
  }
}

TEST_F(program_test, version_is_one_line) {
  const std::string version = run_quietly({"--version"});
  EXPECT_EQ(version.substr(0, 7), "ovfile ");
  EXPECT_EQ(version.find('\n'), version.size() - 1);
}

TEST_F(program_test, wrong_usage_is_status_2) {
  expect_wrong_usage({}, "A subcommand is required (see --help)");
  expect_wrong_usage({"import"}, "csv is required (see --help)");
  expect_wrong_usage({"info"}, "table is required (see --help)");
  expect_wrong_usage({"head", "t.ovt", "-n", "-1"},
                     "--rows: -1 is not in the range 0 to 2147483647 (see --help)");
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"frobnicate"},
                                                    {"info", "t.ovt", "--frobnicate"},
                                                    {"info", "t.ovt", "u.ovt"},
                                                    {"head", "t.ovt", "-n", "many"},
                                                    {"head", "t.ovt", "--from", "0"},
                                                    {"import", "a.csv", "t.ovt", "--text"}}) {
    const ovtest::process_result result = run(arguments);
    EXPECT_EQ(result.status, 2) << arguments.back();
    EXPECT_EQ(result.error.find('\n'), result.error.size() - 1) << result.error;
  }
  EXPECT_EQ(files(), std::vector<std::string>{});
}

TEST_F(program_test, what_is_misspelt_is_told_with_what_is_near) {
  round_trip("A\n1\n");
  expect_wrong_usage({"heed", "t.ovt"}, "heed is no command; the nearest is head (see --help)");
  expect_wrong_usage({"xyzzy"}, "xyzzy is no command (see --help)");
  expect_wrong_usage({"head", "t.ovt", "--rws", "3"},
                     "--rws is no option of head; the nearest is --rows (see --help)");
  expect_wrong_usage({"head", "t.ovt", "--colunms=A"},
                     "--colunms is no option of head; the nearest is --columns (see --help)");
  expect_wrong_usage({"head", "t.ovt", "-q", "3"}, "-q is no option of head (see --help)");
  expect_wrong_usage({"--verion"}, "--verion is no option; the nearest is --version (see --help)");
}

}  // namespace
