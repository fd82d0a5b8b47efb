// The bar of a comparison, and its lines on the same terminal.
#include "command/command_test.h"
#include "support/started_program_linux.h"

namespace {

class diff_bar_test : public ovtest::command_test {
 protected:
  diff_bar_test() { ovtest::set_environment("OVFILE_PROGRESS", "0"); }
  ~diff_bar_test() override { ovtest::set_environment("OVFILE_PROGRESS", ""); }

  /// A table whose rows have the numbers from `first` to `last`.
  void make(const std::string& table, int first, int last) const {
    std::string csv = "A,B\n";
    for (int i = first; i <= last; ++i) csv += std::to_string(i) + ",some words\n";
    write("in.csv", csv);
    run_quietly({"import", "in.csv", table, "--description", "d"});
  }

  /// What the comparison of a.ovt and b.ovt writes to a terminal that is its output and its standard error.
  std::string seen(const std::string& options = {}) const {
    return ovtest::on_terminal("stty -opost; exec \"$OVFILE\" diff a.ovt b.ovt " + options, folder().path())
        .text;
  }
};

TEST_F(diff_bar_test, equal_tables_leave_an_empty_line) {
  make("a.ovt", 1, 2000);
  const std::filesystem::path other = folder() / "b.ovt";
  std::filesystem::copy_file(folder() / "a.ovt", other);
  for (const char* options : {"", "--key A"}) {
    const std::string written = seen(options);
    EXPECT_NE(written.find("\rcomparing ["), written.npos) << written;
    EXPECT_EQ(ovtest::left_on_terminal(written), "");
  }
}

TEST_F(diff_bar_test, lines_stand_where_the_bar_was) {
  make("a.ovt", 1, 20000);
  make("b.ovt", 20001, 40000);
  for (const std::string options : {"", "--key A"}) {
    std::vector<std::string> arguments = {"diff", "a.ovt", "b.ovt"};
    if (!options.empty()) arguments.insert(arguments.end(), {"--key", "A"});
    const std::string plain = run(arguments).output;
    EXPECT_GT(plain.size(), std::size_t{600000});
    const std::string written = seen(options);
    EXPECT_EQ(written.find("\rcomparing ["), 0u);
    EXPECT_TRUE(ovtest::left_on_terminal(written) == plain)
        << ovtest::left_on_terminal(written).substr(0, 300);
  }
}

/// The bar looks at the clock with every 1024th row, so few rows show which of them count.
TEST_F(diff_bar_test, rows_that_are_read_again_move_the_bar) {
  make("a.ovt", 1, 600);
  make("b.ovt", 1, 300);
  const std::string written = seen("--key A");
  // 300 keys, 600 rows with their keys, and 300 rows that have one of these: the 1024th of 1200.
  EXPECT_EQ(written.find("\rcomparing [#########################     ]  85 %\x1B[K"), 0u) << written;
}

TEST_F(diff_bar_test, rows_of_the_new_table_alone_move_the_bar) {
  make("a.ovt", 1001, 1100);
  make("b.ovt", 1, 500);
  const std::string written = seen("--key A");
  // 500 keys, 100 rows with theirs, and 500 rows that have none of these: the 1024th of 1100.
  EXPECT_EQ(written.find("\rcomparing [###########################   ]  93 %\x1B[K"), 0u) << written;
}

}  // namespace
