// Tables under another schema, for the tests of `Repair`.
#pragma once

#include "edits_host.h"

namespace ovtest {

using schema_pointer = ovfile::pointer<IOvSchema>;

inline schema_pointer empty_schema(bool is_double) {
  auto schema = ovfile::create_schema();
  schema->put_DoublePrecision(is_double ? VARIANT_TRUE : VARIANT_FALSE);
  schema->put_Description(words("repaired").get());
  return schema;
}

inline void add_number(const schema_pointer& schema, const char* name, double value = 0, LONG implicit = 0) {
  ASSERT_EQ(schema->AddNumericColumn(words(name).get(), value, implicit), S_OK);
}

inline void add_text(const schema_pointer& schema, const char* name, LONG width, const char* value = "",
                     LONG implicit = 0) {
  ASSERT_EQ(schema->AddStringColumn(words(name).get(), width, words(value).get(), implicit), S_OK);
}

/// The schema of `TableHost::holes` and more columns.
inline schema_pointer holes_and(bool is_double) {
  auto schema = empty_schema(is_double);
  add_text(schema, "BHID", 8, "none");
  add_number(schema, "DEPTH", -1);
  add_number(schema, "DENSITY", 2.75, 1);
  return schema;
}

class RepairHost : public EditsHost, public ::testing::WithParamInterface<bool> {
 protected:
  void open_rows(int count) {
    make_rows(count, GetParam());
    ASSERT_EQ(open(), S_OK);
  }
  HRESULT repair(const schema_pointer& schema) { return table_->Repair(schema.get()); }
  LONG fields() {
    LONG count = -1;
    EXPECT_EQ(schema_of(table_)->get_FieldCount(&count), S_OK);
    return count;
  }
};

}  // namespace ovtest
