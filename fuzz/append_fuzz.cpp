// Streams of any types and values, appended to a table: well made ones, arrays that cannot be, and streams
// whose own code calls into the table. The bytes tell, in this order, the table, what the calls do, the
// types, and then the batches until they end (made_arrays.h). Beside not crashing: everything that was handed
// over is released, a refusal leaves rows and bytes as they were, and what was taken in reads, also from the
// file.
#include <algorithm>

#include "made_arrays.h"
#include "memory_files.h"
#include "ovfile/progress.h"
#include "require.h"

namespace {

using namespace ovfuzz;

const ovf::wide_view table_name = OLESTR("/table.ovt");
const ovf::wide_view other_name = OLESTR("/other.ovt");

content made_table(bool is_double, int rows) {
  const memory_files files;
  auto schema = ovfile::create_schema();
  schema->put_DoublePrecision(is_double ? VARIANT_TRUE : VARIANT_FALSE);
  schema->AddStringColumn(ovfile::text("BHID").get(), 8, ovfile::text("none").get(), 0);
  schema->AddNumericColumn(ovfile::text("DEPTH").get(), -1, 0);
  schema->AddNumericColumn(ovfile::text("DENSITY").get(), 0, 1);
  schema->AddStringColumn(ovfile::text("MINE").get(), 4, nullptr, 1);
  auto table = ovfile::create_table();
  require(table->Create(ovfile::text(table_name).get(), schema.get()) == S_OK, "a table is made");
  for (int row = 0; row < rows; ++row) {
    require(table->AddRow() == S_OK && table->SetColumnDouble(2, row) == S_OK, "rows are added");
  }
  require(table->Close() == S_OK, "and it closes");
  return files.at(table_name);
}

/// Tables of 0, 1, 168 and 400 rows in both precisions, by a choice of 0 to 7; made once.
const content& table_of(int choice) {
  static const std::array<content, 8> tables = [] {
    std::array<content, 8> made;
    for (std::size_t i = 0; i < made.size(); ++i) {
      made[i] = made_table(i % 2 != 0, std::array{0, 1, 168, 400}[i / 2]);
    }
    return made;
  }();
  return tables[static_cast<std::size_t>(choice)];
}

/// Everything that rows and values are read from.
LONG read_rows(const ovfile::pointer<IOvTable>& table) {
  LONG rows = -1;
  require(table->GetRowCount(&rows) == S_OK, "a table has a row count");
  LONG read = 0;
  OvStreamRequest request;
  request.flags = ovStreamAbsentAsNull;
  auto stream = ovfile::read_stream(table, request);
  for (const ovfile::arrow_array& batch : stream) read += static_cast<LONG>(batch->length);
  require(read == rows, "every row that counts can be read");
  return rows;
}

class fuzzed_append {
 public:
  fuzzed_append(const std::uint8_t* data, std::size_t size) : input_(data, size), maker_(input_, alive_) {}

  void run() {
    const std::uint8_t choice = input_.take();
    const content& before = table_of(choice & 7);
    files_.put(table_name, before);
    files_.put(other_name, table_of((choice & 1) + 2));
    for (std::uint8_t& each : calls_) each = (choice & 8) != 0 ? input_.take() : 0;
    stops_at_ = (choice & 16) != 0 ? 1 + input_.take() % 4U : 0;
    take_types();
    require(table_->Open(ovfile::text(table_name).get(), 0) == S_OK, "the table opens");
    double lowest = 0;
    if ((choice & 32) != 0) (void)table_->GetColumnMin(2, &lowest);  // which from then on hears of numbers
    append(before);
  }

 private:
  class sink final : public IOvProgress {
   public:
    explicit sink(unsigned stops_at) : stops_at_(stops_at) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** out) override {
      *out = nullptr;
      return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override { return --references_; }
    HRESULT STDMETHODCALLTYPE Progress(LONGLONG done, LONGLONG) override {
      require(done == 0 || done >= last_, "steps are never taken back");
      last_ = done;
      return ++heard_ == stops_at_ ? S_FALSE : S_OK;
    }

   private:
    ULONG references_ = 1;
    LONGLONG last_ = 0;
    unsigned heard_ = 0;
    unsigned stops_at_;
  };

  void take_types() {
    static constexpr std::array<const char*, 7> names = {"BHID", "DEPTH", "DENSITY", "MINE",
                                                         "",     "DEPTH", "\xC3"};
    static constexpr std::array<const char*, 18> formats = {"u", "g", "U", "f", "i", "n", "b", "c", "C",
                                                            "s", "S", "I", "l", "L", "e", "u", "g", "z"};
    types_.resize(input_.take() % 5U);
    for (std::size_t i = 0; i < types_.size(); ++i) {
      const std::uint8_t how = input_.take();
      types_[i].name = (how & 1) == 0 ? names[i % 2] : input_.one_of(names);
      types_[i].format = (how & 2) == 0 ? formats[i % 2] : input_.one_of(formats);
      if ((how & 12) == 12) types_[i].dictionary = std::exchange(types_[i].format, input_.one_of(indexes));
    }
  }

