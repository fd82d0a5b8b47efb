// Tables made anew from chosen rows and columns, through the maintenance interface of both objects.
#include "edits_host.h"
#include "table/cell_copy.h"

namespace {

using ovtest::bytes;
using ovtest::EditsHost;
using ovtest::text_of;
using ovtest::words;

class Rebuild : public EditsHost, public ::testing::WithParamInterface<bool> {
 protected:
  void open_rows(int count) {
    make_rows(count, GetParam());
    ASSERT_EQ(open(), S_OK);
  }
  HRESULT rebuild(const ovfile::pointer<IOvSchema>& schema, const std::vector<LONG>* columns,
                  const std::vector<LONG>* chosen) {
    return table_.query<IOvTableMaintenance>()->Rebuild(
        schema.get(), columns != nullptr ? static_cast<LONG>(columns->size()) : 0,
        columns != nullptr ? columns->data() : nullptr,
        chosen != nullptr ? static_cast<LONG>(chosen->size()) : 0,
        chosen != nullptr ? chosen->data() : nullptr);
  }
  HRESULT rebuild_rows(const std::vector<LONG>& chosen) { return rebuild({}, nullptr, &chosen); }
  ovfile::pointer<IOvSchema> schema(bool is_double) {
    auto made = ovfile::create_schema();
    made->put_DoublePrecision(is_double ? VARIANT_TRUE : VARIANT_FALSE);
    made->put_Description(words("anew").get());
    return made;
  }
  /// The words for a file that a failing disk does not open.
  static std::string not_opened(const std::string& table) {
    return "cannot open file " + table + " (" +
           ovf::utf8_from_wide(ovf::system_message(ovtest::failing_code)) + ")";
  }
  ovfile::pointer<IOvSchema> schema_with_depth_and_name() {
    auto made = schema(GetParam());
    made->AddNumericColumn(words("DEPTH").get(), 0, 0);
    made->AddStringColumn(words("BHID").get(), 12, nullptr, 0);
    return made;
  }
};

INSTANTIATE_TEST_SUITE_P(BothPrecisions, Rebuild, ::testing::Bool(),
                         [](const auto& each) { return each.param ? "double" : "single"; });

TEST_P(Rebuild, WithoutAnyChoiceTheTableStaysTheSame) {
  open_rows(5);
  for (LONG row = 1; row <= 5; ++row) {
    ASSERT_EQ(table_->GetRowAt(row), S_OK);
    // Texts that were put stand otherwise than those of a new row.
    ASSERT_EQ(table_->SetColumnString(1, words("hole").get()), S_OK);
  }
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  const bytes before = content();
  EXPECT_EQ(rebuild({}, nullptr, nullptr), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{1, 2, 3, 4, 5}));
  EXPECT_EQ(content(), before);
}

TEST_P(Rebuild, ChosenRowsInAnyOrder) {
  open_rows(5);
  EXPECT_EQ(rebuild_rows({4, 1, 5}), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{4, 1, 5}));
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(Rebuild, NoRowsAtAll) {
  open_rows(5);
  const LONG none = 0;
  EXPECT_EQ(table_.query<IOvTableMaintenance>()->Rebuild(nullptr, 0, nullptr, 0, &none), S_OK);
  EXPECT_EQ(rows(), 0);
  EXPECT_EQ(at_end(), 1);
}

TEST_P(Rebuild, ARowTwiceOrOneThatIsNotThereIsRefused) {
  open_rows(5);
  const bytes before = content();
  ASSERT_EQ(table_->GetRowAt(3), S_OK);
  EXPECT_REPORT(rebuild_rows({2, 3, 2}), "Rebuild failed, row 2 is named twice");
  EXPECT_REPORT(rebuild_rows({0}), "Rebuild failed, row 0 does not exist");
  EXPECT_REPORT(rebuild_rows({-7}), "Rebuild failed, row -7 does not exist");
  EXPECT_REPORT(rebuild_rows({1, 6}), "Rebuild failed, row 6 does not exist");
  const LONG one = 1;
  EXPECT_REPORT(table_.query<IOvTableMaintenance>()->Rebuild(nullptr, 0, nullptr, -1, &one),
                "Rebuild failed, -1 is no number of rows");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(row(), 3);
}

