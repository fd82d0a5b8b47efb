// New fields and new names of an open table.
#include <type_traits>

#include "engine/field_name.h"
#include "engine/ovtable.h"
#include "engine/refusals.h"

namespace ovf {
namespace {

constexpr wide_view negative_width = OLESTR("field width out of range");

}  // namespace

template <class Precision>
template <class Change>
void basic_ovtable<Precision>::change_fields(Change change) {
  const bool on_a_record = record_ != nullptr;
  columns_.reserve(rows_.fields().size() + 1);
  try {
    change();
  } catch (...) {
    if (on_a_record) restore_record();
    throw;
  }
  resolve_columns();
  if (on_a_record) restore_record();
}

template <class Precision>
void basic_ovtable<Precision>::renameField(std::uint64_t index, const wide& name) {
  const table_fields& fields = std::as_const(rows_).fields();
  if (index > fields.size()) throw MyExceptionClass(wide(bad_field_index));
  check_field_name(name, Precision::is_double, name_use::renaming);
  if (fields.at(index).name == name) return;
  if (fields.contains(name)) fail_name_taken();
  change_fields([&] { rows_.rename_field(static_cast<std::size_t>(index), name); });
}

template <class Precision>
void basic_ovtable<Precision>::check_new_name(const wide& name) {
  check_new_field_name(name, Precision::is_double);
  if (rows_.fields().contains(name)) fail_name_taken();
}

template <class Precision>
std::uint64_t basic_ovtable<Precision>::add_field(field added) {
  const std::uint64_t index = rows_.fields().size();
  change_fields([&] { rows_.append_field(std::move(added)); });
  return index;
}

template <class Precision>
std::uint64_t basic_ovtable<Precision>::addNumericField(const wide& name, float default_value) {
  if constexpr (Precision::is_double) {
    return addNumericField(name, static_cast<double>(default_value));
  } else {
    check_new_name(name);
    atom word;
    store_number<Precision>(word.default_word.data(), default_value, rows_.order());
    return add_field({name, field_kind::numeric, 0, {word}});
  }
}

template <class Precision>
std::uint64_t basic_ovtable<Precision>::addNumericField(const wide& name, double default_value) {
  if constexpr (Precision::is_double) {
    check_new_name(name);
    atom word;
    store_number<Precision>(word.default_word.data(), default_value, byte_order::native);
    return add_field({name, field_kind::numeric, 0, {word}});
  } else {
    return addNumericField(name, to_float(variant(default_value)));
  }
}

template <class Precision>
std::uint64_t basic_ovtable<Precision>::addAlphaField(const wide& name, std::int64_t width,
                                                      const wide& default_value) {
  constexpr std::size_t chars = format::text_word_chars;
  check_new_name(name);
  if (width < 0) throw MyExceptionClass(wide(negative_width));
  const std::uint64_t words = width == 0 ? 1 : (static_cast<std::uint64_t>(width) + chars - 1) / chars;
  rows_.require_room_for_atoms(words);
  field added{name, field_kind::alphanumeric, 0, std::vector<atom>(static_cast<std::size_t>(words))};
  std::string text = ansi_from_wide(default_value);
  text.resize(added.atoms.size() * chars, ' ');
  for (std::size_t i = 0; i < added.atoms.size(); ++i) {
    std::memcpy(added.atoms[i].default_word.data(), text.data() + i * chars, chars);
  }
  return add_field(std::move(added));
}

template void basic_ovtable<single_precision>::renameField(std::uint64_t, const wide&);
template std::uint64_t basic_ovtable<single_precision>::addNumericField(const wide&, float);
template std::uint64_t basic_ovtable<single_precision>::addNumericField(const wide&, double);
template std::uint64_t basic_ovtable<single_precision>::addAlphaField(const wide&, std::int64_t, const wide&);
template void basic_ovtable<double_precision>::renameField(std::uint64_t, const wide&);
template std::uint64_t basic_ovtable<double_precision>::addNumericField(const wide&, float);
template std::uint64_t basic_ovtable<double_precision>::addNumericField(const wide&, double);
template std::uint64_t basic_ovtable<double_precision>::addAlphaField(const wide&, std::int64_t, const wide&);

}  // namespace ovf
