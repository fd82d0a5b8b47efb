// Long calls tell the host how far they have come, and the host can stop them.
#include "edits_host.h"
#include "progress_sink.h"

namespace {

using ovtest::bytes;
using ovtest::EditsHost;
using ovtest::give_progress;
using ovtest::progress_sink;
using ovtest::words;

/// More than a table can be walked through without a word.
constexpr LONG many_rows = 40000;

/// A call on a table of `many_rows` rows of the holes schema (table_host.h).
struct long_call {
  std::string name;
  bool by_record_set;
  std::function<HRESULT(const ovfile::pointer<IOvTable>&, const ovfile::pointer<IOvTableADO>&)> run;
  LONGLONG total;
  std::string stopped;
};

std::ostream& operator<<(std::ostream& out, const long_call& tested) { return out << tested.name; }

ovfile::pointer<IOvSchema> other_columns() {
  auto schema = ovfile::create_schema();
  schema->put_DoublePrecision(VARIANT_TRUE);
  schema->AddNumericColumn(words("DEPTH").get(), 0, 0);
  schema->AddStringColumn(words("BHID").get(), 12, nullptr, 0);
  return schema;
}

std::vector<LONG> backwards() {
  std::vector<LONG> rows;
  for (LONG row = many_rows; row > 0; --row) rows.push_back(row);
  return rows;
}

HRESULT rebuild(const ovfile::pointer<IOvTable>& table, IOvSchema* schema) {
  const std::vector<LONG> rows = backwards();
  return table.query<IOvTableMaintenance>()->Rebuild(schema, 0, nullptr, many_rows, rows.data());
}

HRESULT sign(const ovfile::pointer<IOvTable>& table) {
  ovfile::text signature;
  return table->GetTightSignature(signature.out());
}

std::vector<long_call> long_calls() {
  using table = const ovfile::pointer<IOvTable>&;
  using set = const ovfile::pointer<IOvTableADO>&;
  const std::string sort_stopped = "Sort failed, it was stopped";
  return {
      {"SortByNumber", false, [](table one, set) { return one->Sort(2, VARIANT_FALSE); }, 3 * many_rows,
       sort_stopped},
      {"SortByText", false, [](table one, set) { return one->Sort(1, VARIANT_TRUE); }, 3 * many_rows,
       sort_stopped},
      {"SortWhatIsSorted", false, [](table one, set) { return one->Sort(2, VARIANT_TRUE); }, 3 * many_rows,
       sort_stopped},
      {"Repair", false, [](table one, set) { return one->Repair(other_columns().get()); },
       2 * (many_rows - 1), "Repair failed, it was stopped"},
      {"DeleteRow", true, [](table, set one) { return one->DeleteRow(3); }, 2 * (many_rows - 1),
       "Error: DeleteRow failed, it was stopped."},
      {"RebuildRows", false, [](table one, set) { return rebuild(one, nullptr); }, 2 * many_rows,
       "Rebuild failed, it was stopped"},
      {"RebuildColumns", false, [](table one, set) { return rebuild(one, other_columns().get()); },
       2 * many_rows, "Rebuild failed, it was stopped"},
      {"GetSignature", false, [](table one, set) { return sign(one); }, many_rows,
       "GetSignature failed, it was stopped"},
  };
}

class LongCalls : public EditsHost, public ::testing::WithParamInterface<long_call> {
 protected:
  void SetUp() override {
    EditsHost::SetUp();
    static const bytes made = make_many();
    old_ = made;
  }
  bytes make_many() {
    make_rows(many_rows);
    // The texts differ, and not in the order of the rows.
    EXPECT_EQ(open(), S_OK);
    for (LONG row = 1; row <= many_rows; row += 7) {
      EXPECT_EQ(table_->GetRowAt(row), S_OK);
      EXPECT_EQ(table_->SetColumnString(1, words("H" + std::to_string(row % 1000)).get()), S_OK);
    }
    EXPECT_EQ(table_->Close(), S_OK);
    return content();
  }
  void open_anew() {
    ovtest::write_bytes(path(), old_);
    if (GetParam().by_record_set) {
      ASSERT_EQ(open_set(), S_OK);
      ASSERT_EQ(set_->MoveTo(9), S_OK);
    } else {
      ASSERT_EQ(open(), S_OK);
      ASSERT_EQ(table_->GetRowAt(9), S_OK);
    }
  }
  HRESULT run() { return GetParam().run(table_, set_); }
  HRESULT hear(IOvProgress* sink) {
    return GetParam().by_record_set ? give_progress(set_, sink) : give_progress(table_, sink);
  }
  LONG current() {
    LONG found = -1;
    EXPECT_EQ(GetParam().by_record_set ? set_->GetCurrentRow(&found) : table_->GetCurrentRow(&found), S_OK);
    return found;
  }

