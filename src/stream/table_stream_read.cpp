#include <algorithm>
#include <cerrno>
#include <exception>
#include <new>

#include "stream/table_stream.h"

namespace ovf {
namespace {

constexpr const char* changed_while_read =
    "the table was closed or changed after the stream was made, which reads it as it was then";

/// Bytes of a batch's columns, where the host does not say how many rows it wants: they stay in the
/// processor's cache from here to the host.
constexpr std::size_t batch_bytes = std::size_t{1} << 20;
constexpr std::size_t least_rows = 1024;
constexpr std::size_t usual_rows = 65'536;

/// What a host is told, with the code for it.
struct stream_failure {
  int code;
  const char* message;
};

class table_reader {
 public:
  table_reader(std::unique_ptr<table_owner> from, const read_plan& plan)
      : owner_(std::move(from)), next_row_(plan.first_row), rows_left_(plan.rows) {
    table& opened = *owner_->opened();
    version_ = opened.version();
    type_ = type_of(plan, opened);
    const record_layout layout{opened.isDouble(), opened.order(), opened.recordBytes()};
    for (const std::uint64_t index : plan.fields) {
      columns_.push_back(make_builder(opened.fields().at(index), layout, plan.choices, page_));
    }
    rows_per_batch_ = std::min(batch_rows(plan.rows_per_batch), rows_in_file(opened));
  }

  void type(ArrowSchema& out) const { export_type(type_, out); }

  void next(ArrowArray& out) {
    if (rows_left_ == 0) return;
    table* from = owner_->in_state(version_);
    if (from == nullptr) throw stream_failure{EINVAL, changed_while_read};
    const std::uint64_t rows = std::min(rows_left_, rows_per_batch_);
    for (const auto& column : columns_) column->begin(static_cast<std::size_t>(rows));
    if (!columns_.empty()) {
      from->readRows(next_row_, rows, buffer_, [this](const std::byte* records, std::size_t here) {
        for (const auto& column : columns_) column->take(records, here);
      });
    }
    std::vector<column_data> made;
    for (const auto& column : columns_) made.push_back(column->finish());
    export_batch(std::move(made), static_cast<std::int64_t>(rows), out);
    next_row_ += rows;
    rows_left_ -= rows;
  }

  /// Runs the body of a call and answers its code.
  template <class Body>
  int answer(Body body) noexcept {
    try {
      error_ = nullptr;
      body();
      return 0;
    } catch (const stream_failure& failure) {
      error_ = failure.message;
      return failure.code;
    } catch (const std::bad_alloc&) {
      error_ = "out of memory";
      return ENOMEM;
    } catch (const MyExceptionClass& failure) {
      return tell([&] { return utf8_from_wide(failure.message()); });
    } catch (const std::exception& failure) {
      return tell([&] { return std::string(failure.what()); });
    }
  }
  const char* error() const noexcept { return error_; }

 private:
  /// More rows than the file has room for, which a header may promise, are no reason to ask for memory.
  static std::uint64_t rows_in_file(table& opened) {
    return opened.facts().file_bytes / std::max<std::size_t>(opened.recordBytes(), 1) + 1;
  }

  std::uint64_t batch_rows(std::uint64_t wanted) const {
    std::size_t bytes = 1;
    std::size_t most = ~std::size_t{0};
    for (const auto& column : columns_) {
      bytes += column->row_bytes();
      most = std::min(most, column->most_rows());
    }
    const std::size_t own = std::clamp(batch_bytes / bytes, least_rows, usual_rows);
    return std::min<std::uint64_t>(wanted == 0 ? own : wanted, most);
  }

  template <class Words>
  int tell(Words words) noexcept {
    try {
      message_ = words();
      error_ = message_.c_str();
    } catch (...) {
      error_ = "the table cannot be read";
    }
    return EIO;
  }

  std::unique_ptr<table_owner> owner_;
  table_version version_;
  type_description type_;
  ansi_page page_;
  std::vector<std::unique_ptr<column_builder>> columns_;
  std::uint64_t next_row_;
  std::uint64_t rows_left_;
  std::uint64_t rows_per_batch_ = 0;
  block_buffer buffer_;
  std::string message_;
  const char* error_ = nullptr;
};

table_reader& reader_of(ArrowArrayStream* stream) noexcept {
  return *static_cast<table_reader*>(stream->private_data);
}

int get_schema(ArrowArrayStream* stream, ArrowSchema* out) noexcept {
  *out = {};
  return reader_of(stream).answer([&] { reader_of(stream).type(*out); });
}

int get_next(ArrowArrayStream* stream, ArrowArray* out) noexcept {
  *out = {};
  return reader_of(stream).answer([&] { reader_of(stream).next(*out); });
}

const char* get_last_error(ArrowArrayStream* stream) noexcept { return reader_of(stream).error(); }

void release(ArrowArrayStream* stream) noexcept {
  stream->release = nullptr;
  delete static_cast<table_reader*>(std::exchange(stream->private_data, nullptr));
}

}  // namespace

void read_table(std::unique_ptr<table_owner> from, const read_plan& plan, ArrowArrayStream& out) {
  auto reader = std::make_unique<table_reader>(std::move(from), plan);
  out = {&get_schema, &get_next, &get_last_error, &release, reader.release()};
}

}  // namespace ovf
