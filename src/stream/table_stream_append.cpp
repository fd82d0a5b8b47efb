#include <optional>

#include "stream/column_writer.h"
#include "stream/table_stream.h"

namespace ovf {
namespace {

constexpr wide_view prefix = OLESTR("Append failed, ");
constexpr wide_view changed_since = OLESTR("the table was closed or changed while rows were appended to it");

[[noreturn]] void refuse(wide_view what) { throw MyExceptionClass(wide(prefix).append(what)); }

wide about_column(std::string_view name, wide_view what) {
  return OLESTR("column ") + wide_from_utf8(name) + OLESTR(": ") + wide(what);
}

/// What a host's stream says of its failure.
[[noreturn]] void fail_with_stream(ArrowArrayStream& stream) {
  const char* words = stream.get_last_error == nullptr ? nullptr : stream.get_last_error(&stream);
  refuse(words == nullptr ? wide(OLESTR("the stream failed"))
                          : OLESTR("the stream failed: ") + wide_from_utf8(words));
}

template <class Structure>
class released_at_the_end {
 public:
  released_at_the_end() = default;
  released_at_the_end(const released_at_the_end&) = delete;
  released_at_the_end& operator=(const released_at_the_end&) = delete;
  ~released_at_the_end() {
    if (held.release != nullptr) held.release(&held);
  }

  Structure held{};
};

/// One column of the stream.
struct given_column {
  column_type type;
  std::unique_ptr<column_writer> writer;
  column_span values;  ///< of the batch at hand
};

class table_appender {
 public:
  table_appender(const table_owner& owner, ArrowArrayStream& from, const number_listener& listener)
      : owner_(owner), stream_(from), listener_(listener) {}

  std::uint64_t run() {
    released_at_the_end<ArrowSchema> schema;
    if (stream_.get_schema == nullptr || stream_.get_next == nullptr)
      refuse(OLESTR("the stream is incomplete"));
    if (stream_.get_schema(&stream_, &schema.held) != 0) fail_with_stream(stream_);
    // The host's code may have closed it.
    table_ = owner_.opened();
    if (table_ == nullptr) refuse(changed_since);
    version_ = table_->version();
    take_columns(schema.held);
    try {
      while (append_batch()) {
      }
      if (added_) table_->commitRows(*added_);
    } catch (...) {
      if (added_ && owner_.in_state(version_) != nullptr) table_->giveUpRows(*added_);
      throw;
    }
    return added_ ? added_->rows : 0;
  }

 private:
  void take_columns(const ArrowSchema& schema) {
    about_batch([&] { check_structure(schema); });
    const auto count = static_cast<std::size_t>(schema.n_children);
    for (std::size_t i = 0; i < count; ++i) take_column(schema, i);
  }

  void take_column(const ArrowSchema& schema, std::size_t index) {
    const ArrowSchema* child = schema.children[index];
    if (child == nullptr || child->release == nullptr)
      refuse(OLESTR("the stream has a column without a type"));
    const std::string name = child->name == nullptr ? "" : child->name;
    for (const given_column& each : columns_) {
      if (each.type.name == name) refuse(about_column(name, OLESTR("the stream has it twice")));
    }
    try {
      given_column made;
      made.type = checked_type(*child);
      const std::uint64_t place = field_of(name);
      const record_layout layout{table_->isDouble(), table_->order(), table_->recordBytes()};
      made.writer = make_writer(table_->fields().at(place), layout, made.type.kind, page_, heard(place));
      columns_.push_back(std::move(made));
    } catch (const MyExceptionClass& wrong) {
      refuse(about_column(name, wrong.message()));
    }
  }

  std::uint64_t field_of(std::string_view name) const {
    const wide wanted = wide_from_utf8(name);
    if (!table_->fields().contains(wanted)) throw MyExceptionClass(OLESTR("the table has no such column"));
    return table_->fields().index_of(wanted);
  }

  value_listener heard(std::uint64_t place) const {
    if (!listener_) return {};
    return [this, column = static_cast<LONG>(place + 1)](double value) { listener_(column, value); };
  }

  /// False at the end of the stream.
  bool append_batch() {
    released_at_the_end<ArrowArray> batch;
    if (stream_.get_next(&stream_, &batch.held) != 0) fail_with_stream(stream_);
    if (owner_.in_state(version_) == nullptr) refuse(changed_since);
    if (batch.held.release == nullptr) return false;
    take_batch(batch.held);
    if (batch.held.length == 0) return true;
    if (!added_) added_.emplace(table_->beginRows());
    before_ = added_->rows;
    done_ = 0;
    table_->putRows(*added_, static_cast<std::uint64_t>(batch.held.length),
                    [this](std::byte* records, std::size_t rows) { put(records, rows); });
    return true;
  }

  void take_batch(const ArrowArray& batch) {
    about_batch([&] { check_batch(batch, columns_.size()); });
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      given_column& each = columns_[i];
      try {
        each.values = checked_column(each.type, batch.children[i], batch.offset, batch.length);
      } catch (const MyExceptionClass& wrong) {
        refuse(about_column(each.type.name, wrong.message()));
      }
    }
  }

  void put(std::byte* records, std::size_t rows) {
    for (const given_column& each : columns_) {
      try {
        each.writer->put(each.values, done_, records, rows);
      } catch (const bad_value& wrong) {
        refuse(about_value(each, wrong));
      }
    }
    done_ += static_cast<std::int64_t>(rows);
  }

  wide about_value(const given_column& column, const bad_value& wrong) const {
    const auto row = static_cast<long long>(before_) + wrong.row + 1;
    return OLESTR("column ") + wide_from_utf8(column.type.name) +
           wide_format(OLESTR(", row %d: ")).arg(row).text() + wrong.reason;
  }

  template <class Body>
  static void about_batch(Body body) {
    try {
      body();
    } catch (const MyExceptionClass& wrong) {
      refuse(wrong.message());
    }
  }

  const table_owner& owner_;
  ArrowArrayStream& stream_;
  const number_listener& listener_;
  table* table_ = nullptr;
  table_version version_;
  ansi_page page_;
  std::vector<given_column> columns_;
  std::optional<added_rows> added_;
  std::uint64_t before_ = 0;
  std::int64_t done_ = 0;  ///< rows of the batch
};

}  // namespace

std::uint64_t append_to_table(const table_owner& to, ArrowArrayStream& from,
                              const number_listener& listener) {
  return table_appender(to, from, listener).run();
}

}  // namespace ovf