TEST_P(Rebuild, ColumnsGoByName) {
  open_rows(2);
  auto wanted = schema(GetParam());
  wanted->AddNumericColumn(words("DEPTH").get(), 0, 0);
  wanted->AddNumericColumn(words("depth").get(), 8, 0);
  wanted->AddStringColumn(words("BHID").get(), 12, nullptr, 0);
  EXPECT_EQ(rebuild(wanted, nullptr, nullptr), S_OK);
  EXPECT_EQ(numbers(1), (std::vector<double>{1, 2}));
  EXPECT_EQ(numbers(2), (std::vector<double>{8, 8}));
  EXPECT_EQ(texts(3), (std::vector<std::string>{"none        ", "none        "}));
}

TEST_P(Rebuild, ColumnsGoByNumberUnderNewNames) {
  open_rows(2);
  auto wanted = schema(GetParam());
  wanted->AddNumericColumn(words("FROM").get(), 3, 0);
  wanted->AddNumericColumn(words("TO").get(), 0, 0);
  wanted->AddNumericColumn(words("SG").get(), 0, 0);
  const std::vector<LONG> columns{0, 2, 3};
  const std::vector<LONG> chosen{2, 1};
  EXPECT_EQ(rebuild(wanted, &columns, &chosen), S_OK);
  EXPECT_EQ(numbers(1), (std::vector<double>{3, 3}));
  EXPECT_EQ(numbers(2), (std::vector<double>{2, 1}));
  EXPECT_EQ(numbers(3), (std::vector<double>{2.75, 2.75}));
}

/// Rows out of their order, also where few may wait together.
TEST_P(Rebuild, ColumnsAndRowsInAnyOrder) {
  constexpr LONG count = 700;
  open_rows(count);
  std::vector<LONG> chosen;
  for (LONG row = count; row > 0; --row) chosen.push_back((row * 3) % count + 1);
  const std::vector<std::uint32_t> row_numbers(chosen.begin(), chosen.end());
  const std::vector<double> expected(chosen.begin(), chosen.end());
  const std::vector<ovf::column_origin> origins{{2, GetParam() ? ovColumnDouble : ovColumnSingle},
                                                {1, ovColumnString}};
  for (const std::size_t memory : {std::size_t{1}, std::size_t{300}, ovf::waiting_memory}) {
    ASSERT_EQ(create(schema_with_depth_and_name(), "copy.ovt"), S_OK);
    ASSERT_EQ(table_->Close(), S_OK);
    {
      const auto from = ovf::open_table(ovtest::wide_path(path()), true);
      const auto to = ovf::open_table(ovtest::wide_path(path("copy.ovt")), false);
      ovf::work_progress nobody;
      ovf::copy_cells(*from, *to, {origins}, row_numbers, nobody, memory);
      to->flush();
    }
    ASSERT_EQ(open(1, "copy.ovt"), S_OK);
    EXPECT_EQ(numbers(1), expected);
    EXPECT_EQ(texts(2), std::vector<std::string>(count, "none        "));
  }
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(rebuild(schema_with_depth_and_name(), nullptr, &chosen), S_OK);
  EXPECT_EQ(numbers(1), expected);
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_TRUE(content() == content("copy.ovt"));
}

TEST_P(Rebuild, OwnColumnsInOtherPlaces) {
  open_rows(2);
  const std::vector<LONG> columns{0, 3, 2};
  EXPECT_EQ(rebuild({}, &columns, nullptr), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{2.75, 2.75}));
  ovfile::text description;
  EXPECT_EQ(schema_of(table_)->get_Description(description.out()), S_OK);
  EXPECT_EQ(description.utf8(), "holes");
}

TEST_P(Rebuild, ColumnsThatDoNotFitAreRefused) {
  open_rows(2);
  const bytes before = content();
  auto wanted = schema(GetParam());
  wanted->AddNumericColumn(words("FROM").get(), 0, 0);
  const std::vector<LONG> two{1, 2};
  EXPECT_REPORT(rebuild(wanted, &two, nullptr), "Rebuild failed, the schema has 1 columns and not 2");
  const std::vector<LONG> beyond{4};
  EXPECT_REPORT(rebuild(wanted, &beyond, nullptr),
                "Rebuild failed, column 1 of the new table comes from column 4");
  const std::vector<LONG> below{-1};
  EXPECT_REPORT(rebuild(wanted, &below, nullptr),
                "Rebuild failed, column 1 of the new table comes from column -1");
  EXPECT_EQ(content(), before);
}

