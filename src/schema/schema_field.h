// One field of a table definition.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace ovf {

/// The word position that marks a field kept in the dictionary alone, without a word in the records.
inline constexpr std::int32_t implicit_offset = -1;

/// The type code as the dictionary of a table spells it; zero bytes until a type is set.
using field_type_code = std::array<char, 4>;
inline constexpr field_type_code numeric_code{'N', ' ', ' ', ' '};
inline constexpr field_type_code text_code{'A', ' ', ' ', ' '};

/// Texts are in the ANSI code page. Whether a number has 4 or 8 bytes is the schema's precision, not
/// the field's.
struct schema_field {
  std::string name;
  std::int32_t offset = 0;
  field_type_code type{};
  double numeric_default = 0.0;
  std::string text_default;  ///< also the default of a field without a type
  std::int32_t size = 0;     ///< bytes of a record; a text takes a word for every 4 characters

  bool is_numeric() const noexcept { return type[0] == 'N'; }
  bool is_text() const noexcept { return type[0] == 'A'; }
  bool is_implicit() const noexcept { return offset == implicit_offset; }
};

}  // namespace ovf
