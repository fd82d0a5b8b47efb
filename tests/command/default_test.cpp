#include <nlohmann/json.hpp>

#include "command/edit_fixture.h"

namespace {

using ovtest::names;

class default_test : public ovtest::edit_test {
 protected:
  void make(const names& options = {}) const {
    names all = {"--implicit", "ZONE=north", "--implicit", "NX=5"};
    all.insert(all.end(), options.begin(), options.end());
    round_trip("A,B\n1,x\n2,y\n", all);
  }

  nlohmann::json default_of(std::size_t column) const {
    return nlohmann::json::parse(run_quietly({"schema", "t.ovt", "--json"}))["fields"][column]["default"];
  }
};

TEST_F(default_test, all_rows_read_the_default_of_an_implicit_column) {
  in_both([&](const names& options) {
    make(options);
    run_quietly({"default", "t.ovt", "ZONE=south"});
    run_quietly({"default", "t.ovt", "NX=0.1"});
    EXPECT_EQ(exported(), "A,B,ZONE,NX\n1,x,south,0.1\n2,y,south,0.1\n");
    run_quietly({"default", "t.ovt", "ZONE="});
    run_quietly({"default", "t.ovt", "NX=-"});
    EXPECT_EQ(exported(), "A,B,ZONE,NX\n1,x,,\n2,y,,\n");
    EXPECT_EQ(default_of(3), nullptr);
  });
}

TEST_F(default_test, rows_keep_what_a_stored_column_has) {
  in_both([&](const names& options) {
    make(options);
    run_quietly({"default", "t.ovt", "A=-7.5"});
    run_quietly({"default", "t.ovt", "B=zz"});
    EXPECT_EQ(exported(), "A,B,ZONE,NX\n1,x,north,5\n2,y,north,5\n");
    EXPECT_EQ(default_of(0), -7.5);
    EXPECT_EQ(default_of(1), "zz");
  });
}

TEST_F(default_test, what_does_not_fit_changes_nothing) {
  make();
  expect_unchanged({"default", "t.ovt", "NX=five"},
                   "t.ovt, column NX: five is not a number; the column holds numbers");
  expect_unchanged({"default", "t.ovt", "ZONE=northwest"},
                   "t.ovt, column ZONE: the text has 9 characters, more than the 8 of the column");
  expect_unchanged({"default", "t.ovt", "NY=1"}, "t.ovt has no column NY; its columns are A, B, ZONE, NX");
  expect_unchanged({"default", "t.ovt", "zone=1"}, "t.ovt has no column zone; it has ZONE");
  expect_wrong_usage({"default", "t.ovt", "NX"}, "NX: expected COLUMN=VALUE");
  make({"--single"});
  expect_unchanged({"default", "t.ovt", "NX=1e39"},
                   "t.ovt, column NX: 1e39 is beyond the range of single precision");
}

TEST_F(default_test, single_precision_warns_of_lost_digits) {
  make({"--single"});
  run_telling({"default", "t.ovt", "NX=0.123456789"}, "warning: single precision loses digits of NX");
}

}  // namespace