TEST_P(Rebuild, AValueThatDoesNotConvertNamesItsPlace) {
  open_rows(3);
  const bytes before = content();
  auto wanted = schema(GetParam());
  wanted->AddNumericColumn(words("DEPTH").get(), 0, 0);
  wanted->AddNumericColumn(words("BHID").get(), 0, 0);
  const std::vector<LONG> chosen{3, 1};
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(rebuild(wanted, nullptr, &chosen), E_FAIL);
  const std::string words = ovtest::reported();
  EXPECT_TRUE(words.starts_with("Rebuild failed, row 1, column 1: ")) << words;
  EXPECT_EQ(content(), before);
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
}

TEST_P(Rebuild, ASchemaThatNoTableCanHaveIsToldWhy) {
  open_rows(2);
  auto wanted = schema(GetParam());
  wanted->AddNumericColumn(words("A B").get(), 0, 0);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(rebuild(wanted, nullptr, nullptr), E_FAIL);
  const std::string told = ovtest::reported();
  EXPECT_TRUE(told.starts_with("Rebuild failed, no copy of the table can be made: ")) << told;
  EXPECT_GT(told.size(), std::string("Rebuild failed, no copy of the table can be made: ").size());
  EXPECT_EQ(depth(), 1);
}

TEST_P(Rebuild, AReadOnlyTableIsRefused) {
  make_rows(2, GetParam());
  ASSERT_EQ(open(1), S_OK);
  EXPECT_REPORT(rebuild_rows({1}), "Rebuild failed, file is open in read-only mode");
}

TEST_P(Rebuild, WithoutATableFailsSilently) { EXPECT_REPORT(rebuild_rows({1}), "(none)"); }

TEST_P(Rebuild, TheSchemaOfTheHostIsNotItsOwn) {
  open_rows(3);
  ASSERT_EQ(table_->put_Schema(nullptr), S_OK);
  EXPECT_EQ(rebuild_rows({3, 2}), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{3, 2}));
  ASSERT_EQ(schema_of(table_)->AddNumericColumn(words("MORE").get(), 0, 0), S_OK);
  const std::vector<LONG> columns{1, 2, 3};
  EXPECT_EQ(rebuild({}, &columns, nullptr), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{3, 2}));
}

TEST_P(Rebuild, ATableInUseElsewhereIsNamedWithTheSystemsWords) {
  open_rows(3);
  ovtest::failing_files disk;
  disk.fail_nth(ovtest::call::replace, 1);
  EXPECT_REPORT(rebuild_rows({1}), "Rebuild failed, the copy cannot replace " +
                                       ovf::utf8_from_wide(ovtest::wide_path(path())) + ": " +
                                       ovf::utf8_from_wide(ovf::system_message(ovtest::failing_code)));
  EXPECT_EQ(numbers(2), (std::vector<double>{1, 2, 3}));
}

TEST_P(Rebuild, ANewTableThatCannotBeOpenedIsNamedWithTheReason) {
  open_rows(3);
  ovtest::failing_files disk;
  bool placed = false;
  disk.decide = [&](ovtest::call kind, const ovf::wide&) {
    placed = placed || kind == ovtest::call::replace;
    return placed && kind == ovtest::call::open ? ovtest::fate::fails : ovtest::fate::works;
  };
  const std::string table = ovf::utf8_from_wide(ovtest::wide_path(path()));
  EXPECT_REPORT(rebuild_rows({1}),
                "Rebuild failed, the new table " + table + " cannot be opened: " + not_opened(table));
}

TEST_P(Rebuild, BothReasonsAreToldWhereTheOldTableCannotBeOpenedEither) {
  open_rows(3);
  const bytes before = content();
  ovtest::failing_files disk;
  bool refused = false;
  disk.decide = [&](ovtest::call kind, const ovf::wide&) {
    refused = refused || kind == ovtest::call::replace;
    return refused && (kind == ovtest::call::replace || kind == ovtest::call::open) ? ovtest::fate::fails
                                                                                    : ovtest::fate::works;
  };
  const std::string table = ovf::utf8_from_wide(ovtest::wide_path(path()));
  EXPECT_REPORT(rebuild_rows({1}), "Rebuild failed, the copy cannot replace " + table + ": " +
                                       ovf::utf8_from_wide(ovf::system_message(ovtest::failing_code)) +
                                       "; the table cannot be opened again: " + not_opened(table));
  disk.fail_nothing();
  EXPECT_EQ(content(), before);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(rebuild_rows({1}), S_OK);
}

