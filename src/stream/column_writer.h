// The values of a host's column, put into the records of a table as `SetColumn` would put them there.
#pragma once

#include <functional>
#include <memory>

#include "stream/ansi_text.h"
#include "stream/array_import.h"
#include "stream/column_builder.h"

namespace ovf {

/// Why a value of an implicit column is refused.
inline constexpr wide_view not_the_constant =
    OLESTR("the column is implicit, and the value is another one than its default");

class column_writer {
 public:
  column_writer() = default;
  column_writer(const column_writer&) = delete;
  column_writer& operator=(const column_writer&) = delete;
  virtual ~column_writer() = default;

  /// Puts the values of rows `first` and so on into records. Throws bad_value.
  virtual void put(const column_span& from, std::int64_t first, std::byte* records, std::size_t rows) = 0;
};

/// Is told every number that is put, as a double; may be empty.
using value_listener = std::function<void(double)>;

/// A writer for values of that kind; `page` outlives it. Throws `refusal` when the field cannot take the
/// kind.
std::unique_ptr<column_writer> make_writer(const field& to, const record_layout& layout, value_kind kind,
                                           const ansi_page& page, const value_listener& listener);

// The kinds of writer.
std::unique_ptr<column_writer> make_number_writer(const field& to, const record_layout& layout,
                                                  value_kind kind, const value_listener& listener);
std::unique_ptr<column_writer> make_text_writer(const field& to, const record_layout& layout,
                                                const ansi_page& page);

}  // namespace ovf
