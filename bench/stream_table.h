// The table of the streams' benchmarks: 8 numbers a row, read and written by streams, beside the plainest
// loops over the same bytes.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "bench_table.h"
#include "ovfile/stream.h"

namespace ovbench {

inline constexpr int stream_columns = 8;
inline constexpr std::size_t page_bytes = 4096;
inline constexpr std::size_t record_bytes = stream_columns * sizeof(double);
inline constexpr long rows_per_page = 508 / stream_columns;

using sums = std::array<double, stream_columns>;

inline ovfile::pointer<IOvTable> create_stream_table(const std::filesystem::path& path) {
  auto schema = ovfile::create_schema();
  ovfile::check(schema->put_DoublePrecision(VARIANT_TRUE));
  for (int c = 1; c <= stream_columns; ++c) {
    ovfile::check(schema->AddNumericColumn(ovfile::text("C" + std::to_string(c)).get(), 0, 0));
  }
  auto table = ovfile::create_table();
  ovfile::check(table->Create(path_text(path).get(), schema.get()));
  return table;
}

/// As a host does it, one value at a time.
inline void append_row_by_row(const std::filesystem::path& path, long rows) {
  const auto table = create_stream_table(path);
  for (long row = 1; row <= rows; ++row) {
    ovfile::check(table->AddRow());
    for (int c = 1; c <= stream_columns; ++c) ovfile::check(table->SetColumnDouble(c, value_at(row, c)));
  }
  ovfile::check(table->Close());
}

/// The table's file in memory as it is, made by the system page by page.
class mapped_file {
 public:
  explicit mapped_file(const std::filesystem::path& path) : bytes_(std::filesystem::file_size(path)) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) throw std::runtime_error("cannot open the table");
    void* const at = ::mmap(nullptr, bytes_, PROT_READ, MAP_SHARED, file, 0);
    ::close(file);
    if (at == MAP_FAILED) throw std::runtime_error("cannot map the table");
    data_ = static_cast<const char*>(at);
  }
  mapped_file(const mapped_file&) = delete;
  mapped_file& operator=(const mapped_file&) = delete;
  ~mapped_file() { ::munmap(const_cast<char*>(data_), bytes_); }

  /// The sum of a column over all rows, behind one header page.
  double column_sum(long rows, int column) const {
    double sum = 0;
    const char* page = data_ + page_bytes;
    for (long first = 0; first < rows; first += rows_per_page, page += page_bytes) {
      const long here = std::min(rows_per_page, rows - first);
      const char* place = page + static_cast<std::size_t>(column) * sizeof(double);
      for (long i = 0; i < here; ++i, place += record_bytes) {
        double value = 0;
        std::memcpy(&value, place, sizeof value);
        sum += value;
      }
    }
    return sum;
  }

 private:
  std::size_t bytes_;
  const char* data_ = nullptr;
};

/// A table's batches in memory, handed out as a stream again and again, as a host that has its columns in
/// arrays would.
class kept_batches {
 public:
  explicit kept_batches(ovfile::arrow_stream source) : schema_(source.schema()) {
    for (ovfile::arrow_array& batch : source) batches_.push_back(std::move(batch));
  }

  /// Lends the batches; they outlive the stream.
  ovfile::arrow_stream stream() {
    next_ = 0;
    return ovfile::arrow_stream(
        ArrowArrayStream{&get_schema, &get_next, &no_error, &forget<ArrowArrayStream>, this});
  }

 private:
  template <class Structure>
  static void forget(Structure* held) {
    held->release = nullptr;
  }
  template <class Structure>
  static int lend(const Structure& from, Structure* out) {
    *out = from;
    out->release = &forget<Structure>;
    return 0;
  }
  static kept_batches& self(ArrowArrayStream* stream) {
    return *static_cast<kept_batches*>(stream->private_data);
  }
  static int get_schema(ArrowArrayStream* stream, ArrowSchema* out) {
    return lend(*self(stream).schema_, out);
  }
  static int get_next(ArrowArrayStream* stream, ArrowArray* out) {
    kept_batches& from = self(stream);
    *out = {};
    return from.next_ == from.batches_.size() ? 0 : lend(*from.batches_[from.next_++], out);
  }
  static const char* no_error(ArrowArrayStream*) { return nullptr; }

  ovfile::arrow_schema schema_;
  std::vector<ovfile::arrow_array> batches_;
  std::size_t next_ = 0;
};

}  // namespace ovbench
