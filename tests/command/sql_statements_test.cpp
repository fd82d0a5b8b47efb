#include "command/sql/sql_statements.h"

#include <gtest/gtest.h>

namespace {

using statements = std::vector<std::string>;
using command::split_statements;

TEST(sql_statements, nothing_is_no_statement) {
  for (const char* text :
       {"", " ", "\n\t\r\n", ";", " ; ;\n;", "-- a", "-- a\n", "/* a */", "/* a */ ; -- b"}) {
    EXPECT_EQ(split_statements(text), statements{}) << text;
  }
}

TEST(sql_statements, one_needs_no_semicolon_and_bears_many) {
  for (const char* text : {"select 1", "select 1;", "select 1;;", ";;select 1"}) {
    EXPECT_EQ(split_statements(text), statements{"select 1"}) << text;
  }
}

TEST(sql_statements, several_stand_apart_with_their_blanks) {
  EXPECT_EQ(split_statements("select 1; select 2 ;\nselect 3"),
            (statements{"select 1", " select 2 ", "\nselect 3"}));
}

TEST(sql_statements, a_semicolon_in_quotes_separates_nothing) {
  for (const char* text : {"select ';'", "select 'it''s; here'", "select \"a;b\"", "select \"a\"\";b\"",
                           "select $$a;b$$", "select $t$a;$$;b$t$", "select e'a\\';b'", "select E'\\\\' ",
                           "select U&'a;b'", "select ''", "select '';"}) {
    std::string expected = text;
    if (expected.back() == ';') expected.pop_back();
    EXPECT_EQ(split_statements(text), statements{expected}) << text;
  }
}

TEST(sql_statements, a_backslash_counts_in_escaping_quotes_alone) {
  EXPECT_EQ(split_statements("select 'a\\'; select 2"), (statements{"select 'a\\'", " select 2"}));
  EXPECT_EQ(split_statements("select e'a\\\\'; select 2"), (statements{"select e'a\\\\'", " select 2"}));
  // This is the end of a word, not an escaping quote.
  EXPECT_EQ(split_statements("select date'a\\'; select 2"), (statements{"select date'a\\'", " select 2"}));
}

TEST(sql_statements, a_semicolon_in_a_comment_separates_nothing) {
  EXPECT_EQ(split_statements("select 1 -- a; b\n + 2"), statements{"select 1 -- a; b\n + 2"});
  EXPECT_EQ(split_statements("select 1 /* a; ' b */ + 2"), statements{"select 1 /* a; ' b */ + 2"});
  EXPECT_EQ(split_statements("select 1; -- it's the end"), statements{"select 1"});
  EXPECT_EQ(split_statements("-- it's; the beginning\nselect 1"),
            statements{"-- it's; the beginning\nselect 1"});
}

TEST(sql_statements, signs_of_comments_and_quotes_alone_are_signs) {
  EXPECT_EQ(split_statements("select 3 - 2; select 4 / 2"), (statements{"select 3 - 2", " select 4 / 2"}));
  EXPECT_EQ(split_statements("select $1; select $2"), (statements{"select $1", " select $2"}));
  EXPECT_EQ(split_statements("select a$b$; select c$b$"), (statements{"select a$b$", " select c$b$"}));
}

TEST(sql_statements, what_does_not_end_reaches_to_the_end) {
  for (const char* text :
       {"select 'a; b", "select \"a; b", "select $$a; b", "select $t$a; b$$", "select 1 /* ; b",
        "select 1 -- ; b", "select e'a\\", "select $", "select 1 /*", "select 1 -", "'"}) {
    EXPECT_EQ(split_statements(text), statements{text}) << text;
  }
}

TEST(sql_statements, text_beyond_ascii_and_nul_are_characters) {
  EXPECT_EQ(split_statements("select '\xC3\xA9;'; select \xC3\xA9"),
            (statements{"select '\xC3\xA9;'", " select \xC3\xA9"}));
  const std::string_view nul("select 1\0; select 2", 19);
  EXPECT_EQ(split_statements(nul), (statements{std::string("select 1\0", 9), " select 2"}));
}

}  // namespace
