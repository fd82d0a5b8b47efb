#include "golden/check_cells.h"

#include <cstring>

#include "golden/unimplemented.h"
#include "support/file_bytes.h"

namespace ovtest {
namespace {

/// Compares one cell of the row on which the cursor stands.
class cell_check {
 public:
  cell_check(comparison& compare, IOvTable& table, place where, int word_bytes)
      : compare_(compare), table_(table), where_(where), word_bytes_(word_bytes) {}

  void operator()(const text_cell& expected) const {
    compare_.equal(where_, "text", expected.utf8, text());
    const variant value = as_variant();
    if (compare_.equal(where_, "type of the variant", long{VT_BSTR}, long{value.get().vt})) {
      compare_.equal(where_, "text of the variant", expected.utf8, to_utf8(value.view()));
    }
  }

  void operator()(const empty_cell&) const {
    compare_.equal(where_, "text", std::string(), text());
    const variant value = as_variant();
    if (compare_.equal(where_, "type of the variant", long{VT_BSTR}, long{value.get().vt})) {
      compare_.equal(where_, "text of the variant", std::string(), to_utf8(value.view()));
    }
  }

  void operator()(const number_cell& expected) const {
    if (expected.as_float) check_float(*expected.as_float, expected);
    if (expected.as_double) check_double(*expected.as_double, expected);
    if (expected.as_text) compare_.equal(where_, "number as text", *expected.as_text, text());
    check_variant(expected);
  }

 private:
  std::string text() const {
    bstr received;
    expect_ok(table_.GetColumnAsString(column(), received.out()), "GetColumnAsString");
    return received.utf8();
  }

  variant as_variant() const {
    variant received;
    expect_ok(table_.GetColumn(column(), received.out()), "GetColumn");
    return received;
  }

  void check_float(float expected, const number_cell& cell) const {
    float received = -9;
    expect_ok(table_.GetColumnAsFloat(column(), &received), "GetColumnAsFloat");
    compare_.equal(where_, "as float", expected, received);
    if (cell.bits && word_bytes_ == 4) check_bits(*cell.bits, &received, sizeof received);
  }

  void check_double(double expected, const number_cell& cell) const {
    double received = -9;
    expect_ok(table_.GetColumnAsDouble(column(), &received), "GetColumnAsDouble");
    compare_.equal(where_, "as double", expected, received);
    if (cell.bits && word_bytes_ == 8) check_bits(*cell.bits, &received, sizeof received);
  }

  /// Moved as memory: a floating-point load could make a signalling NaN a quiet one.
  void check_bits(std::uint64_t expected, const void* value, std::size_t size) const {
    std::uint64_t received = 0;
    std::memcpy(&received, value, size);
    if (received == expected) return;
    char wanted[32];
    char got[32];
    std::snprintf(wanted, sizeof wanted, "%016llx", static_cast<unsigned long long>(expected));
    std::snprintf(got, sizeof got, "%016llx", static_cast<unsigned long long>(received));
    compare_.fail(where_, "bits", wanted, got);
  }

  void check_variant(const number_cell& expected) const {
    const variant value = as_variant();
    const auto type = static_cast<long>(value.get().vt);
    if (!compare_.equal(where_, "type of the variant", word_bytes_ == 8 ? long{VT_R8} : long{VT_R4}, type)) {
      return;
    }
    if (word_bytes_ == 4 && expected.as_float) {
      compare_.equal(where_, "variant", *expected.as_float, value.get().fltVal);
    }
    if (word_bytes_ == 8 && expected.as_double) {
      compare_.equal(where_, "variant", *expected.as_double, value.get().dblVal);
    }
    if (expected.bits) {
      check_bits(*expected.bits, &value.get().llVal, static_cast<std::size_t>(word_bytes_));
    }
  }

  void expect_ok(HRESULT status, const char* method) const {
    if (status != S_OK) compare_.fail(where_, method, "S_OK", take_error_text());
  }
  LONG column() const { return static_cast<LONG>(where_.column); }

