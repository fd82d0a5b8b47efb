// The fields of a schema, as commands look at them.
#pragma once

#include <string>
#include <vector>

#include "ovfile/smart.h"

namespace command {

struct field_view {
  LONG column;  ///< from 1
  std::string name;
  bool is_text;
  LONG width;  ///< characters; of a number the 4 that its word would hold
  bool implicit;
  double number_default;
  std::string text_default;  ///< UTF-8, without blanks at the end

  bool operator==(const field_view&) const = default;
};

/// A text as a table keeps it, filled up with blanks, without these.
ovfile::wide_view without_end_blanks(ovfile::wide_view text) noexcept;

/// Throws `failure` with `file` and what the thread's error information says when the status is a failed
/// one.
void check_call(const std::string& file, HRESULT status);
/// Why a call failed. Throws `std::bad_alloc` where there was not enough memory.
std::string taken_words(HRESULT status);

/// All fields in their order. Throws `failure` with `file`.
std::vector<field_view> read_fields(IOvSchema& schema, const std::string& file);

/// The field of this name; null where there is none.
const field_view* find_field(const std::vector<field_view>& fields, const std::string& name) noexcept;

/// Words that a record or, for an implicit field, the header needs for it.
std::size_t words_of(const field_view& field) noexcept;

}  // namespace command