  progress_sink sink_;
  bytes old_;
};

INSTANTIATE_TEST_SUITE_P(Calls, LongCalls, ::testing::ValuesIn(long_calls()),
                         [](const auto& each) { return each.param.name; });

TEST_P(LongCalls, TellAllTheirWayAndDoTheSame) {
  open_anew();
  ASSERT_EQ(run(), S_OK);
  const bytes expected = content();
  open_anew();
  ASSERT_EQ(hear(&sink_), S_OK);
  sink_.meanwhile = [this] { EXPECT_GE(sink_.references, 2U); };
  EXPECT_EQ(run(), S_OK);
  sink_.expect_whole_work(GetParam().total);
  EXPECT_GE(sink_.heard.size(), 3U);
  EXPECT_EQ(sink_.references, 2U);
  EXPECT_TRUE(content() == expected);
  // Twice from the beginning.
  sink_.heard.clear();
  open_anew();
  EXPECT_EQ(run(), S_OK);
  sink_.expect_whole_work(GetParam().total);
  ASSERT_EQ(hear(nullptr), S_OK);
}

TEST_P(LongCalls, StoppedLeaveTheTableAsItWas) {
  open_anew();
  ASSERT_EQ(hear(&sink_), S_OK);
  HRESULT status = E_ABORT;
  for (std::size_t n = 1; status != S_OK; ++n) {
    ASSERT_LT(n, 1000U);
    SCOPED_TRACE("stopped at call " + std::to_string(n));
    sink_.heard.clear();
    sink_.stop_at = n;
    sink_.answer = n % 2 == 0 ? E_FAIL : S_FALSE;
    SetErrorInfo(0, nullptr);
    status = run();
    if (status == S_OK) {
      EXPECT_LT(sink_.heard.size(), n);
      EXPECT_GE(n, 4U);
    } else {
      EXPECT_EQ(status, E_ABORT);
      EXPECT_EQ(ovtest::reported(), GetParam().stopped);
      EXPECT_EQ(sink_.heard.size(), n) << "nothing is heard any more";
      EXPECT_TRUE(content() == old_);
      EXPECT_EQ(current(), 9);
    }
    EXPECT_EQ(left_behind(), std::set<std::string>{"table.ovt"});
  }
  ASSERT_EQ(hear(nullptr), S_OK);
}

/// All rows are written, and only the step into place is left.
TEST_P(LongCalls, CanStillBeStoppedAtTheirLastWord) {
  open_anew();
  ASSERT_EQ(hear(&sink_), S_OK);
  ASSERT_EQ(run(), S_OK);
  open_anew();
  bool at_the_end = false;
  sink_.heard.clear();
  sink_.meanwhile = [&] {
    at_the_end = sink_.heard.back().first == GetParam().total;
    if (at_the_end) sink_.stop_at = sink_.heard.size();
  };
  EXPECT_EQ(run(), E_ABORT);
  EXPECT_TRUE(at_the_end);
  EXPECT_TRUE(content() == old_);
  EXPECT_EQ(current(), 9);
  ASSERT_EQ(hear(nullptr), S_OK);
}

TEST_P(LongCalls, KeepTheirSinkThroughTheWorkWhenItIsTakenBack) {
  open_anew();
  ASSERT_EQ(hear(&sink_), S_OK);
  sink_.meanwhile = [this] {
    EXPECT_EQ(hear(nullptr), S_OK);
    EXPECT_EQ(sink_.references, 2U);
  };
  EXPECT_EQ(run(), S_OK);
  EXPECT_EQ(sink_.references, 1U);
  sink_.expect_whole_work(GetParam().total);
}

TEST_P(LongCalls, ThatFailForAnotherReasonAreNotStopped) {
  ovtest::failing_files disk;
  open_anew();
  ASSERT_EQ(hear(&sink_), S_OK);
  // Behind the first ones, by which some calls open the file again.
  disk.fail_nth(ovtest::call::read, GetParam().name.starts_with("Sort") ? 9 : 1);
  SetErrorInfo(0, nullptr);
  EXPECT_EQ(run(), E_FAIL);
  EXPECT_NE(ovtest::reported(), GetParam().stopped);
  disk.fail_nothing();
  EXPECT_EQ(current(), 9);
  EXPECT_TRUE(content() == old_);
  ASSERT_EQ(hear(nullptr), S_OK);
}

class ProgressSink : public EditsHost {
 protected:
  progress_sink sink_;
  progress_sink other_;
};

TEST_F(ProgressSink, IsHeldUntilAnotherOneOrNone) {
  ASSERT_EQ(give_progress(table_, &sink_), S_OK);
  EXPECT_EQ(sink_.references, 2U);
  ASSERT_EQ(give_progress(table_, &sink_), S_OK);
  EXPECT_EQ(sink_.references, 2U);
  ASSERT_EQ(give_progress(table_, &other_), S_OK);
  EXPECT_EQ(sink_.references, 1U);
  EXPECT_EQ(other_.references, 2U);
  ASSERT_EQ(give_progress(table_, nullptr), S_OK);
  EXPECT_EQ(other_.references, 1U);
  ASSERT_EQ(give_progress(table_, nullptr), S_OK);
}

TEST_F(ProgressSink, OfATableThatWasNeverOpenedGoesWithIt) {
  ASSERT_EQ(give_progress(table_, &sink_), S_OK);
  ASSERT_EQ(give_progress(set_, &other_), S_OK);
  ovfile::text signature;
  EXPECT_EQ(table_->GetTightSignature(signature.out()), E_FAIL);
  EXPECT_EQ(table_->Sort(1, VARIANT_TRUE), E_FAIL);
  EXPECT_EQ(set_->DeleteRow(1), E_FAIL);
  table_ = {};
  set_ = {};
  EXPECT_EQ(sink_.references, 1U);
  EXPECT_EQ(other_.references, 1U);
  EXPECT_TRUE(sink_.heard.empty());
  EXPECT_TRUE(other_.heard.empty());
}

TEST_F(ProgressSink, OfAnOpenTableGoesWithIt) {
  make_rows(3);
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(give_progress(table_, &sink_), S_OK);
  ASSERT_EQ(table_->Close(), S_OK);
  EXPECT_EQ(sink_.references, 2U) << "another table may be opened";
  ASSERT_EQ(open(), S_OK);
  EXPECT_EQ(table_->Sort(2, VARIANT_FALSE), S_OK);
  sink_.expect_whole_work(9);
  table_ = {};
  EXPECT_EQ(sink_.references, 1U);
}

TEST_F(ProgressSink, HearsOfNoRowsThatAllAreDone) {
  ASSERT_EQ(create(holes(true)), S_OK);
  ASSERT_EQ(give_progress(table_, &sink_), S_OK);
  ovfile::text signature;
  EXPECT_EQ(table_->GetLooseSignature(signature.out()), S_OK);
  sink_.expect_whole_work(0);
  sink_.heard.clear();
  EXPECT_EQ(table_.query<IOvTableMaintenance>()->Rebuild(nullptr, 0, nullptr, 0, nullptr), S_OK);
  sink_.expect_whole_work(0);
}

TEST_F(ProgressSink, HearsNothingOfWhatIsRefusedOrNeedsNoWork) {
  make_rows(3);
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(give_progress(table_, &sink_), S_OK);
  EXPECT_EQ(table_->Sort(4, VARIANT_TRUE), E_FAIL);
  EXPECT_EQ(table_->Repair(schema_of(table_).get()), S_OK);
  const LONG row = 4;
  EXPECT_EQ(table_.query<IOvTableMaintenance>()->Rebuild(nullptr, 0, nullptr, 1, &row), E_FAIL);
  EXPECT_TRUE(sink_.heard.empty());
}

/// What the host has changed and not written yet is not lost by a call that is stopped.
TEST_F(ProgressSink, StopsWithoutHarmToChangesOfTheHost) {
  make_rows(3);
  ASSERT_EQ(open(), S_OK);
  ASSERT_EQ(table_->GetRowAt(2), S_OK);
  ASSERT_EQ(table_->SetColumnDouble(2, 77), S_OK);
  ASSERT_EQ(give_progress(table_, &sink_), S_OK);
  sink_.stop_at = 2;
  EXPECT_EQ(table_->Sort(2, VARIANT_FALSE), E_ABORT);
  EXPECT_EQ(depth(), 77);
  EXPECT_EQ(numbers(2), (std::vector<double>{1, 77, 3}));
  sink_.stop_at = 0;
  EXPECT_EQ(table_->Sort(2, VARIANT_FALSE), S_OK);
  EXPECT_EQ(numbers(2), (std::vector<double>{77, 3, 1}));
}

}  // namespace
