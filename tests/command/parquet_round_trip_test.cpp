// Tables that go to Parquet and come back are what they were.
#include <ostream>

#include "command/parquet_fixture.h"
#include "support/shared_data.h"

namespace {

namespace fs = std::filesystem;

class parquet_round_trip_test : public ovtest::parquet_test {
 protected:
  /// Everything that `info` tells, but for what belongs to the file alone.
  std::string definition(const std::string& table) const {
    return info(table, {"file", "link_target", "byte_order", "pages", "file_size"});
  }

  std::string signature(const std::string& table) const { return run_quietly({"sign", table}).substr(0, 40); }

  void expect_equal(const std::string& before, const std::string& after) const {
    EXPECT_EQ(run_quietly({"diff", before, after}), "");
    EXPECT_EQ(signature(before), signature(after));
    EXPECT_EQ(definition(before), definition(after));
  }

  void go_through_a_file(const std::string& table) const {
    run_quietly({"export", table, "out.parquet"});
    run_quietly({"import", "out.parquet", "back.ovt"});
    expect_equal(table, "back.ovt");
  }

  /// The rows come back folder by folder.
  void go_through_folders(const std::string& table, const std::string& columns) const {
    run_quietly({"export", table, "out", "--partition-by", columns});
    run_quietly({"import", "out", "back.ovt"});
    EXPECT_EQ(sorted_lines(run_quietly({"export", table})),
              sorted_lines(run_quietly({"export", "back.ovt"})));
    EXPECT_EQ(definition(table), definition("back.ovt"));
    fs::remove_all(folder() / "out");
  }
};

TEST_F(parquet_round_trip_test, fields_stay_in_place_with_their_kinds_widths_and_defaults) {
  make_table("A,B\n1,x\n,\n", {"--text", "B:30", "--implicit", "Z=5", "--implicit", "NAME=north",
                               "--implicit", "GONE=", "--description", "It's \"50%\" é, {x} \\ ;"});
  run_quietly({"default", "t.ovt", "A=2.5"});
  run_quietly({"default", "t.ovt", "B=none"});
  go_through_a_file("t.ovt");
  go_through_folders("t.ovt", "A");
}

TEST_F(parquet_round_trip_test, a_description_keeps_all_its_characters_and_stays_empty) {
  const std::string longest = "1234567890123456789012345678901234567890123456789012345678901234";
  ASSERT_EQ(longest.size(), 64u);
  make_table("A\n1\n", {"--description", longest});
  go_through_a_file("t.ovt");
  EXPECT_NE(run_quietly({"info", "back.ovt"}).find(longest), std::string::npos);
  make_table("A\n1\n", {"--description", " "});
  go_through_a_file("t.ovt");
  EXPECT_NE(run_quietly({"info", "back.ovt", "--json"}).find("\"description\": \"\""), std::string::npos);
}

TEST_F(parquet_round_trip_test, a_table_without_rows_comes_back_through_a_file_and_a_folder) {
  make_table("A,B\n", {"--text", "B:12", "--implicit", "Z=5", "--single"});
  go_through_a_file("t.ovt");
  for (const char* columns : {"A", "B", "Z", "A,Z"}) go_through_folders("t.ovt", columns);
}

TEST_F(parquet_round_trip_test, columns_that_differ_by_case_alone_stay_apart) {
  make_table("au,AU,Au,B\n1,2,3,x\n4,5,6,y\n");
  go_through_a_file("t.ovt");
  for (const char* columns : {"au", "AU", "Au,AU", "B"}) go_through_folders("t.ovt", columns);
}

TEST_F(parquet_round_trip_test, numbers_with_a_meaning_come_back) {
  for (const bool single : {false, true}) {
    // The absent one, the largest and the smallest that a table shows by words.
    const std::string csv = "A,B\n-1e30,1\n1e30,2\n1e-30,3\n-0,4\n0.1,5\n16777217,6\n3.4e38,7\n1e-45,8\n";
    write("in.csv", csv);
    const std::string precision = single ? "--single" : "--description=x";
    EXPECT_EQ(run({"import", "in.csv", "t.ovt", precision}).status, 0);
    go_through_a_file("t.ovt");
    go_through_folders("t.ovt", "A");
    go_through_folders("t.ovt", "B");
  }
}

TEST_F(parquet_round_trip_test, rows_of_implicit_columns_alone_are_kept) {
  make_table("A\n1\n2\n", {"--implicit", "Z=5"});
  run_quietly({"export", "t.ovt", "out.parquet", "--columns", "Z"});
  run_quietly({"import", "out.parquet", "back.ovt"});
  EXPECT_EQ(run_quietly({"export", "back.ovt"}), "Z\n5\n5\n");
}

TEST_F(parquet_round_trip_test, a_link_is_not_made_by_a_description) {
  const fs::path source = ovtest::shared_folder() / "golden" / "link_chain.ovt";
  if (!fs::exists(source)) GTEST_SKIP() << source << " is not there";
  for (const char* name : {"link_chain.ovt", "link_relative.ovt", "s_one_number.ovt"}) {
    ovtest::copy_writable(source.parent_path() / name, folder() / name);
  }
  run_quietly({"export", "link_chain.ovt", "out.parquet"});
  const ovtest::process_result result = run({"import", "out.parquet", "back.ovt"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error,
            "ovfile: the description is left out: a description that begins with LINK would make the table a "
            "link to another file\n");
  EXPECT_EQ(run_quietly({"export", "back.ovt"}), run_quietly({"export", "link_chain.ovt"}));
}

struct given_table {
  const char* name;
  const char* partition;  ///< null where its values are no names of folders
};

void PrintTo(const given_table& table, std::ostream* out) { *out << table.name; }

class given_tables_test : public parquet_round_trip_test, public testing::WithParamInterface<given_table> {
 protected:
  void round_trip(const fs::path& source) const {
    if (!fs::exists(source)) GTEST_SKIP() << source << " is not there";
    ovtest::copy_writable(source, folder() / "t.ovt");
    go_through_a_file("t.ovt");
    if (GetParam().partition != nullptr) go_through_folders("t.ovt", GetParam().partition);
  }
};

class parquet_samples_test : public given_tables_test {};

TEST_P(parquet_samples_test, comes_back) {
  round_trip(fs::path(OVFILE_SOURCE_DIR) / "samples" / (std::string(GetParam().name) + ".ovt"));
}

std::string name_of(const testing::TestParamInfo<given_table>& table) { return table.param.name; }

INSTANTIATE_TEST_SUITE_P(all, parquet_samples_test,
                         testing::Values(given_table{"assays", "LITH"}, given_table{"blocks", "ZONE,NX"},
                                         given_table{"collars", "EOH"}, given_table{"surveys", "BHID"},
                                         given_table{"orebody_points", "PID"},
                                         given_table{"orebody_triangles", "TRIANGLE"},
                                         given_table{"pit_outlines", "PVALUE"}),
                         name_of);

class parquet_golden_test : public given_tables_test {};

TEST_P(parquet_golden_test, comes_back) {
  round_trip(ovtest::shared_folder() / "golden" / (std::string(GetParam().name) + ".ovt"));
}

INSTANTIATE_TEST_SUITE_P(
    all, parquet_golden_test,
    testing::Values(given_table{"d_256_atoms", nullptr}, given_table{"d_all_implicit_pages", nullptr},
                    given_table{"d_bit_patterns", "V"}, given_table{"d_bit_patterns_no_nan", "V"},
                    given_table{"d_desc_1252", nullptr}, given_table{"d_dh_assays", "LITH"},
                    given_table{"d_implicit_mix", "ZONE"}, given_table{"d_names_8", "au_ppm"},
                    given_table{"d_one_text", nullptr}, given_table{"d_positions_reversed", nullptr},
                    given_table{"d_text_widths", nullptr}, given_table{"d_tpl_model", nullptr},
                    given_table{"s_64_atoms", nullptr}, given_table{"s_all_implicit", nullptr},
                    given_table{"s_bit_patterns", "V"}, given_table{"s_block_model", nullptr},
                    given_table{"s_default_nan", nullptr}, given_table{"s_desc_64", nullptr},
                    given_table{"s_order_0_implicit", nullptr}, given_table{"s_order_1024", nullptr},
                    given_table{"s_order_1280_special", nullptr}, given_table{"s_special", nullptr},
                    given_table{"s_text_1252", nullptr}, given_table{"s_tidy", nullptr},
                    given_table{"s_text_widths", nullptr}, given_table{"kind_09_catalogue", nullptr}),
    name_of);

}  // namespace
