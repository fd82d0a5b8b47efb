// A host with a table and its streams.
#pragma once

#include <gtest/gtest.h>

#include "made_stream.h"
#include "read_columns.h"
#include "support/component.h"
#include "support/scratch_folder.h"
#include "support/table_bytes.h"

namespace ovtest {

class StreamHost : public ::testing::Test {
 protected:
  /// BHID (text, 8 characters, "none"), DEPTH (number, -1), DENSITY (implicit number, 2.75), MINE (implicit
  /// text, 4 characters, "Nord").
  static owned<IOvSchema> holes(bool is_double) {
    owned<IOvSchema> schema = make_schema();
    schema->put_DoublePrecision(is_double ? VARIANT_TRUE : VARIANT_FALSE);
    schema->put_Description(bstr("holes").get());
    schema->AddStringColumn(bstr("BHID").get(), 8, bstr("none").get(), 0);
    schema->AddNumericColumn(bstr("DEPTH").get(), -1, 0);
    schema->AddNumericColumn(bstr("DENSITY").get(), 2.75, 1);
    schema->AddStringColumn(bstr("MINE").get(), 4, bstr("Nord").get(), 1);
    return schema;
  }

  std::filesystem::path path(const char* name = "table.ovt") const { return folder_ / name; }
  bytes content(const char* name = "table.ovt") const { return read_bytes(path(name)); }

  void create(const owned<IOvSchema>& schema, const char* name = "table.ovt") {
    ASSERT_EQ(table_->Create(path_text(path(name)).get(), schema.get()), S_OK) << take_error_text();
  }
  void open(LONG read_only = 0, const char* name = "table.ovt") {
    ASSERT_EQ(table_->Open(path_text(path(name)).get(), read_only), S_OK) << take_error_text();
  }
  /// The table of holes with `rows` rows, BHID "H1" and so on, DEPTH the row's number; stays open.
  void make_holes(int rows, bool is_double = true, const char* name = "table.ovt") {
    create(holes(is_double), name);
    for (int row = 1; row <= rows; ++row) add_hole("H" + std::to_string(row), row);
    ASSERT_EQ(table_->GetFirstRow(), rows > 0 ? S_OK : S_FALSE);
  }
  void add_hole(const std::string& name, double depth) {
    ASSERT_EQ(table_->AddRow(), S_OK);
    ASSERT_EQ(table_->SetColumnString(1, bstr(name).get()), S_OK);
    ASSERT_EQ(table_->SetColumnDouble(2, depth), S_OK);
  }

  read_table read(const OvStreamRequest& request = {}) const {
    return read_all(ovfile::read_stream(table_, request));
  }
  read_table read_with(ULONG flags) const {
    OvStreamRequest request;
    request.flags = flags;
    return read(request);
  }

  LONG rows() const {
    LONG count = -99;
    EXPECT_EQ(table_->GetRowCount(&count), S_OK);
    return count;
  }

  /// Appends, and expects the stream and all that it gave to be released.
  HRESULT append(made_stream& from, LONG* rows = nullptr) {
    clear_error();
    LONG appended = -99;
    const HRESULT status = streams()->Append(&from.stream, rows != nullptr ? rows : &appended);
    EXPECT_EQ(from.stream.release, nullptr);
    EXPECT_EQ(from.alive, 0);
    return status;
  }
  HRESULT append_batch(made_batch batch) {
    made_stream from({std::move(batch)});
    return append(from);
  }
  /// Expects a refusal with these words, and the table as it was.
  void expect_refused(made_stream& from, const std::string& words) {
    const LONG before = rows();
    LONG appended = -99;
    EXPECT_EQ(append(from, &appended), E_FAIL);
    EXPECT_EQ(take_error_text(), words);
    EXPECT_EQ(appended, 0);
    EXPECT_EQ(rows(), before);
  }
  void expect_refused(made_batch batch, const std::string& words) {
    made_stream from({std::move(batch)});
    expect_refused(from, words);
  }

  ovfile::pointer<IOvTableStream> streams() const { return ovfile::streams_of(table_); }

  scratch_folder folder_;
  owned<IOvTable> table_ = make_table();
};

}  // namespace ovtest
