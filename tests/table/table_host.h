// A host's view of the table object, for its tests.
#pragma once

#include <gtest/gtest.h>

#include "base/file.h"
#include "engine/open_table.h"
#include "ovfile/smart.h"
#include "support/failing_files.h"
#include "support/scratch_folder.h"
#include "support/table_bytes.h"

namespace ovtest {

/// The description of the thread's error information, which is taken; "(none)" without one.
inline std::string reported() {
  ovfile::pointer<IErrorInfo> info;
  if (GetErrorInfo(0, info.out()) != S_OK || !info) return "(none)";
  ovfile::text words;
  info->GetDescription(words.out());
  return words.utf8();
}

inline std::string reported_source() {
  ovfile::pointer<IErrorInfo> info;
  if (GetErrorInfo(0, info.out()) != S_OK || !info) return "(none)";
  ovfile::text words;
  info->GetSource(words.out());
  return words.utf8();
}

/// Expects a failed status with exactly this report.
#define EXPECT_REPORT(call, words)        \
  do {                                    \
    SetErrorInfo(0, nullptr);             \
    EXPECT_EQ((call), E_FAIL);            \
    EXPECT_EQ(ovtest::reported(), words); \
  } while (false)

inline ovfile::text text_of(const std::string& utf8) { return ovfile::text(std::string_view(utf8)); }
inline ovfile::text text_of(const std::filesystem::path& path) { return ovfile::text(wide_path(path)); }

class TableHost : public ::testing::Test {
 protected:
  std::filesystem::path path(const char* name = "table.ovt") const { return folder_ / name; }
  bytes content(const char* name = "table.ovt") const { return read_bytes(path(name)); }

  /// A schema of one text (BHID, 8), one number (DEPTH, default -1) and one implicit number.
  static ovfile::pointer<IOvSchema> holes(bool is_double) {
    auto schema = ovfile::create_schema();
    schema->put_DoublePrecision(is_double ? VARIANT_TRUE : VARIANT_FALSE);
    schema->put_Description(text_of(std::string("holes")).get());
    schema->AddStringColumn(text_of(std::string("BHID")).get(), 8, text_of(std::string("none")).get(), 0);
    schema->AddNumericColumn(text_of(std::string("DEPTH")).get(), -1, 0);
    schema->AddNumericColumn(text_of(std::string("DENSITY")).get(), 2.75, 1);
    return schema;
  }

  HRESULT create(const ovfile::pointer<IOvSchema>& schema, const char* name = "table.ovt") {
    return table_->Create(text_of(path(name)).get(), schema.get());
  }
  HRESULT open(LONG read_only = 0, const char* name = "table.ovt") {
    return table_->Open(text_of(path(name)).get(), read_only);
  }
  /// Makes a table of the holes schema with `rows` rows, DEPTH being the row's number, and closes it.
  void make_rows(int rows, bool is_double = true, const char* name = "table.ovt") {
    ASSERT_EQ(create(holes(is_double), name), S_OK);
    for (int row = 1; row <= rows; ++row) {
      ASSERT_EQ(table_->AddRow(), S_OK);
      ASSERT_EQ(table_->SetColumnDouble(2, row), S_OK);
    }
    ASSERT_EQ(table_->Close(), S_OK);
  }

  double depth() {
    double value = -99;
    EXPECT_EQ(table_->GetColumnAsDouble(2, &value), S_OK);
    return value;
  }
  LONG row() {
    LONG value = -99;
    EXPECT_EQ(table_->GetCurrentRow(&value), S_OK);
    return value;
  }
  VARIANT_BOOL at_end() {
    VARIANT_BOOL value = 99;
    EXPECT_EQ(table_->get_EOF(&value), S_OK);
    return value;
  }
  VARIANT_BOOL at_beginning() {
    VARIANT_BOOL value = 99;
    EXPECT_EQ(table_->get_BOF(&value), S_OK);
    return value;
  }
  std::string column_text(LONG column) {
    ovfile::text value;
    EXPECT_EQ(table_->GetColumnAsString(column, value.out()), S_OK);
    return value.utf8();
  }

  scratch_folder folder_;
  ovfile::pointer<IOvTable> table_ = ovfile::create_table();
};

}  // namespace ovtest
