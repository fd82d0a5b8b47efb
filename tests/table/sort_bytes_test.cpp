// Sorted files byte for byte: as if each row had been read and put column by column, in the new order,
// into a table made from the old one's schema, with the names, description and owner of the old header.
#include <cmath>
#include <random>

#include "edits_host.h"
#include "support/shared_data.h"
#include "support/table_cases.h"
#include "table/row_copy.h"

namespace {

using ovtest::bytes;
using ovtest::EditsHost;
using ovtest::file_records;
using ovtest::text_of;
using ovtest::words;

/// The value of a column by which a row is sorted.
struct row_key {
  bool is_text = false;
  double number = 0;
  std::u16string text;
};

bool before(const row_key& one, const row_key& other) {
  if (!one.is_text) {
    if (std::isnan(one.number) || std::isnan(other.number)) {
      return !std::isnan(one.number) && std::isnan(other.number);
    }
    return one.number < other.number;
  }
  for (std::size_t i = 0; i < one.text.size() && i < other.text.size(); ++i) {
    if (one.text[i] != other.text[i]) return one.text[i] > other.text[i];
  }
  return one.text.size() > other.text.size();
}

class SortedBytes : public EditsHost {
 protected:
  std::vector<row_key> keys(LONG column) {
    std::vector<row_key> found;
    const LONG count = rows();
    for (LONG row = 1; row <= count; ++row) {
      if (table_->GetRowAt(row) != S_OK) return {};
      ovfile::variant value;
      if (table_->GetColumn(column, value.out()) != S_OK) return {};
      row_key key;
      const VARIANT& held = value.get();
      key.is_text = held.vt == VT_BSTR;
      if (held.vt == VT_R4) key.number = static_cast<double>(held.fltVal);
      if (held.vt == VT_R8) key.number = held.dblVal;
      for (UINT i = 0; key.is_text && i < SysStringLen(held.bstrVal); ++i) {
        key.text.push_back(static_cast<char16_t>(held.bstrVal[i]));
      }
      found.push_back(key);
    }
    return found;
  }

