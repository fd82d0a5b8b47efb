// Blocks of rows: records as the file has them, many pages in one read or write, beside the cursor and
// without a step for each row.
//
// Rows that are appended in blocks stand behind the counted ones, and count all at once when they are
// committed. Until then the counted pages are not touched, so that giving up means cutting the file; any
// change of the table, and its closing, gives them up.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

namespace ovf {

/// Is given records that stand one behind the other, numbers in the file's byte order.
using record_reader = std::function<void(const std::byte* records, std::size_t rows)>;

/// Is given new records with the fields' defaults, to put values in.
using record_writer = std::function<void(std::byte* records, std::size_t rows)>;

/// Rows that a table can have.
inline constexpr std::uint64_t most_rows = std::numeric_limits<std::int32_t>::max();

/// Bytes that are read or written at a time.
inline constexpr std::size_t block_bytes = std::size_t{1} << 18;

/// Room for one block, made when it is first needed and kept from one call to the next.
class block_buffer {
 public:
  std::byte* data() {
    if (bytes_.empty()) bytes_.resize(block_bytes);
    return bytes_.data();
  }

 private:
  std::vector<std::byte> bytes_;
};

/// Which state of which table: another one as soon as anything in the table was changed.
struct table_version {
  std::uint64_t table = 0;
  std::uint64_t changes = 0;

  bool operator==(const table_version&) const = default;
};

/// A number that no other open table of this process has had.
std::uint64_t new_table_number() noexcept;

/// The last counted page, where it has room for more rows: it takes the first ones, and is written when
/// they count, from the first of them on: its other rows are not ours to write.
struct begun_page {
  std::uint64_t index = 0;
  std::size_t counted_bytes = 0;  ///< of its rows that counted before
  std::vector<std::byte> before;
  std::vector<std::byte> after;  ///< no bytes: there is no such page
  bool is_filled = true;         ///< rows that follow go elsewhere
  bool is_written = false;
};

/// Rows that were put behind a table's end and do not count yet.
struct added_rows {
  std::uint64_t rows = 0;
  std::vector<std::byte> record;  ///< one of defaults
  std::size_t records = 0;        ///< on the page that is being filled

  begun_page begun;

  // Pages behind the counted ones.
  std::vector<std::byte> pages;  ///< not written yet; the last of them is being filled
  std::uint64_t first_page = 0;  ///< where they belong in the file
  std::size_t whole_pages = 0;   ///< of them
  bool are_written = false;      ///< some are in the file
  std::uint64_t file_bytes = 0;  ///< the file's size before
  // What its size can be by now: after a write that failed, anything in between.
  std::uint64_t least_bytes = 0;
  std::uint64_t most_bytes = 0;
};

}  // namespace ovf