  void append(const content& before) {
    sink heard(stops_at_);
    if (stops_at_ != 0) table_.query<IOvProgressSource>()->SetProgress(&heard);
    ArrowArrayStream stream = made_stream();
    LONG there = 0;
    LONG rows = -1;
    require(table_->GetRowCount(&there) == S_OK, "the table has a row count");
    const HRESULT status = ovfile::streams_of(table_)->Append(&stream, &rows);
    require(stream.release == nullptr && alive_ == 0, "all that was handed over is released");
    require(status == S_OK || status == E_FAIL || (status == E_ABORT && stops_at_ != 0), "a known answer");
    require(status == S_OK || rows == 0, "nothing counts that was refused");
    if (stops_at_ != 0) table_.query<IOvProgressSource>()->SetProgress(nullptr);
    if (has_called_) {
      if (is_open_) read_rows(table_);
    } else {
      check_rows(status, there + rows, before);
    }
    (void)table_->Close();
    require(table_->Open(ovfile::text(table_name).get(), 1) == S_OK, "the table opens again");
    const LONG left = read_rows(table_);
    require(has_called_ || left == there + rows, "with the rows that were taken in");
    require(table_->Close() == S_OK, "and closes");
  }

  void check_rows(HRESULT status, LONG rows, const content& before) {
    require(read_rows(table_) == rows, "the rows that were taken in are there");
    require(table_->FlushChanges() == S_OK, "they are written");
    require(status == S_OK || files_.at(table_name) == before, "a refusal leaves the file as it was");
  }

  /// What a stream's own code may do with the table.
  void call() {
    constexpr int most_calls = 32;
    if (++called_ > most_calls) return;
    const std::uint8_t what = calls_[static_cast<std::size_t>(called_) % calls_.size()];
    if (what % 16 == 0) return;
    has_called_ = true;
    make_call(what % 16);
    LONG rows = 0;
    is_open_ = table_->GetRowCount(&rows) == S_OK;
  }
  void make_call(int what) {
    switch (what) {
      case 1:
        return (void)table_->Close();
      case 2:
        return (void)table_->Open(ovfile::text(table_name).get(), 0);
      case 3:
        return (void)table_->Open(ovfile::text(other_name).get(), 0);
      case 4:
        return (void)table_->SetColumnDouble(2, 5);
      case 5:
        return (void)table_->AddRow();
      case 6:
        return (void)table_->ReduceRowCountTo(1);
      case 7:
        return (void)table_->FlushChanges();
      case 8:
        return (void)table_->GetLastRow();
      case 9:
        return (void)table_->Sort(1, VARIANT_FALSE);
      case 10:
        return (void)table_->SetColumnName(2, ovfile::text("AT").get());
      case 11:
        return (void)table_->SetColumnDefaultDouble(2, 9);
      case 12: {
        LONG rows = 0;
        ArrowArrayStream inner = made_stream();
        return (void)ovfile::streams_of(table_)->Append(&inner, &rows);
      }
      default:
        if (is_open_) read_rows(table_);
    }
  }

  ArrowArrayStream made_stream() {
    ++alive_;
    ArrowArrayStream stream{};
    stream.private_data = this;
    stream.get_schema = [](ArrowArrayStream* of, ArrowSchema* out) { return in(of).give_types(out); };
    stream.get_next = [](ArrowArrayStream* of, ArrowArray* out) { return in(of).give_batch(out); };
    stream.get_last_error = [](ArrowArrayStream* of) -> const char* {
      in(of).call();
      return "it \xE2\x82 fails";
    };
    stream.release = [](ArrowArrayStream* of) {
      --in(of).alive_;
      of->release = nullptr;
      in(of).call();
    };
    return stream;
  }
  static fuzzed_append& in(ArrowArrayStream* stream) {
    return *static_cast<fuzzed_append*>(stream->private_data);
  }
  int give_types(ArrowSchema* out) {
    call();
    if (input_.rarely(64)) return 5;
    maker_.make_types(types_, *out);
    return 0;
  }
  int give_batch(ArrowArray* out) {
    call();
    *out = {};
    if (input_.rarely(64)) return 5;
    if (!input_.is_empty()) maker_.make_batch(types_, *out);
    return 0;
  }

  static constexpr std::array<const char*, 9> indexes = {"i", "c", "C", "s", "S", "I", "l", "L", "g"};

  memory_files files_;
  input_bytes input_;
  int alive_ = 0;
  array_maker maker_;
  ovfile::pointer<IOvTable> table_ = ovfile::create_table();
  std::vector<made_type> types_;
  std::array<std::uint8_t, 6> calls_{};
  unsigned stops_at_ = 0;
  int called_ = 0;
  bool has_called_ = false;
  bool is_open_ = true;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzzed_append(data, size).run();
  return 0;
}