  static std::vector<LONG> order_of(const std::vector<row_key>& keys, bool ascending) {
    std::vector<LONG> order(keys.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<LONG>(i + 1);
    std::stable_sort(order.begin(), order.end(), [&](LONG one, LONG other) {
      const row_key& first = keys[static_cast<std::size_t>(one - 1)];
      const row_key& second = keys[static_cast<std::size_t>(other - 1)];
      return ascending ? before(first, second) : before(second, first);
    });
    return order;
  }

  /// Copies the rows of the open table into a new file; false when none can be made from its schema.
  bool copy_rows(const std::vector<LONG>& order, const char* name) {
    LONG count = 0;
    const auto schema = schema_of(table_);
    EXPECT_EQ(schema->get_FieldCount(&count), S_OK);
    auto copy = ovfile::create_table();
    if (copy->Create(text_of(path(name)).get(), schema.get()) != S_OK) return false;
    for (const LONG row : order) {
      EXPECT_EQ(table_->GetRowAt(row), S_OK);
      if (copy->AddRow() != S_OK) return false;
      for (LONG column = 1; column <= count; ++column) {
        ovfile::variant value;
        EXPECT_EQ(table_->GetColumn(column, value.out()), S_OK);
        EXPECT_TRUE(SUCCEEDED(copy->SetColumn(column, value.get())));
      }
    }
    EXPECT_EQ(copy->Close(), S_OK);
    return true;
  }

  /// The copy's bytes with the texts of the old header.
  bytes expected(const bytes& old, std::size_t word_bytes, const char* name) {
    bytes file = content(name);
    std::copy_n(old.begin(), 22 * word_bytes, file.begin());
    return file;
  }

  /// Rows of equal keys may stand in any order.
  static void expect_same(const file_records& found, const file_records& wanted,
                          const std::vector<LONG>& order, const std::vector<row_key>& keys) {
    EXPECT_TRUE(found.rest == wanted.rest) << "header or the bytes behind the records differ";
    ASSERT_EQ(found.records.size(), wanted.records.size());
    const auto key_at = [&](std::size_t place) -> const row_key& {
      return keys[static_cast<std::size_t>(order[place] - 1)];
    };
    for (std::size_t begin = 0, end = 0; begin < order.size(); begin = end) {
      for (end = begin + 1; end < order.size(); ++end) {
        if (before(key_at(begin), key_at(end)) || before(key_at(end), key_at(begin))) break;
      }
      const auto part = [&](const file_records& of) {
        std::multiset<bytes> records;
        for (std::size_t i = begin; i < end; ++i) records.insert(of.records[i]);
        return records;
      };
      ASSERT_TRUE(part(found) == part(wanted)) << "rows " << begin + 1 << " to " << end;
    }
  }

  void check(const bytes& file, LONG column, bool ascending) {
    ovtest::write_bytes(path(), file);
    if (open() != S_OK || rows() < column) return;
    const std::vector<row_key> found_keys = keys(column);
    const bool readable = static_cast<LONG>(found_keys.size()) == rows();
    const std::vector<LONG> order = order_of(found_keys, ascending);
    const OvTableFacts facts = facts_of(table_);
    const bool modelled = readable && copy_rows(order, "model.ovt");
    const HRESULT status = table_->Sort(column, ascending ? VARIANT_TRUE : VARIANT_FALSE);
    EXPECT_EQ(status, readable ? S_OK : E_FAIL) << ovtest::reported();
    if (!readable) {
      EXPECT_TRUE(content() == file) << "a refused sort changed the file";
    }
    if (!modelled) {
      // Names that no new table may have: the rows stand in order, and there are no bytes to compare.
      if (readable) {
        EXPECT_EQ(keys(column).size(), found_keys.size());
      }
      ASSERT_EQ(table_->Close(), S_OK);
      return;
    }
    const OvTableFacts sorted = facts_of(table_);
    ASSERT_EQ(table_->Close(), S_OK);
    EXPECT_EQ(sorted.byteOrder, 0);
    const bytes wanted = expected(file, static_cast<std::size_t>(facts.wordBytes), "model.ovt");
    ASSERT_EQ(content().size(), wanted.size());
    expect_same(ovtest::records_of(content(), sorted), ovtest::records_of(wanted, sorted), order, found_keys);
    EXPECT_EQ(left_behind(), (std::set<std::string>{"model.ovt", "table.ovt"}));
    ++checked_;
  }

  void check_columns(const bytes& file) {
    ovtest::write_bytes(path(), file);
    SetErrorInfo(0, nullptr);
    if (open() != S_OK) return;
    LONG count = 0;
    ASSERT_EQ(schema_of(table_)->get_FieldCount(&count), S_OK);
    const LONG step = std::max<LONG>(1, count / 3);
    for (LONG column = 1; column <= count; column += step) {
      for (const bool ascending : {true, false}) {
        SCOPED_TRACE("column " + std::to_string(column) + (ascending ? " up" : " down"));
        check(file, column, ascending);
      }
    }
    (void)table_->Close();
  }

  int checked_ = 0;
};

TEST_F(SortedBytes, TablesPutTogetherWordByWord) {
  for (const ovtest::table_case& each : ovtest::table_cases()) {
    SCOPED_TRACE(each.name);
    check_columns(each.file);
  }
  EXPECT_GT(checked_, 50);
}

TEST_F(SortedBytes, ReferenceTables) {
  const std::filesystem::path golden = ovtest::shared_folder() / "golden";
  if (!std::filesystem::exists(golden)) GTEST_SKIP() << "no reference files in " << golden;
  for (const auto& entry : std::filesystem::directory_iterator(golden)) {
    if (entry.path().extension() != ".ovt" || entry.file_size() > 100000) continue;
    if (entry.path().filename().string().starts_with("link")) continue;
    SCOPED_TRACE(entry.path().filename().string());
    check_columns(ovtest::read_bytes(entry.path()));
  }
  EXPECT_GT(checked_, 200);
}

/// A text and a number from small alphabets, so that many keys are equal, against the model.
TEST_F(SortedBytes, RandomTables) {
  std::mt19937 random(20240611);
  const std::vector<std::string> pieces{"a", "b", "A", " ", "\u00E9", "\u20AC", "\u0178", "zz", "\u0081"};
  const std::vector<double> specials{-1e30, 1e30, 0.0, -0.0, std::nan(""), INFINITY, -INFINITY, 1e-30};
  for (int turn = 0; turn < 24; ++turn) {
    SCOPED_TRACE("turn " + std::to_string(turn));
    auto schema = ovfile::create_schema();
    schema->put_DoublePrecision(turn % 2 == 0 ? VARIANT_TRUE : VARIANT_FALSE);
    schema->AddNumericColumn(words("X").get(), 1, 0);
    schema->AddStringColumn(words("IMPLICIT").get(), 4, words("same").get(), 1);
    schema->AddStringColumn(words("T").get(), 12, words("dflt").get(), 0);
    schema->AddNumericColumn(words("ROW").get(), 0, 0);
    ASSERT_EQ(create(schema, "random.ovt"), S_OK);
    const int count = static_cast<int>(random() % 700) + 4;
    for (int row = 0; row < count; ++row) {
      ASSERT_EQ(table_->AddRow(), S_OK);
      const auto choice = random() % 20;
      const double number =
          choice < specials.size() ? specials[choice] : static_cast<double>(random() % 50) / 4;
      ASSERT_EQ(turn % 2 == 0 ? table_->SetColumnDouble(1, number)
                              : table_->SetColumnFloat(1, static_cast<float>(number)),
                S_OK);
      std::string text;
      for (auto length = random() % 6; length > 0; --length) text += pieces[random() % pieces.size()];
      ASSERT_EQ(table_->SetColumnString(3, words(text).get()), S_OK);
      ASSERT_EQ(table_->SetColumnDouble(4, row), S_OK);
    }
    ASSERT_EQ(table_->Close(), S_OK);
    const bytes file = content("random.ovt");
    std::filesystem::remove(path("random.ovt"));
    for (const LONG column : {1, 2, 3, 4}) {
      SCOPED_TRACE(column);
      check(file, column, turn % 4 < 2);
    }
  }
  EXPECT_EQ(checked_, 24 * 4);
}

/// Records that wait in memory for their turn: as many as there is room for.
TEST_F(SortedBytes, LittleMemoryGivesTheSameFile) {
  constexpr int count = 500;
  make_rows(count);
  std::vector<std::uint32_t> shuffled(count);
  for (std::uint32_t i = 0; i < count; ++i) shuffled[i] = i + 1;
  std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(7));
  ASSERT_EQ(open(), S_OK);
  ASSERT_TRUE(copy_rows(std::vector<LONG>(shuffled.begin(), shuffled.end()), "model.ovt"));
  ASSERT_EQ(table_->Close(), S_OK);
  for (const std::size_t memory : {std::size_t{1}, std::size_t{24}, std::size_t{1000}, std::size_t{11999}}) {
    SCOPED_TRACE(memory);
    ASSERT_EQ(create(holes(true), "copy.ovt"), S_OK);
    ASSERT_EQ(table_->Close(), S_OK);
    {
      const auto from = ovf::open_table(ovtest::wide_path(path()), true);
      const auto to = ovf::open_table(ovtest::wide_path(path("copy.ovt")), false);
      ovf::work_progress nobody;
      ovf::copy_rows(*from, *to, shuffled, nobody, memory);
      to->flush();
    }
    EXPECT_TRUE(content("copy.ovt") == content("model.ovt"));
  }
}

/// A text whose last word has no place in the records, as no program of today writes it.
TEST_F(SortedBytes, AFieldThatIsStoredInPartBecomesWhole) {
  for (const ovtest::word_format format : {ovtest::single_words, ovtest::double_words}) {
    std::vector<ovtest::atom> atoms{ovtest::number_atom("X", 1)};
    ovtest::add_text_atoms(atoms, "T", 2, 0, "defaults");
    atoms[1].position = 2;
    atoms[2].position = 0;
    ovtest::header_words header;
    header.pages = 2;
    header.records_in_last_page = 40;
    bytes file = ovtest::make_header(header, atoms, format);
    ovtest::add_page(file, format);
    for (std::size_t row = 0; row < 40; ++row) {
      ovtest::put_number(file, ovtest::record_word(1, row, 2, 1), 7.0 * static_cast<double>(row % 11),
                         format);
      ovtest::put_text(file, ovtest::record_word(1, row, 2, 2), 1, "r" + std::to_string(row), format);
    }
    check_columns(file);
  }
  EXPECT_EQ(checked_, 8);
}

}  // namespace