  comparison& compare_;
  IOvTable& table_;
  place where_;
  int word_bytes_;
};

int word_bytes(IOvTable& table) {
  owned<IOvSchema> schema;
  VARIANT_BOOL is_double = 0;
  if (table.get_Schema(schema.out()) == S_OK && schema) schema->get_DoublePrecision(&is_double);
  return is_double != 0 ? 8 : 4;
}

std::string raw_record(comparison& compare, IOvTable& table, long row, std::size_t size) {
  constexpr unsigned char guard = 0xA5;
  std::vector<LONG> words(size / sizeof(LONG) + 4);
  std::memset(words.data(), guard, words.size() * sizeof(LONG));
  const HRESULT status = table.ReadOVRecord(words.data());
  if (is_unimplemented(status, "ReadOVRecord")) return {};
  if (status != S_OK) compare.fail(place{row, 0}, "ReadOVRecord", "S_OK", take_error_text());
  bytes raw(words.size() * sizeof(LONG));
  std::memcpy(raw.data(), words.data(), raw.size());
  for (std::size_t i = size; i < raw.size(); ++i) {
    if (raw[i] != guard) compare.fail(place{row, 0}, "record", "nothing behind its end", "bytes there");
  }
  std::string digits;
  for (std::size_t i = 0; i < size; ++i) {
    char pair[4];
    std::snprintf(pair, sizeof pair, "%02x", raw[i]);
    digits += pair;
  }
  return digits;
}

void check_record(comparison& compare, IOvTable& table, long row, const expected_reading& expected) {
  const auto index = static_cast<std::size_t>(row - 1);
  if (index >= expected.records.size()) return;
  const std::string& wanted = expected.records[index];
  const std::string received = raw_record(compare, table, row, wanted.size() / 2);
  if (!received.empty() || wanted.empty()) compare.equal(place{row, 0}, "record", wanted, received);
}

bool move_to(IOvTable& table, long row, long stands_on) {
  if (row == 1) return table.GetFirstRow() == S_OK;
  if (row == stands_on + 1) return table.GetNextRow() == S_OK;
  return table.GetRowAt(static_cast<LONG>(row)) == S_OK;
}

void check_row(comparison& compare, IOvTable& table, long row, const std::vector<expected_cell>& cells) {
  LONG current = -1;
  EXPECT_EQ(S_OK, table.GetCurrentRow(&current));
  compare.equal(place{row, 0}, "current row", row, static_cast<long>(current));
  const int bytes_of_a_word = word_bytes(table);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const place where{row, static_cast<long>(i + 1)};
    std::visit(cell_check(compare, table, where, bytes_of_a_word), cells[i]);
  }
}

void expect_end(comparison& compare, IOvTable& table, bool end, bool begin) {
  VARIANT_BOOL eof = 9;
  VARIANT_BOOL bof = 9;
  EXPECT_EQ(S_OK, table.get_EOF(&eof));
  EXPECT_EQ(S_OK, table.get_BOF(&bof));
  compare.equal(place{}, "EOF", end ? 1L : 0L, static_cast<long>(eof));
  compare.equal(place{}, "BOF", begin ? 1L : 0L, static_cast<long>(bof));
}

/// Off the last row the cursor is no row any more; back on the first it is again.
void check_run_off(comparison& compare, IOvTable& table, long row_count) {
  if (row_count == 0) {
    expect_end(compare, table, true, true);
    compare.equal(place{}, "GetFirstRow of no rows", long{S_FALSE}, long{table.GetFirstRow()});
    return;
  }
  EXPECT_EQ(S_OK, table.GetLastRow()) << compare.file();
  expect_end(compare, table, false, false);
  compare.equal(place{row_count, 0}, "GetNextRow behind the last row", long{S_FALSE},
                long{table.GetNextRow()});
  expect_end(compare, table, true, false);
  clear_error();
  compare.equal(place{}, "GetNextRow after the end", long{E_FAIL}, long{table.GetNextRow()});
  compare.equal(place{}, "its message", std::string("GetNextRow failed, current row is not valid"),
                take_error_text());
  EXPECT_EQ(S_OK, table.GetFirstRow()) << compare.file();
  expect_end(compare, table, false, false);
}

void check_row_failures(comparison& compare, IOvTable& table, const expected_reading& expected) {
  for (const auto& [row, message] : expected.row_failures) {
    clear_error();
    if (row == 1) {
      compare.equal(place{row, 0}, "GetFirstRow", long{E_FAIL}, long{table.GetFirstRow()});
    } else {
      table.GetRowAt(static_cast<LONG>(row));
    }
    compare.equal(place{row, 0}, "message of the move", message, take_error_text());
  }
}

}  // namespace

void check_rows(comparison& compare, IOvTable& table, const expected_reading& expected) {
  long stands_on = 0;
  for (const auto& [row, cells] : expected.rows) {
    if (!move_to(table, row, stands_on)) {
      compare.fail(place{row, 0}, "move to the row", "S_OK", take_error_text());
      continue;
    }
    stands_on = row;
    check_row(compare, table, row, cells);
    check_record(compare, table, row, expected);
  }
  check_row_failures(compare, table, expected);
  if (expected.row_count && expected.row_failures.empty()) {
    check_run_off(compare, table, *expected.row_count);
  }
}

}  // namespace ovtest
