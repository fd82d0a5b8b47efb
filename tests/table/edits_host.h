// What the tests of edits that make a table's file anew share: where files may be left behind, and the
// rows of a file as records.
#pragma once

#include <set>

#include "support/process.h"
#include "table_host.h"

namespace ovtest {

inline ovfile::text words(const std::string& utf8) { return ovfile::text(std::string_view(utf8)); }

/// A table's rows, each with its bytes, and everything else of its file.
struct file_records {
  std::vector<bytes> records;
  bytes rest;  ///< the file with the records blanked out
};

inline file_records records_of(const bytes& file, const OvTableFacts& facts) {
  file_records found{{}, file};
  const auto word = static_cast<std::size_t>(facts.wordBytes);
  const auto length = word * static_cast<std::size_t>(facts.recordWords);
  for (std::size_t row = 0; row < static_cast<std::size_t>(facts.rows); ++row) {
    const auto per_page = static_cast<std::size_t>(facts.recordsPerPage);
    const std::size_t page = static_cast<std::size_t>(facts.headerPages) + row / per_page;
    const std::size_t place = page * words_per_page * word + row % per_page * length;
    const auto from = file.begin() + static_cast<std::ptrdiff_t>(place);
    found.records.emplace_back(from, from + static_cast<std::ptrdiff_t>(length));
    std::fill_n(found.rest.begin() + static_cast<std::ptrdiff_t>(place), length,
                static_cast<unsigned char>(0));
  }
  return found;
}

class EditsHost : public TableHost {
 protected:
  void SetUp() override {
    std::filesystem::create_directory(path("temp"));
    set_environment("TMPDIR", path("temp"));
    set_environment("TMP", path("temp"));
  }
  void TearDown() override {
    set_environment("TMPDIR", before_);
    set_environment("TMP", before_);
  }

  /// Names of everything beside the table, in the folder for temporary files, and of copies in the
  /// current folder.
  std::set<std::string> left_behind() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      names.insert(entry.path().filename().string());
    }
    for (const auto& entry : std::filesystem::directory_iterator(path("temp"))) {
      names.insert("temp/" + entry.path().filename().string());
    }
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::current_path())) {
      const std::string name = entry.path().filename().string();
      if (name.find("NEW") < 2) names.insert("./" + name);
    }
    names.erase("temp");
    return names;
  }

  HRESULT open_set(LONG read_only = 0, const char* name = "table.ovt") {
    return set_->Open(text_of(path(name)).get(), read_only);
  }

  template <class Interface>
  static OvTableFacts facts_of(const ovfile::pointer<Interface>& object) {
    OvTableFacts facts{};
    facts.cbSize = sizeof facts;
    auto maintenance = object.template query<IOvTableMaintenance>();
    EXPECT_EQ(maintenance->GetFacts(&facts), S_OK);
    return facts;
  }

  LONG rows() {
    LONG count = -1;
    EXPECT_EQ(table_->GetRowCount(&count), S_OK);
    return count;
  }
  static ovfile::pointer<IOvSchema> schema_of(const ovfile::pointer<IOvTable>& table) {
    ovfile::pointer<IOvSchema> schema;
    EXPECT_EQ(table->get_Schema(schema.out()), S_OK);
    return schema;
  }
  /// The values of a column from the first row to the last.
  std::vector<double> numbers(LONG column) {
    std::vector<double> values;
    const LONG count = rows();
    for (LONG row = 1; row <= count; ++row) {
      double value = -99;
      EXPECT_EQ(table_->GetRowAt(row), S_OK);
      EXPECT_EQ(table_->GetColumnAsDouble(column, &value), S_OK);
      values.push_back(value);
    }
    (void)table_->GetFirstRow();
    return values;
  }
  std::vector<std::string> texts(LONG column) {
    std::vector<std::string> values;
    const LONG count = rows();
    for (LONG row = 1; row <= count; ++row) {
      EXPECT_EQ(table_->GetRowAt(row), S_OK);
      values.push_back(column_text(column));
    }
    (void)table_->GetFirstRow();
    return values;
  }

  ovfile::pointer<IOvTableADO> set_ = ovfile::create_record_set();
  const std::filesystem::path before_ = std::filesystem::temp_directory_path();
};

}  // namespace ovtest
