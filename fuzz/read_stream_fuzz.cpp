// Any bytes as a table file, read by batches: the first bytes tell which columns, rows and kinds of batches.
// What a stream hands out is laid out as it must be, and is released.
#include <algorithm>
#include <cstdint>

#include "memory_files.h"
#include "ovfile/smart.h"
#include "ovfile/stream.h"
#include "require.h"

namespace {

const ovf::wide_view table_name = OLESTR("/table.ovt");
constexpr LONG most_rows = 300;

struct request_bytes {
  const std::uint8_t* data;
  std::size_t size;
  std::uint8_t next() {
    if (size == 0) return 0;
    --size;
    return *data++;
  }
};

void read(IOvTable& table, IOvTableStream& streams, request_bytes& asked) {
  LONG rows = 0;
  require(table.GetRowCount(&rows) == S_OK, "a table has rows");
  OvStreamRequest wanted{};
  LONG columns[4] = {};
  wanted.nColumns = asked.next() % 5;
  for (LONG i = 0; i < wanted.nColumns; ++i) columns[i] = 1 + asked.next() % 8;
  wanted.pColumns = wanted.nColumns == 0 ? nullptr : columns;
  wanted.firstRow = 1 + asked.next();
  wanted.nRows = std::min<LONG>(most_rows, asked.next());
  wanted.rowsPerBatch = 1 + asked.next();
  wanted.flags = asked.next();
  ArrowArrayStream stream{};
  const HRESULT status = streams.Read(&wanted, &stream);
  if (FAILED(status)) {
    require(stream.release == nullptr, "nothing to release of what was refused");
    return;
  }
  ArrowSchema schema{};
  require(stream.get_schema(&stream, &schema) == 0, "a stream has a type");
  const std::int64_t fields = schema.n_children;
  schema.release(&schema);
  std::int64_t seen = 0;
  for (;;) {
    ArrowArray batch{};
    if (stream.get_next(&stream, &batch) != 0) {
      require(stream.get_last_error(&stream) != nullptr, "a failure has words");
      break;
    }
    if (batch.release == nullptr) break;
    require(batch.n_children == fields && batch.length >= 0, "a batch has the stream's columns");
    for (std::int64_t i = 0; i < fields; ++i) {
      require(batch.children[i]->length >= batch.length, "each with the batch's rows");
    }
    seen += batch.length;
    batch.release(&batch);
  }
  require(seen <= std::max<std::int64_t>(0, rows), "no more rows than there are");
  stream.release(&stream);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t request_size = 16;
  if (size < request_size) return 0;
  ovfuzz::memory_files files;
  const auto* bytes = reinterpret_cast<const std::byte*>(data + request_size);
  files.put(table_name, {bytes, bytes + (size - request_size)});
  const auto table = ovfile::create_table();
  if (table->Open(ovfile::text(table_name).get(), 1) != S_OK) return 0;
  const auto streams = table.query<IOvTableStream>();
  require(static_cast<bool>(streams), "a table has streams");
  request_bytes asked{data, request_size};
  read(*table.get(), *streams.get(), asked);
  read(*table.get(), *streams.get(), asked);
  require(table->Close() == S_OK, "a table closes");
  require(files.count() == 1, "no temporary file is left");
  return 0;
}
