#include <algorithm>

#include "stream/table_stream.h"

namespace ovf {
namespace {

constexpr wide_view prefix = OLESTR("Append failed, ");
constexpr wide_view changed_while_appended =
    OLESTR("the table was closed or changed while rows were appended to it");

/// Rows that are put without a word to anybody.
constexpr std::uint64_t rows_at_a_time = 1 << 14;

/// A structure that a host fills.
template <class Structure>
class received {
 public:
  received() = default;
  received(const received&) = delete;
  received& operator=(const received&) = delete;
  ~received() {
    if (held_.release != nullptr) held_.release(&held_);
  }

  Structure* out() noexcept { return &held_; }
  const Structure& operator*() const noexcept { return held_; }
  const Structure* operator->() const noexcept { return &held_; }
  bool is_there() const noexcept { return held_.release != nullptr; }

 private:
  Structure held_{};
};

/// What a batch has for `release` until the stream answers. Its end is a batch that is released, for which
/// one that nobody filled would pass: an interpreter that finds no memory for its own call returns 0 all the
/// same.
void unanswered(ArrowArray* batch) noexcept { batch->release = nullptr; }

/// The host's code runs in the stream's functions and in what hears of the rows; any of them may close or
/// change the table, so that it is looked for again after each.
class table_appender {
 public:
  table_appender(const table_owner& owner, ArrowArrayStream& from, const append_watch& watch)
      : owner_(owner),
        stream_(from),
        watch_(watch),
        table_(owner.opened()),
        version_(require_table().version()),
        columns_(*table_, watch.numbers) {}
  table_appender(const table_appender&) = delete;
  table_appender& operator=(const table_appender&) = delete;
  ~table_appender() {
    if (owner_.in_state(version_) != nullptr) table_->giveUpRows();
  }

  std::uint64_t run() {
    take_types();
    while (append_batch()) {
    }
    if (watch_.finished) watch_.finished();
    require_unchanged();
    if (rows_ != 0) table_->commitRows();
    return rows_;
  }

 private:
  table& require_table() const {
    if (table_ == nullptr) refuse(changed_while_appended);
    return *table_;
  }
  void require_unchanged() const {
    if (owner_.in_state(version_) == nullptr) refuse(changed_while_appended);
  }

  void take_types() {
    if (stream_.get_schema == nullptr || stream_.get_next == nullptr) {
      refuse(OLESTR("the stream is incomplete"));
    }
    received<ArrowSchema> types;
    if (stream_.get_schema(&stream_, types.out()) != 0) fail_with_stream();
    require_unchanged();
    columns_.take_types(*types);
  }

  /// False at the end of the stream.
  bool append_batch() {
    received<ArrowArray> batch;
    batch.out()->release = &unanswered;
    if (stream_.get_next(&stream_, batch.out()) != 0) fail_with_stream();
    require_unchanged();
    if (batch->release == &unanswered) refuse(OLESTR("the stream gave no answer"));
    if (!batch.is_there()) return false;
    columns_.take_batch(*batch, table_->roomForRows() - rows_);
    if (rows_ == 0 && batch->length != 0) table_->beginRows();
    put(static_cast<std::uint64_t>(batch->length));
    return true;
  }

  /// The rows of the batch at hand.
  void put(std::uint64_t rows) {
    const std::uint64_t before = rows_;
    std::int64_t done = 0;
    const record_writer fill = [&](std::byte* records, std::size_t here) {
      columns_.put(before, done, records, here);
      done += static_cast<std::int64_t>(here);
    };
    while (rows_ - before < rows) {
      const std::uint64_t now = std::min(rows - (rows_ - before), rows_at_a_time);
      table_->putRows(now, fill);
      rows_ += now;
      if (!watch_.rows) continue;
      watch_.rows(now);
      require_unchanged();
    }
  }

  /// What the stream says of its failure.
  [[noreturn]] void fail_with_stream() const {
    const char* words = stream_.get_last_error == nullptr ? nullptr : stream_.get_last_error(&stream_);
    if (words == nullptr) refuse(OLESTR("the stream failed"));
    refuse(OLESTR("the stream failed: ") + wide_from_utf8(words));
  }

  const table_owner& owner_;
  ArrowArrayStream& stream_;
  const append_watch& watch_;
  table* table_;
  table_version version_;
  given_columns columns_;
  std::uint64_t rows_ = 0;  ///< put so far
};

}  // namespace

std::uint64_t append_to_table(const table_owner& to, ArrowArrayStream& from, const append_watch& watch) {
  try {
    return table_appender(to, from, watch).run();
  } catch (const refusal& wrong) {
    throw MyExceptionClass(wide(prefix) + wrong.reason);
  }
}

}  // namespace ovf