TEST_P(Rebuild, ATableThatIsGoneWhenItIsOpenedAgainIsToldSo) {
  open_rows(3);
  ovtest::failing_files disk;
  disk.decide = [&](ovtest::call kind, const ovf::wide& name) {
    if (kind == ovtest::call::sync && !std::filesystem::is_regular_file(name))
      std::filesystem::remove(path());
    return ovtest::fate::works;
  };
  EXPECT_REPORT(rebuild_rows({1}), "Rebuild failed, the new table " +
                                       ovf::utf8_from_wide(ovtest::wide_path(path())) +
                                       " cannot be opened: there is no such file");
}

TEST_P(Rebuild, ATextLongerThanItsNewColumnIsRefused) {
  open_rows(4);
  ASSERT_EQ(table_->GetRowAt(3), S_OK);
  ASSERT_EQ(table_->SetColumnString(1, words("HOLE7").get()), S_OK);
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  const bytes before = content();
  auto wanted = schema(GetParam());
  wanted->AddNumericColumn(words("DEPTH").get(), 0, 0);
  wanted->AddStringColumn(words("BHID").get(), 4, nullptr, 0);
  EXPECT_REPORT(rebuild(wanted, nullptr, nullptr),
                "Rebuild failed, row 3, column 1: the text is longer than 4 characters");
  // The same where rows are out of their order.
  const std::vector<LONG> chosen{4, 3, 1};
  EXPECT_REPORT(rebuild(wanted, nullptr, &chosen),
                "Rebuild failed, row 3, column 1: the text is longer than 4 characters");
  EXPECT_EQ(content(), before);
  EXPECT_EQ(row(), 3);
  EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
  // Rows that are left out lose nothing.
  const std::vector<LONG> others{4, 1};
  EXPECT_EQ(rebuild(wanted, nullptr, &others), S_OK);
  EXPECT_EQ(texts(2), (std::vector<std::string>{"none", "none"}));
}

TEST_P(Rebuild, TrailingBlanksAreNoLoss) {
  open_rows(1);
  ASSERT_EQ(table_->SetColumnString(1, words("DH-1   ").get()), S_OK);
  auto wanted = schema(GetParam());
  wanted->AddStringColumn(words("BHID").get(), 4, nullptr, 0);
  EXPECT_EQ(rebuild(wanted, nullptr, nullptr), S_OK);
  EXPECT_EQ(texts(1), std::vector<std::string>{"DH-1"});
}

TEST_P(Rebuild, ANumberThatATextColumnCannotHoldIsRefused) {
  open_rows(2);
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  ASSERT_EQ(table_->SetColumnDouble(2, -1234.5), S_OK);
  ASSERT_EQ(table_->FlushChanges(), S_OK);
  const bytes before = content();
  auto wanted = schema(GetParam());
  wanted->AddStringColumn(words("DEPTH").get(), 4, nullptr, 0);
  EXPECT_REPORT(rebuild(wanted, nullptr, nullptr),
                "Rebuild failed, row 2, column 2: the text is longer than 4 characters");
  EXPECT_EQ(content(), before);
  wanted = schema(GetParam());
  wanted->AddStringColumn(words("DEPTH").get(), 8, nullptr, 0);
  EXPECT_EQ(rebuild(wanted, nullptr, nullptr), S_OK);
  EXPECT_EQ(texts(1), (std::vector<std::string>{"1       ", "-1234.5 "}));
}

/// Its hosts have always had such texts cut.
TEST_P(Rebuild, RepairCutsInstead) {
  open_rows(2);
  ASSERT_EQ(table_->SetColumnString(1, words("HOLE7").get()), S_OK);
  auto wanted = schema(GetParam());
  wanted->AddStringColumn(words("BHID").get(), 4, nullptr, 0);
  EXPECT_EQ(table_->Repair(wanted.get()), S_OK);
  EXPECT_EQ(texts(1), std::vector<std::string>{"HOLE"});
}

TEST_P(Rebuild, TheRecordSetDoesTheSame) {
  make_rows(3, GetParam());
  ASSERT_EQ(open_set(), S_OK);
  const LONG chosen[] = {3, 1};
  EXPECT_EQ(set_.query<IOvTableMaintenance>()->Rebuild(nullptr, 0, nullptr, 2, chosen), S_OK);
  LONG count = 0;
  EXPECT_EQ(set_->GetRowCount(&count), S_OK);
  EXPECT_EQ(count, 2);
}

}  // namespace
