#include "command/sql/sql_statements.h"

#include <gtest/gtest.h>

#include <utility>

#include "command/sql/copy_target.h"

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

TEST(sql_statements, blanks_beyond_ascii_are_blanks) {
  EXPECT_EQ(split_statements("\xC2\xA0; \xE3\x80\x80;\xE2\x80\x89"), statements{});
  EXPECT_EQ(split_statements("select '\xC2\xA0'"), statements{"select '\xC2\xA0'"});
}

TEST(sql_copy_target, is_what_stands_behind_to) {
  const std::pair<const char*, const char*> cases[] = {
      {"copy t to 's.ovt'", "'s.ovt'"},
      {"COPY t TO 's.ovt' (format csv)", "'s.ovt'"},
      {" -- a\n copy (select 1 /* to */) /* to 'a' */ to/**/'s.ovt' with (format csv)", "'s.ovt'"},
      {"copy (select 'x to ''y''' from (select 1)) to 'it''s.ovt'", "'it''s.ovt'"},
      {"copy t (\"to\", b) to 's'\n'.ovt'", "'s'\n'.ovt'"},
      {"copy t to e's\\'.ovt' (format csv)", "e's\\'.ovt'"},
      {"copy t to $$s.ovt$$", "$$s.ovt$$"},
      {"copy t to ('s' || upper('.ovt')) (format csv)", "('s' || upper('.ovt'))"},
      {"copy t to ('s.ovt')", "('s.ovt')"},
      {"copy t to (f(s.ovt))", "(f(s.ovt))"},
      {"copy t to ((a) || (b))", "((a) || (b))"},
      {"copy t to (s.ovt)", "'s.ovt'"},
      {"copy t to ( ( /* a */ \"s.ovt\" ) ) (format csv)", "'s.ovt'"},
      {"copy t to (a.s.ovt)", "'a.s.ovt'"},
      {"copy t to ()", "()"},
      {"copy t to s.ovt", "'s.ovt'"},
      {"copy t to s . ovt (format csv)", "'s.ovt'"},
      {"copy t to \"it's.ovt\"", "'it''s.ovt'"},
      {"copy t to stdout", "'stdout'"},
      {"copy t to program 's.ovt'", "'s.ovt'"},
      {"copy\xC2\xA0t\xC2\xA0to\xE2\x80\x89's.ovt'", "'s.ovt'"},
      {"explain copy t to 's.ovt'", "'s.ovt'"},
      {"explain analyze copy t to 's.ovt'", "'s.ovt'"},
      {"EXPLAIN (analyze, format json) copy t to 's.ovt'", "'s.ovt'"},
      {"prepare p as copy t to 's.ovt'", "'s.ovt'"},
      {"prepare p (int) as copy t to 's.ovt'", "'s.ovt'"}};
  for (const auto& [statement, target] : cases)
    EXPECT_EQ(command::copy_target(statement), target) << statement;
}

TEST(sql_copy_target, other_statements_have_none) {
  for (const char* statement :
       {"", "select 1", "copy", "copy t", "copy t to", "copy t from 's.ovt'", "copy (select 1 to 's.ovt'",
        "copy from database a to b", "alter table copy rename to \"s.ovt\"", "select 'copy t to ''s.ovt'''",
        "-- copy t to 's.ovt'", "\"copy\" t to 's.ovt'", "copying t to 's.ovt'", "explain", "prepare",
        "set x to 's.ovt'", "copy t to("}) {
    EXPECT_EQ(command::copy_target(statement), "") << statement;
  }
}

}  // namespace
