// Types and values as the structures that hosts know. What is exported owns its memory: it lives on when
// the table, the stream and its siblings are gone, and keeps the library loaded.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ovfile/arrow_abi.h"
#include "stream/raw_buffer.h"

namespace ovf {

/// A type to be exported.
struct type_description {
  std::string format;
  std::string name;
  std::vector<std::pair<std::string, std::string>> metadata;
  bool nullable = false;
  std::vector<type_description> children;
  std::shared_ptr<const type_description> dictionary;  ///< null: none
};

/// The values of one column.
struct column_data {
  std::int64_t length = 0;
  std::int64_t nulls = 0;
  /// As the type's layout has them; an empty one is a null pointer.
  std::array<raw_buffer, 3> buffers;
  std::size_t buffer_count = 0;
  std::unique_ptr<column_data> dictionary;
};

// Each fills `out`, or throws std::bad_alloc and leaves it as it was.

void export_type(const type_description& type, ArrowSchema& out);
/// A structure array of the columns.
void export_batch(std::vector<column_data> columns, std::int64_t rows, ArrowArray& out);

}  // namespace ovf
