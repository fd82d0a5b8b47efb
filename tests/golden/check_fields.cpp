#include "golden/check_fields.h"

#include <map>

namespace ovtest {
namespace {

void check_default(comparison& compare, IOvSchema& schema, LONG column, const expected_field& expected) {
  variant received;
  EXPECT_EQ(S_OK, schema.GetFieldDefault(column, received.out()));
  const place where{0, column};
  if (const auto* number = std::get_if<double>(&expected.default_value)) {
    if (compare.equal(where, "type of the default", static_cast<long>(VT_R8), long{received.get().vt})) {
      compare.equal(where, "default", *number, received.get().dblVal);
    }
  } else if (const auto* text = std::get_if<std::string>(&expected.default_value)) {
    if (compare.equal(where, "type of the default", static_cast<long>(VT_BSTR), long{received.get().vt})) {
      compare.equal(where, "default", *text, to_utf8(received.view()));
    }
  }
}

void check_field(comparison& compare, IOvSchema& schema, LONG column, const expected_field& expected) {
  const place where{0, column};
  bstr name;
  OvColumnType type{};
  LONG width = -1;
  LONG offset = -9;
  VARIANT_BOOL implicit = 9;
  EXPECT_EQ(S_OK, schema.GetFieldName(column, name.out()));
  EXPECT_EQ(S_OK, schema.GetFieldType(column, &type));
  EXPECT_EQ(S_OK, schema.GetFieldSizeChars(column, &width));
  EXPECT_EQ(S_OK, schema.GetFieldOffset(column, &offset));
  EXPECT_EQ(S_OK, schema.IsFieldImplicit(column, &implicit));
  compare.equal(where, "name", expected.name, name.utf8());
  compare.equal(where, "type", static_cast<long>(expected.type), static_cast<long>(type));
  compare.equal(where, "width", static_cast<long>(expected.width_chars), static_cast<long>(width));
  compare.equal(where, "implicit", expected.implicit ? 1L : 0L, static_cast<long>(implicit));
  compare.equal(where, "offset", expected.implicit ? -1L : 0L, static_cast<long>(offset));
  check_default(compare, schema, column, expected);
}

/// The first field of a name is the one that the look-up finds.
std::map<std::string, long> first_places(const std::vector<expected_field>& fields) {
  std::map<std::string, long> places;
  for (std::size_t i = 0; i < fields.size(); ++i) places.emplace(fields[i].name, static_cast<long>(i + 1));
  return places;
}

void check_look_up(comparison& compare, IOvSchema& schema, const std::map<std::string, long>& places) {
  for (const auto& [name, column] : places) {
    LONG found = -9;
    EXPECT_EQ(S_OK, schema.GetFieldIndex(bstr(name).get(), &found)) << compare.file() << ": " << name;
    compare.equal(place{0, column}, "GetFieldIndex of " + name, column, static_cast<long>(found));
  }
}

void check_schema_state(comparison& compare, IOvSchema& schema, const expected_reading& expected) {
  if (expected.facts) {
    VARIANT_BOOL is_double = 9;
    EXPECT_EQ(S_OK, schema.get_DoublePrecision(&is_double));
    compare.equal(place{}, "DoublePrecision", expected.facts->word_bytes == 8, is_double != 0);
  }
  if (expected.header && expected.header->schema_description) {
    bstr description;
    EXPECT_EQ(S_OK, schema.get_Description(description.out()));
    compare.equal(place{}, "schema description", *expected.header->schema_description, description.utf8());
  }
}

}  // namespace

void check_fields(comparison& compare, IOvTable& table, const expected_reading& expected) {
  owned<IOvSchema> schema;
  ASSERT_EQ(S_OK, table.get_Schema(schema.out())) << expected.file;
  ASSERT_TRUE(schema) << expected.file << ": no schema";
  check_schema_state(compare, *schema, expected);

  LONG count = -1;
  EXPECT_EQ(S_OK, schema->get_FieldCount(&count));
  if (expected.field_count) {
    compare.equal(place{}, "field count", *expected.field_count, static_cast<long>(count));
  }
  check_look_up(compare, *schema, expected.index_of);
  if (!expected.fields) return;
  const auto fields = static_cast<long>(expected.fields->size());
  if (!compare.equal(place{}, "number of fields", fields, static_cast<long>(count))) return;
  for (long i = 1; i <= fields; ++i) {
    check_field(compare, *schema, static_cast<LONG>(i), (*expected.fields)[static_cast<std::size_t>(i - 1)]);
  }
  check_look_up(compare, *schema, first_places(*expected.fields));
}

}  // namespace ovtest
