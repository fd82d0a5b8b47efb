// The samples that come with the source: each table holds what its CSV says.
#include "command/command_test.h"

namespace {

struct sample {
  const char* name;
  const char* columns;  ///< the stored ones, where there are others
};

void PrintTo(const sample& shown, std::ostream* out) { *out << shown.name; }

class samples_test : public ovtest::command_test, public testing::WithParamInterface<sample> {};

TEST_P(samples_test, the_table_holds_what_its_csv_says) {
  const std::filesystem::path folder = std::filesystem::path(OVFILE_SOURCE_DIR) / "samples";
  const std::string name = GetParam().name;
  std::vector<std::string> arguments = {"export", (folder / (name + ".ovt")).string()};
  if (GetParam().columns != nullptr) arguments.insert(arguments.end(), {"--columns", GetParam().columns});
  const ovtest::bytes csv = ovtest::read_bytes(folder / (name + ".csv"));
  EXPECT_EQ(run_quietly(arguments), std::string(csv.begin(), csv.end()));
}

INSTANTIATE_TEST_SUITE_P(
    all, samples_test,
    testing::Values(sample{"collars", nullptr}, sample{"surveys", nullptr}, sample{"assays", nullptr},
                    sample{"blocks", "IJK,XC,YC,ZC,XINC,YINC,ZINC,CU,DENSITY,ZONE"},
                    sample{"orebody_points", nullptr}, sample{"orebody_triangles", nullptr},
                    sample{"pit_outlines", nullptr}),
    [](const testing::TestParamInfo<sample>& shown) { return std::string(shown.param.name); });

}  // namespace
