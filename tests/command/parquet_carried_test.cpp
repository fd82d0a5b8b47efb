// Parquet files of this program that another one has changed since.
#include "command/parquet_fixture.h"

namespace {

/// What the program keeps in a Parquet file, as another program that changed the rows carries it along.
constexpr const char* kept_columns =
    R"([{"name": "A", "kind": "number", "width": 4, "implicit": false, "default": "-1e+30"},
        {"name": "Z", "kind": "number", "width": 4, "implicit": true, "default": "5"},
        {"name": "G", "kind": "number", "width": 4, "implicit": true, "default": "-1e+30"},
        {"name": "T", "kind": "text", "width": 12, "implicit": true, "default": "x"}])";

class carried_definition_test : public ovtest::parquet_test {
 protected:
  void make_carried(const std::string& query, const std::string& precision = "double") const {
    EXPECT_EQ(run({"sql", "copy (" + query + ") to 'in.parquet' (format parquet, kv_metadata {" +
                              "'ovfile:precision': '" + precision + "', 'ovfile:description': 'kept', " +
                              "'ovfile:columns': '" + columns_ + "'})"})
                  .error,
              "");
    run_quietly({"import", "in.parquet", "t.ovt"});
  }

  /// The table's columns, in order: a name, and `*` behind an implicit one.
  std::string columns() const {
    std::string out;
    const std::string json = run_quietly({"info", "t.ovt", "--json"});
    for (std::size_t at = 0; (at = json.find("{\"name\": \"", at)) != std::string::npos; ++at) {
      const std::string line = json.substr(at, json.find('\n', at) - at);
      out += line.substr(10, line.find('"', 10) - 10);
      out += line.find("\"implicit\": true") != std::string::npos ? "* " : " ";
    }
    return out;
  }

  std::string columns_ = kept_columns;
};

TEST_F(carried_definition_test, columns_that_still_have_their_one_value_are_implicit) {
  make_carried(
      "select 'x' as T, null::double as G, 5::double as Z, 1::double as A union all "
      "select 'x', null, 5, 2");
  EXPECT_EQ(columns(), "A Z* G* T* ");
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,Z,G,T\n1,5,,x\n2,5,,x\n");
  EXPECT_NE(run_quietly({"info", "t.ovt"}).find("description  kept\n"), std::string::npos);
}

TEST_F(carried_definition_test, columns_with_other_values_are_stored) {
  make_carried(
      "select 1::double as A, 5::double as Z, null::double as G, 'x' as T union all "
      "select 2, 6, 7, 'y'");
  EXPECT_EQ(columns(), "A Z G T ");
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,Z,G,T\n1,5,,x\n2,6,7,y\n");
  make_carried("select 1::double as A, null::double as Z, null::double as G, null as T");
  EXPECT_EQ(columns(), "A Z G* T ");
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,Z,G,T\n1,,,\n");
}

TEST_F(carried_definition_test, columns_of_another_type_or_name_are_taken_as_they_are) {
  make_carried("select 'a' as A, 5 as Z, 'g' as G, 1.5::double as T, 'new' as N");
  EXPECT_EQ(columns(), "A Z G T N ");
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,Z,G,T,N\na,5,g,1.5,new\n");
}

TEST_F(carried_definition_test, single_precision_is_kept_for_floats_alone) {
  const auto precision = [&] {
    const std::string json = run_quietly({"info", "t.ovt", "--json"});
    return json.find("\"precision\": \"single\"") != std::string::npos ? "single" : "double";
  };
  make_carried("select 1::float as A, 'x' as N", "single");
  EXPECT_STREQ(precision(), "single");
  make_carried("select 1::float as A, 1234567890 as N", "single");
  EXPECT_STREQ(precision(), "double");
  EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,N\n1,1234567890\n");
}

TEST_F(carried_definition_test, a_definition_that_makes_no_sense_does_no_harm) {
  for (const char* columns : {"", "x", "{}", "5", "[5]", "[[]]", "[{}]", "[{\"name\": 5}]", "null",
                              R"([{"name": "A", "kind": "text", "width": 1e300, "default": "x"}])",
                              R"([{"name": "A", "kind": "text", "width": -5, "default": 7}])",
                              R"([{"name": "A", "kind": "number", "implicit": true, "default": "x"}])"}) {
    SCOPED_TRACE(columns);
    columns_ = columns;
    make_carried("select 1::double as A, 'x' as N");
    EXPECT_EQ(run_quietly({"export", "t.ovt"}), "A,N\n1,x\n");
  }
}

}  // namespace
