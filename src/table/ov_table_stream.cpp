#include "stream/table_stream.h"
#include "table/ov_table.h"
#include "table/work_progress.h"

namespace ovf {
namespace {

/// How many rows a stream will have.
constexpr std::uint64_t nobody_knows = 0;

constexpr wide_view append_read_only = OLESTR("Append failed, file is open in read-only mode");
constexpr wide_view append_in_append =
    OLESTR("Append failed, rows of another stream are being appended to this table");
constexpr wide_view append_changed =
    OLESTR("Append failed, another program has changed the table's file meanwhile");
constexpr wide_view append_stopped = OLESTR("Append failed, it was stopped");
constexpr wide_view no_stream = OLESTR("Append failed, the stream was released before");

}  // namespace

/// A stream's hold on the object.
class COvTable::stream_owner final : public table_owner {
 public:
  explicit stream_owner(COvTable& object) : object_(object), reference_(static_cast<IOvTable*>(&object)) {}
  table* opened() const noexcept override {
    return object_.core_.is_open() ? &object_.core_.opened() : nullptr;
  }

 private:
  COvTable& object_;
  ovfile::pointer<IOvTable> reference_;
};

HRESULT COvTable::Read(const OvStreamRequest* pRequest, ArrowArrayStream* pStream) {
  if (pStream == nullptr) return E_POINTER;
  *pStream = {};
  if (pRequest == nullptr) return E_POINTER;
  return guard(*this, [&]() -> HRESULT {
    try {
      read_table(std::make_unique<stream_owner>(*this), plan_of(*pRequest, core_.opened()), *pStream);
      return S_OK;
    } catch (const bad_request& refused) {
      return ReportError(class_id, refused.message(), 0, nullptr, interface_id, E_INVALIDARG);
    }
  });
}

HRESULT COvTable::Append(ArrowArrayStream* pStream, LONG* pRows) {
  if (pRows != nullptr) *pRows = 0;
  if (pStream == nullptr) return E_POINTER;
  if (pStream->release == nullptr) {
    return ReportError(class_id, no_stream, 0, nullptr, interface_id, E_INVALIDARG);
  }
  // Released whatever becomes of its rows.
  ovfile::arrow_stream from(*pStream);
  if (pRows == nullptr) return E_POINTER;
  return guard(*this, [&]() -> HRESULT {
    if (core_.is_read_only()) return report(*this, append_read_only);
    (void)core_.opened();
    // The rows of both would go to the same place.
    if (is_appending_) return report(*this, append_in_append);
    if (core_.was_changed_elsewhere()) return report(*this, append_changed);
    try {
      *pRows = append_rows(*from.get());
      return S_OK;
    } catch (const work_stopped&) {
      return ReportError(class_id, append_stopped, 0, nullptr, interface_id, E_ABORT);
    }
  });
}

LONG COvTable::append_rows(ArrowArrayStream& from) {
  // A host's code runs in between, and may let go of the object, or ask it for ranges.
  const stream_owner owner(*this);
  struct mark {
    bool& is_set;
    explicit mark(bool& of) : is_set(of) { is_set = true; }
    ~mark() { is_set = false; }
  };
  const mark appending(is_appending_);
  const bool were_known = ranges_.are_known();
  column_ranges widened = ranges_;
  work_progress work(core_.progress, nobody_knows);
  append_watch watch;
  if (were_known) watch.numbers = [&widened](LONG column, double value) { widened.take(column, value); };
  if (core_.progress) {
    watch.rows = [&work](std::uint64_t more) { work.step(more); };
    watch.finished = [&work] { work.finish(); };
  }
  const std::uint64_t rows = append_to_table(owner, from, watch);
  if (were_known) {
    ranges_.take(widened);
  } else if (ranges_.are_known() && rows != 0) {
    ranges_ = {};  // found without the new rows: they are found again when somebody asks
  }
  return static_cast<LONG>(rows);
}

}  // namespace ovf
