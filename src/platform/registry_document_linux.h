// The text that the registry is kept in: sections of values, line by line. Lines that say nothing to
// this reader are carried along untouched, so that a newer version's settings survive an older one.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/registry.h"

namespace ovf {

class registry_document {
 public:
  /// A UTF-8 text; every text can be read.
  explicit registry_document(std::string_view content);

  std::optional<std::uint32_t> number(const registry_key& key, wide_view name) const;
  std::optional<wide> text(const registry_key& key, wide_view name) const;
  /// Whether the key has a section, or a key below it has.
  bool has_key(const registry_key& key) const;

  /// False when the change holds something that no line can: a line break or an empty path.
  bool apply(const registry_change& change);

  /// UTF-8, lines ended by line feeds.
  std::string content() const;

 private:
  using value = std::variant<std::uint32_t, wide>;
  enum class kind { section, value, other };
  struct line {
    kind what = kind::other;
    std::string raw;    ///< as it stands in the file, without the line end
    wide section = {};  ///< the key of the section it stands in, in lower case; empty before the first
    wide name = {};     ///< of a value
    value data = {};
  };

  static bool read_value(std::string_view raw, line& into);
  const value* find(const registry_key& key, wide_view name) const;
  /// Where a new value of the section goes; makes the section when there is none.
  std::size_t insertion_point(const registry_key& key, const wide& section);
  void set(const registry_key& key, wide_view name, value data);
  /// Whether no key is below that one.
  bool is_leaf(const wide& section) const;
  void delete_tree(const wide& section);

  std::vector<line> lines_;
};

}  // namespace ovf
