// From a file's name to an open table.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "engine/table.h"
#include "platform/clock.h"

namespace ovf {

/// Opens a table of either precision. Throws "no filename given", what recognition throws, "Failed to
/// open table …", and what reading the header throws.
std::unique_ptr<table> open_table(const wide& name, bool read_only);
/// The same with a name in the ANSI code page.
std::unique_ptr<table> open_table(std::string_view name, bool read_only);

/// What a table without a description of its own says: who made it, in which precision, and when.
wide default_description(bool is_double, utc_date date);

/// A field of a table to be made.
struct field_definition {
  wide name;
  field_kind kind = field_kind::numeric;
  double number_default = 0;
  std::string text_default;  ///< ANSI code page, padded to the field's width
  bool implicit = false;
};

struct table_definition {
  wide description;  ///< empty: who made the file, and when
  std::vector<field_definition> fields;
  bool is_double = false;
  /// Names that stand in a file already, each as often as it does there: a copy keeps them, whatever the
  /// rules for new names say.
  std::multiset<wide> known_names = {};
};

/// Throws MyExceptionClass, the 64-field message, for more fields than a precision takes.
void require_field_limit(bool is_double, std::uint64_t fields);

/// The header of a table to be made, complete: every reason to refuse the definition is found here,
/// before any file is touched. Throws MyExceptionClass: the 64-field message, field name rules, too many
/// words.
struct new_table {
  explicit new_table(const table_definition& definition);

  /// Takes the header's names and owner over from another table, and its description if so wished.
  void carry_over(table& from, bool description);

  std::vector<std::byte> header;
  bool is_double;
};

/// Makes the file, or empties one, writes the header and opens it. Throws file_error "cannot create
/// file" or "Failed to create file"; a file that could not be written whole is removed.
std::unique_ptr<table> create_table(const wide& name, const new_table& made);

}  // namespace ovf
