#include "golden/check_reading.h"

#include <gtest/gtest.h>

#include "golden/check_cells.h"
#include "golden/check_fields.h"
#include "golden/complaint.h"

namespace ovtest {
namespace {

/// Names and description stand in the facts as they do in the file, NULs included; a 0 follows.
template <std::size_t Size>
std::string array_text(const OLECHAR (&units)[Size]) {
  return units[Size - 1] == 0 ? to_utf8({units, Size - 1}) : "no terminating 0";
}

void check_counts(comparison& compare, const OvTableFacts& received, const expected_facts& expected) {
  const place whole;
  compare.equal(whole, "word bytes", expected.word_bytes, static_cast<int>(received.wordBytes));
  compare.equal(whole, "byte order", expected.byte_order, static_cast<int>(received.byteOrder));
  compare.equal(whole, "atoms", expected.atoms, static_cast<int>(received.atoms));
  compare.equal(whole, "header pages", expected.header_pages, static_cast<int>(received.headerPages));
  compare.equal(whole, "record words", expected.record_words, static_cast<int>(received.recordWords));
  compare.equal(whole, "records per page", expected.records_per_page,
                static_cast<int>(received.recordsPerPage));
  compare.equal(whole, "records in the last page", expected.records_in_last_page,
                static_cast<int>(received.recordsInLastPage));
  compare.equal(whole, "pages", expected.pages, received.pages);
}

void check_header(comparison& compare, const OvTableFacts& received, const expected_header& expected) {
  const place whole;
  compare.equal(whole, "first name", expected.first_name, array_text(received.firstName));
  compare.equal(whole, "second name", expected.second_name, array_text(received.secondName));
  compare.equal(whole, "description", expected.description, array_text(received.description));
  compare.equal(whole, "owner", expected.owner, array_text(received.owner));
}

void check_facts(comparison& compare, IOvTable& table, const expected_reading& expected) {
  if (!expected.facts && !expected.header) return;
  const auto maintenance = query<IOvTableMaintenance>(table);
  ASSERT_TRUE(maintenance) << expected.file << ": the table answers no IOvTableMaintenance";
  OvTableFacts facts{};
  facts.cbSize = sizeof facts;
  ASSERT_EQ(S_OK, maintenance->GetFacts(&facts)) << expected.file << ": " << take_error_text();
  if (expected.facts) check_counts(compare, facts, *expected.facts);
  if (expected.header) check_header(compare, facts, *expected.header);
  if (expected.row_count) {
    compare.equal(place{}, "rows of the facts", static_cast<long long>(*expected.row_count), facts.rows);
  }
}

void check_flags(comparison& compare, IOvTable& table, const expected_reading& expected) {
  if (expected.is_linked) {
    VARIANT_BOOL linked = 0;
    EXPECT_EQ(S_OK, table.get_IsLinked(&linked));
    compare.equal(place{}, "IsLinked", *expected.is_linked, linked != 0);
  }
  if (expected.row_count) {
    LONG rows = -1;
    EXPECT_EQ(S_OK, table.GetRowCount(&rows));
    compare.equal(place{}, "GetRowCount", *expected.row_count, static_cast<long>(rows));
  }
}

}  // namespace

void check_reading(IOvTable& table, const expected_reading& expected) {
  comparison compare(expected.file);
  check_facts(compare, table, expected);
  check_flags(compare, table, expected);
  check_fields(compare, table, expected);
  check_rows(compare, table, expected);
}

}  // namespace ovtest
