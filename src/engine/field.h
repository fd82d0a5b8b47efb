// Fields of an open table, as its dictionary describes them.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "base/text.h"
#include "storage/header_pages.h"

namespace ovf {

/// Engine codes of field types.
enum class field_kind : std::int32_t { numeric = 0, alphanumeric = 2 };

/// One word of a field.
struct atom {
  std::uint32_t position = 0;               ///< 1-based word of the record; 0: implicit
  std::array<std::byte, 8> default_word{};  ///< as the file holds it; 4 bytes count in single precision
};

struct field {
  wide name;  ///< without trailing blanks
  field_kind kind = field_kind::numeric;
  std::size_t first_entry = 0;  ///< dictionary entry of the first atom; the others follow
  std::vector<atom> atoms;      ///< one for a number, one for every 4 characters of a text

  bool is_implicit() const noexcept { return atoms.front().position == 0; }
  /// A text may have its first word in the header alone and others in the records.
  bool has_stored_words() const noexcept {
    return std::any_of(atoms.begin(), atoms.end(), [](const atom& each) { return each.position != 0; });
  }
};

/// The fields in file order. Should a name come twice, the look-up finds the first.
class table_fields {
 public:
  void add(field added);
  void rename(std::size_t index, wide name);
  std::size_t size() const noexcept { return fields_.size(); }
  /// Throws MyExceptionClass "index out of range, field not found.".
  const field& at(std::uint64_t index) const {
    if (index >= fields_.size()) fail_not_found();
    return fields_[static_cast<std::size_t>(index)];
  }
  field& at(std::uint64_t index);
  /// Throws MyExceptionClass "unknown field name...".
  std::size_t index_of(const wide& name) const;
  bool contains(const wide& name) const { return by_name_.contains(name); }
  /// Words of all fields: entries of the dictionary.
  std::size_t atoms() const noexcept { return atoms_; }
  /// Words of a record: atoms with a place in it.
  std::size_t record_words() const noexcept { return record_words_; }

  auto begin() const noexcept { return fields_.begin(); }
  auto end() const noexcept { return fields_.end(); }

 private:
  [[noreturn]] static void fail_not_found();

  std::vector<field> fields_;
  std::unordered_map<wide, std::size_t> by_name_;
  std::size_t atoms_ = 0;
  std::size_t record_words_ = 0;
};

/// Reads the dictionary. Throws "Unrecognised file type." for more atoms than the precision allows and
/// "Not a valid orvexa table" for counts and positions that no writer makes.
template <class Precision>
table_fields read_fields(header_pages<Precision>& header);

/// A count from a file's header, truncated; throws "Not a valid orvexa table" for what is no count of
/// anything: NaN, negative, beyond 32 bits.
std::uint64_t count_from(double word);

}  // namespace ovf
