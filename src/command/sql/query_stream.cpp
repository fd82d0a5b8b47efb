#include "sql/query_stream.h"

#include <cerrno>
#include <cstring>
#include <deque>
#include <exception>
#include <limits>
#include <memory>
#include <new>

#include "sql/widened_float.h"

namespace command {
namespace {

/// The memory of one array, which lives as long as the array does.
struct column_memory {
  std::vector<std::uint64_t> valid;
  std::vector<double> numbers;
  std::vector<float> floats;
  std::vector<std::int64_t> offsets;
  std::string bytes;
  const void* buffers[3] = {};
};

struct batch_memory {
  std::vector<ArrowArray> columns;
  std::vector<ArrowArray*> children;
  const void* buffers[1] = {};
};

template <class Memory>
void release_array(ArrowArray* array) {
  for (std::int64_t i = 0; i < array->n_children; ++i) {
    if (array->children[i]->release != nullptr) array->children[i]->release(array->children[i]);
  }
  delete static_cast<Memory*>(array->private_data);
  array->release = nullptr;
}

std::int64_t copy_validity(const sql_result& rows, std::size_t column, std::vector<std::uint64_t>& valid) {
  const std::uint64_t* const found = rows.validity(column);
  if (found == nullptr) return 0;
  valid.assign(found, found + (rows.rows() + 63) / 64);
  std::int64_t nulls = 0;
  for (std::size_t row = 0; row < rows.rows(); ++row) nulls += rows.is_null(column, row) ? 1 : 0;
  return nulls;
}

void copy_texts(const sql_result& rows, std::size_t column, column_memory& memory) {
  memory.offsets.reserve(rows.rows() + 1);
  memory.offsets.push_back(0);
  for (std::size_t row = 0; row < rows.rows(); ++row) {
    if (!rows.is_null(column, row)) memory.bytes += rows.text(column, row);
    memory.offsets.push_back(static_cast<std::int64_t>(memory.bytes.size()));
  }
  memory.buffers[1] = memory.offsets.data();
  memory.buffers[2] = memory.bytes.data();
}

template <class Value>
void copy_numbers(const sql_result& rows, std::size_t column, std::vector<Value>& numbers,
                  column_memory& memory) {
  const auto* const found = rows.values<Value>(column);
  numbers.assign(found, found + rows.rows());
  memory.buffers[1] = numbers.data();
}

void copy_widened(const sql_result& rows, std::size_t column, column_memory& memory) {
  const float* const found = rows.values<float>(column);
  memory.numbers.resize(rows.rows());
  // Grades of a few digits repeat.
  float last = 0;
  double last_widened = 0;
  for (std::size_t row = 0; row < rows.rows(); ++row) {
    if (rows.is_null(column, row)) continue;
    const float value = found[row];
    if (value != last || value == 0) last_widened = widened(last = value);  // there are two zeros
    memory.numbers[row] = last_widened;
  }
  memory.buffers[1] = memory.numbers.data();
}

ArrowArray make_column(const sql_result& rows, std::size_t column, const stream_column& form) {
  auto memory = std::make_unique<column_memory>();
  ArrowArray array{};
  array.length = static_cast<std::int64_t>(rows.rows());
  array.null_count = copy_validity(rows, column, memory->valid);
  if (array.null_count > 0) memory->buffers[0] = memory->valid.data();
  if (form.is_text) {
    copy_texts(rows, column, *memory);
  } else if (form.is_widened) {
    copy_widened(rows, column, *memory);
  } else if (form.is_float) {
    copy_numbers(rows, column, memory->floats, *memory);
  } else {
    copy_numbers(rows, column, memory->numbers, *memory);
  }
  array.n_buffers = form.is_text ? 3 : 2;
  array.buffers = memory->buffers;
  array.release = release_array<column_memory>;
  array.private_data = memory.release();
  return array;
}

ArrowArray make_batch(const sql_result& rows, const std::vector<stream_column>& columns) {
  ArrowArray array{};
  auto memory = std::make_unique<batch_memory>();
  memory->columns.resize(columns.size());
  for (ArrowArray& column : memory->columns) memory->children.push_back(&column);
  array.length = static_cast<std::int64_t>(rows.rows());
  array.n_buffers = 1;
  array.buffers = memory->buffers;
  array.children = memory->children.data();
  array.release = release_array<batch_memory>;
  array.private_data = memory.get();
  batch_memory& kept = *memory.release();
  ovfile::arrow_array owner(array);
  // Whatever ends this early releases the columns that are made.
  for (std::size_t i = 0; i < columns.size(); ++i) {
    kept.columns[i] = make_column(rows, i, columns[i]);
    owner.get()->n_children = static_cast<std::int64_t>(i) + 1;
  }
  return std::exchange(*owner.get(), ArrowArray{});
}

const char* format_of(const stream_column& column) noexcept {
  if (column.is_text) return "U";
  return column.is_float && !column.is_widened ? "f" : "g";
}

/// Types whose memory is their owner's, who outlives them: the consumer reads them before it reads rows.
void release_type(ArrowSchema* type) { type->release = nullptr; }

class row_stream {
 public:
  row_stream(sql_result rows, std::vector<stream_column> columns, row_count& count)
      : rows_(std::move(rows)), columns_(std::move(columns)), types_(columns_.size()), count_(count) {
    for (ArrowSchema& type : types_) children_.push_back(&type);
  }

  void describe(ArrowSchema* out) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      types_[i] = ArrowSchema{};
      types_[i].format = format_of(columns_[i]);
      types_[i].name = columns_[i].name.c_str();
      types_[i].flags = ARROW_FLAG_NULLABLE;
      types_[i].release = release_type;
    }
    *out = ArrowSchema{};
    out->format = "+s";
    out->name = "";
    out->n_children = static_cast<std::int64_t>(children_.size());
    out->children = children_.data();
    out->release = release_type;
  }

  int next(ArrowArray* out) noexcept {
    *out = ArrowArray{};
    try {
      if (!rows_.next()) return 0;
      *out = make_batch(rows_, columns_);
      count_.add(rows_.rows());
      return 0;
    } catch (const std::bad_alloc&) {
      words_ = "there is not enough memory";
      return ENOMEM;
    } catch (const std::exception& error) {
      words_ = error.what();
    } catch (...) {
      words_ = "interrupted";
    }
    return EIO;
  }

  const char* words() const noexcept { return words_.c_str(); }

 private:
  sql_result rows_;
  std::vector<stream_column> columns_;
  std::vector<ArrowSchema> types_;
  std::vector<ArrowSchema*> children_;
  row_count& count_;
  std::string words_;
};

row_stream& self(ArrowArrayStream* stream) { return *static_cast<row_stream*>(stream->private_data); }

}  // namespace

ovfile::arrow_stream stream_rows(sql_result rows, std::vector<stream_column> columns, row_count& count) {
  ArrowArrayStream made{};
  made.get_schema = [](ArrowArrayStream* stream, ArrowSchema* out) {
    self(stream).describe(out);
    return 0;
  };
  made.get_next = [](ArrowArrayStream* stream, ArrowArray* out) { return self(stream).next(out); };
  made.get_last_error = [](ArrowArrayStream* stream) { return self(stream).words(); };
  made.release = [](ArrowArrayStream* stream) {
    delete static_cast<row_stream*>(stream->private_data);
    stream->release = nullptr;
  };
  made.private_data = new row_stream(std::move(rows), std::move(columns), count);
  return ovfile::arrow_stream(made);
}

}  // namespace command
