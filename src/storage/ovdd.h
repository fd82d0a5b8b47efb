// The header of a new table file, built in memory: `ovdd32` and `ovdd64`.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "storage/dictionary_entry.h"

namespace ovf {

/// Texts are in the ANSI code page.
template <class Precision>
class basic_ovdd {
 public:
  using number = typename Precision::number;

  basic_ovdd();

  /// Cut at 64 characters.
  void set_description(std::string_view text);
  /// One atom. Throws MyExceptionClass with the precision's limit message when there is no room, and
  /// changes nothing then; so does `add_text`.
  void add_number(std::string_view name, number default_value, bool stored);
  /// One atom for every 4 characters of `default_text`, at least one.
  void add_text(std::string_view name, std::string_view default_text, bool stored);

  std::size_t atoms() const noexcept { return atoms_; }
  /// The header pages with their counts, as they stand at the file's beginning.
  const std::vector<std::byte>& finished();

 private:
  std::byte* word(std::size_t header_word) noexcept;
  /// The next entry with its name, type and position in place.
  entry_span<Precision> add_atom(std::string_view name, char type, bool stored);
  void require_room(std::size_t more) const;

  std::vector<std::byte> pages_;
  std::size_t atoms_ = 0;
  std::size_t stored_words_ = 0;
};

using ovdd32 = basic_ovdd<single_precision>;
using ovdd64 = basic_ovdd<double_precision>;

}  // namespace ovf
