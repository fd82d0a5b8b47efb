#include <gtest/gtest.h>

#include <sstream>

#include "golden/check_reading.h"
#include "golden/complaint.h"
#include "golden/unimplemented.h"

namespace ovtest {
namespace {

using range_method = HRESULT (STDMETHODCALLTYPE IOvTable::*)(LONG, double*);

/// False when the method does not exist yet.
bool check_range(comparison& compare, IOvTable& table, range_method method, const std::string& name,
                 LONG column, double expected) {
  double received = -9;
  const HRESULT status = (table.*method)(column, &received);
  if (is_unimplemented(status, name)) return false;
  const place where{0, column};
  if (status != S_OK) compare.fail(where, name, "S_OK", take_error_text());
  compare.equal(where, name, expected, received);
  return true;
}

void check_no_range(comparison& compare, IOvTable& table, range_method method, const std::string& name) {
  double received = -9;
  clear_error();
  const HRESULT status = (table.*method)(1, &received);
  if (is_unimplemented(status, name)) return;
  compare.equal(place{0, 1}, name, long{E_FAIL}, long{status});
  compare.equal(place{0, 1}, name + " value", 0.0, received);
  compare.equal(place{0, 1}, name + " message", name + " failed, index is not valid", take_error_text());
}

void check_ranges(comparison& compare, IOvTable& table, const expected_reading& expected) {
  if (expected.ranges_fail) {
    check_no_range(compare, table, &IOvTable::GetColumnMin, "GetColumnMin");
    check_no_range(compare, table, &IOvTable::GetColumnMax, "GetColumnMax");
  }
  if (!expected.ranges) return;
  for (std::size_t i = 0; i < expected.ranges->size(); ++i) {
    const column_range& range = (*expected.ranges)[i];
    if (!range) continue;
    const auto column = static_cast<LONG>(i + 1);
    const bool exists =
        check_range(compare, table, &IOvTable::GetColumnMin, "GetColumnMin", column, range->first) &&
        check_range(compare, table, &IOvTable::GetColumnMax, "GetColumnMax", column, range->second);
    if (!exists) return;
  }
}

VARIANT_BOOL flag(const std::string& word) { return word == "true" ? VARIANT_TRUE : VARIANT_FALSE; }

/// `loose`, `tight`, or the four arguments of GetSignature.
HRESULT signature(IOvTable& table, const std::string& key, bstr& received, std::string& method) {
  method = key == "loose" ? "GetLooseSignature" : key == "tight" ? "GetTightSignature" : "GetSignature";
  if (key == "loose") return table.GetLooseSignature(received.out());
  if (key == "tight") return table.GetTightSignature(received.out());
  std::istringstream words(key);
  std::string part[4];
  for (std::string& word : part) std::getline(words, word, ',');
  return table.GetSignature(flag(part[0]), flag(part[1]), flag(part[2]),
                            static_cast<LONG>(std::stol(part[3])), received.out());
}

void check_signatures(comparison& compare, IOvTable& table, const expected_reading& expected) {
  for (const auto& [key, digits] : expected.signatures) {
    bstr received;
    std::string method;
    const HRESULT status = signature(table, key, received, method);
    if (is_unimplemented(status, method)) return;
    if (status != S_OK) compare.fail(place{}, method + " " + key, "S_OK", take_error_text());
    compare.equal(place{}, method + " " + key, digits, received.utf8());
  }
}

void check_kind(comparison& compare, IOvTable& table, const expected_reading& expected) {
  if (!expected.type_hint) return;
  owned<IOvSchema> schema;
  ASSERT_EQ(S_OK, table.get_Schema(schema.out()));
  OvFileType hint{};
  const HRESULT status = schema->get_TypeHint(&hint);
  if (is_unimplemented(status, "TypeHint")) return;
  EXPECT_EQ(S_OK, status);
  compare.equal(place{}, "TypeHint", *expected.type_hint, static_cast<long>(hint));
}

}  // namespace

int check_derived(IOvTable& table, const expected_reading& expected) {
  comparison compare(expected.file);
  check_kind(compare, table, expected);
  check_ranges(compare, table, expected);
  check_signatures(compare, table, expected);
  return compare.comparisons();
}

}  // namespace ovtest
