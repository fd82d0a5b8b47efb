// Changes of a table's fields, with the whole file before and after them.
#pragma once

#include <functional>
#include <ostream>

#include "field_files.h"

namespace ovtest {

/// The files have 20 rows; word 1 of row r holds 1000 r + 1.
struct field_change {
  std::string name;
  bytes before;
  bytes after;
  std::function<void(ovf::table&)> change;
  std::function<bool(ovf::table&)> is_there;
};

inline std::ostream& operator<<(std::ostream& out, const field_change& change) { return out << change.name; }

inline bool has_field(ovf::table& table, const ovf::wide& name) {
  try {
    table.getFieldIndex(name);
    return true;
  } catch (const MyExceptionClass&) {
    return false;
  }
}

/// A number is added to `count` stored ones.
inline field_change adding_number(std::string name, int count, int pages_before, int pages_after,
                                  word_format format) {
  std::vector<atom> more = stored_numbers(count);
  more.push_back(added_number("GRADE", 0.125));
  return {std::move(name), numbers_table(stored_numbers(count), count, 20, pages_before, format),
          numbers_table(more, count, 20, pages_after, format),
          [](ovf::table& table) { table.addNumericField(OLESTR("GRADE"), 0.125); },
          [](ovf::table& table) { return has_field(table, OLESTR("GRADE")); }};
}

inline field_change growing_header() { return adding_number("HeaderGrowth", 68, 1, 2, double_words); }

/// A text of 4 words behind `count` stored numbers gets another name.
inline field_change renaming_text(std::string name, int count, int pages, word_format format) {
  std::vector<atom> old_atoms = stored_numbers(count);
  std::vector<atom> new_atoms = old_atoms;
  add_text_atoms(old_atoms, "ZONE", 4, 0, "weathered zone");
  add_text_atoms(new_atoms, "DOMAIN", 4, 0, "weathered zone");
  const auto index = static_cast<std::uint64_t>(count);
  return {std::move(name), numbers_table(old_atoms, count, 20, pages, format),
          numbers_table(new_atoms, count, 20, pages, format),
          [index](ovf::table& table) { table.renameField(index, OLESTR("DOMAIN")); },
          [](ovf::table& table) { return has_field(table, OLESTR("DOMAIN")); }};
}

inline std::vector<field_change> field_changes() {
  return {adding_number("NumberSingle", 5, 1, 1, single_words),
          adding_number("NumberOtherOrder", 5, 1, 1, word_format{4, 1280}),
          adding_number("NumberDouble", 5, 1, 1, double_words),
          adding_number("NumberOnTheSecondPage", 90, 2, 2, double_words),
          growing_header(),
          renaming_text("RenameSingle", 5, 1, single_words),
          renaming_text("RenameDouble", 5, 1, double_words),
          renaming_text("RenameOnTheSecondPage", 90, 2, double_words),
          renaming_text("RenameOverThePageBorder", 66, 2, double_words)};
}

}  // namespace ovtest
