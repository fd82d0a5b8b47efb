// Any bytes as a CSV. Beside not crashing: however the bytes come in portions, the rows are the same, each
// cell lies in the row's bytes, and what is read is read but once.
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "csv_reader.h"
#include "failure.h"
#include "require.h"

namespace {

/// Gives so many bytes at a time.
class portions final : public command::byte_source {
 public:
  portions(std::string_view bytes, std::size_t portion) : bytes_(bytes), portion_(portion) {}

  std::size_t read(char* bytes, std::size_t count) override {
    const std::size_t now = std::min({count, portion_, bytes_.size()});
    bytes_.copy(bytes, now);
    bytes_.remove_prefix(now);
    return now;
  }

 private:
  std::string_view bytes_;
  std::size_t portion_;
};

struct reading {
  std::vector<std::vector<std::string>> rows;
  std::vector<std::uint64_t> lines;
  std::string failure;
  bool operator==(const reading&) const = default;
};

reading read_all(std::string_view bytes, std::size_t portion, std::size_t buffer) {
  portions source(bytes, portion);
  reading all;
  try {
    command::csv_reader reader(source, "fuzz.csv", buffer);
    while (reader.next()) {
      all.rows.emplace_back(reader.cells().begin(), reader.cells().end());
      all.lines.push_back(reader.line());
      require(reader.bytes_read() <= bytes.size(), "no more bytes than there are");
    }
  } catch (const command::failure& error) {
    all.failure = error.what();
  }
  return all;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const reading whole = read_all(bytes, size + 1, 64 << 10);
  require(whole == read_all(bytes, 1, 64 << 10), "a byte at a time reads the same");
  require(whole == read_all(bytes, size + 1, 16), "a small buffer reads the same");
  std::uint64_t last = 0;
  for (const std::uint64_t line : whole.lines) {
    require(line > last, "lines go on");
    last = line;
  }
  return 0;
}
