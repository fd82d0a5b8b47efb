// The edits that make a table's file anew, as a list for tests that let them fail and end midway.
#pragma once

#include <functional>
#include <ostream>

#include "edits_host.h"

namespace ovtest {

/// One edit of a table of 20 rows of the holes schema (table_host.h) with a row to stand on.
struct table_edit {
  std::string name;
  bool by_record_set;
  std::function<HRESULT(IOvTable*, IOvTableADO*)> run;
  std::string no_copy;       ///< the words when no copy can be made, or their beginning
  std::string not_replaced;  ///< the same when the copy is refused its place
  std::string not_reopened;  ///< the same
  bool opens_first = false;  ///< the file is opened again before anything else
};

inline std::ostream& operator<<(std::ostream& out, const table_edit& edit) { return out << edit.name; }

inline ovfile::pointer<IOvSchema> more_holes() {
  auto schema = ovfile::create_schema();
  schema->put_DoublePrecision(VARIANT_FALSE);
  schema->put_Description(words("more").get());
  schema->AddNumericColumn(words("DEPTH").get(), -1, 0);
  schema->AddNumericColumn(words("AU").get(), 0.5, 0);
  schema->AddStringColumn(words("BHID").get(), 12, nullptr, 0);
  return schema;
}

inline HRESULT rebuild_backwards(IOvTable* table) {
  std::vector<LONG> rows;
  for (LONG row = 20; row > 0; row -= 2) rows.push_back(row);
  void* found = nullptr;
  if (FAILED(table->QueryInterface(IID_IOvTableMaintenance, &found))) return E_NOINTERFACE;
  ovfile::pointer<IOvTableMaintenance> maintenance;
  *maintenance.out() = static_cast<IOvTableMaintenance*>(found);
  return maintenance->Rebuild(nullptr, 0, nullptr, static_cast<LONG>(rows.size()), rows.data());
}

inline std::vector<table_edit> table_edits() {
  return {
      {"Sort", false, [](IOvTable* table, IOvTableADO*) { return table->Sort(2, VARIANT_FALSE); },
       "DeleteRow failed, creating temp file",
       "Sort failed. Could not delete temp file: ", "Sort failed, new table invalid", true},
      {"Repair", false, [](IOvTable* table, IOvTableADO*) { return table->Repair(more_holes().get()); },
       "Repair failed, creating temp table object",
       "Repair failed. Could not delete temp file: ", "DeleteColumns failed, new table invalid"},
      {"DeleteRow", true, [](IOvTable*, IOvTableADO* set) { return set->DeleteRow(3); },
       "Error: DeleteRow failed, creating temp file.",
       "Error: DeleteRow failed. Could not delete file: ", "Error: DeleteRow failed, new table invalid."},
      {"Rebuild", false, [](IOvTable* table, IOvTableADO*) { return rebuild_backwards(table); },
       "Rebuild failed, no copy of the table can be made: ", "Rebuild failed, the copy cannot replace ",
       "Rebuild failed, the new table "},
  };
}

/// A host of one edit, and the file before and after it.
class EditedTable : public EditsHost, public ::testing::WithParamInterface<table_edit> {
 protected:
  void SetUp() override {
    EditsHost::SetUp();
    make_rows(20);
    old_ = content();
    open_anew();
    ASSERT_EQ(run(), S_OK);
    close();
    new_ = content();
    ASSERT_TRUE(old_ != new_);
  }

  /// The old table, open on row 9.
  void open_anew() {
    write_bytes(path(), old_);
    if (GetParam().by_record_set) {
      ASSERT_EQ(open_set(), S_OK);
      ASSERT_EQ(set_->MoveTo(9), S_OK);
    } else {
      ASSERT_EQ(open(), S_OK);
      ASSERT_EQ(table_->GetRowAt(9), S_OK);
    }
  }
  HRESULT run() { return GetParam().run(table_.get(), set_.get()); }
  void close() {
    EXPECT_EQ(table_->Close(), S_OK);
    EXPECT_EQ(set_->Close(), S_OK);
  }

  LONG current() {
    LONG found = -1;
    EXPECT_EQ(GetParam().by_record_set ? set_->GetCurrentRow(&found) : table_->GetCurrentRow(&found), S_OK);
    return found;
  }
  LONG row_count() {
    LONG found = -1;
    EXPECT_EQ(GetParam().by_record_set ? set_->GetRowCount(&found) : table_->GetRowCount(&found), S_OK);
    return found;
  }
  double second_column() {
    ovfile::variant value;
    EXPECT_EQ(GetParam().by_record_set ? set_->GetColumn(2, value.out()) : table_->GetColumn(2, value.out()),
              S_OK);
    return value.number();
  }
  /// The old table is open as it was.
  void expect_untouched() {
    EXPECT_TRUE(content() == old_);
    EXPECT_EQ(current(), 9);
    EXPECT_EQ(second_column(), 9);
    EXPECT_EQ(row_count(), 20);
  }

  bytes old_;
  bytes new_;
};

}  // namespace ovtest
