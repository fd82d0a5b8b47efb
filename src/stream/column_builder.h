// Columns of a stream that is read, made from the records of a table.
#pragma once

#include <cstddef>
#include <limits>
#include <memory>

#include "engine/field.h"
#include "stream/ansi_text.h"
#include "stream/array_export.h"

namespace ovf {

/// What the columns of one table have in common.
struct record_layout {
  bool is_double = false;
  byte_order order = byte_order::native;
  std::size_t record_bytes = 0;
};

/// How values are shown; the flags of a request.
struct value_choices {
  bool absent_as_null = false;
  bool trailing_blanks = false;
  bool text_dictionaries = false;
  bool widened = false;
};

/// Takes the values of one field out of record after record.
class column_builder {
 public:
  column_builder() = default;
  column_builder(const column_builder&) = delete;
  column_builder& operator=(const column_builder&) = delete;
  virtual ~column_builder() = default;

  /// Begins a column with room for `rows` values.
  virtual void begin(std::size_t rows) = 0;
  virtual void take(const std::byte* records, std::size_t rows) = 0;
  virtual column_data finish() = 0;

  /// Bytes that a row takes, about.
  virtual std::size_t row_bytes() const noexcept = 0;
  /// Rows that fit one array at most.
  virtual std::size_t most_rows() const noexcept {
    return static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) / sizeof(double);
  }
};

/// The type of the columns that `make_builder` gives for the field, without name and metadata.
type_description type_of(const field& from, const record_layout& layout, const value_choices& choices);

/// Keeps what it needs of the field. `page` outlives it.
std::unique_ptr<column_builder> make_builder(const field& from, const record_layout& layout,
                                             const value_choices& choices, const ansi_page& page);

// The kinds of builder.
std::unique_ptr<column_builder> make_number_builder(const field& from, const record_layout& layout,
                                                    const value_choices& choices);
std::unique_ptr<column_builder> make_text_builder(const field& from, const record_layout& layout,
                                                  const value_choices& choices, const ansi_page& page);
std::unique_ptr<column_builder> make_dictionary_builder(const field& from, const record_layout& layout,
                                                        const value_choices& choices, const ansi_page& page);

}  // namespace ovf
