// What the tests of import share.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "command/command_test.h"

namespace ovtest {

using names = std::vector<std::string>;

class import_test : public command_test {
 protected:
  nlohmann::json info() const { return nlohmann::json::parse(run_quietly({"info", "t.ovt", "--json"})); }

  /// "name:type:width" of each field.
  names fields_of(const std::string& csv, std::vector<std::string> options = {}) const {
    write("in.csv", csv);
    options.insert(options.begin(), {"import", "in.csv", "t.ovt"});
    EXPECT_EQ(run(options).status, 0);
    names fields;
    const nlohmann::json table = info();
    for (const auto& field : table["fields"]) {
      fields.push_back(field["name"].get<std::string>() + ":" + field["type"].get<std::string>() + ":" +
                       std::to_string(field["width"].get<int>()));
    }
    return fields;
  }

  /// Expects the import to fail with this line and to leave nothing behind.
  void expect_no_table(const std::string& csv, const std::string& line,
                       std::vector<std::string> options = {}) {
    write("in.csv", csv);
    options.insert(options.begin(), {"import", "in.csv", "t.ovt"});
    expect_failure(options, line);
    EXPECT_EQ(files(), names{"in.csv"});
  }
};

}  // namespace ovtest
