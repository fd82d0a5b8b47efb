// A table's header as its bytes have it. The library reads over much that is wrong there; whoever looks for
// faults needs eyes of his own.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "failure.h"

namespace command {

/// One word of a field: seven words of the header.
struct dictionary_entry {
  std::string name;  ///< without blanks at its end, UTF-8
  char type;         ///< A for text, N for a number, as it stands there
  double position;   ///< of the word in a record, from 1; 0 for an implicit field
  double ordinal;    ///< of the word in its field, from 1
};

struct table_header {
  bool is_double = false;
  std::uint64_t bytes = 0;     ///< of the file
  double atoms = 0;            ///< dictionary entries
  double pages = 0;            ///< of the file, header pages included
  double records_in_last = 0;  ///< records in the last page
  bool is_cut = false;         ///< the file ends within the header
  std::vector<dictionary_entry> entries;

  std::uint64_t page_bytes() const noexcept { return is_double ? 4096 : 2048; }
  std::uint64_t header_pages() const noexcept;
  /// Words of a record.
  std::uint64_t record_words() const noexcept;
};

/// A field as the library puts it together of its words.
struct header_field {
  std::string name;
  bool is_partly_stored = false;  ///< its first word stands in the header alone, others in the rows
};

std::vector<header_field> fields_in(const std::vector<dictionary_entry>& entries);

struct not_a_table : failure {
  not_a_table() : failure("it has no table's mark") {}
};

/// Whether bytes are the beginning of a table.
bool begins_as_table(std::string_view bytes);

/// Throws `failure` where the file cannot be read or is none, and `not_a_table` where it has no table's mark.
table_header read_table_header(const std::string& file);

/// The bytes of a table that has the file's columns and, as its only rows, the first `records` of one page,
/// as far as the file reaches. It is no link, whatever the file is. Throws like `read_table_header`.
std::string table_of_page(const std::string& file, std::uint64_t page, std::uint64_t records);

}  // namespace command
