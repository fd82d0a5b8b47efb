// Default values of fields, and what the header says.
#include "engine/ovtable.h"
#include "engine/refusals.h"
#include "engine/values.h"
#include "storage/file_error.h"

namespace ovf {
namespace {

constexpr wide_view default_not_numeric = OLESTR("Cannot write numeric value to an alphanumeric field.");
constexpr wide_view default_not_text = OLESTR("Cannot write alphanumeric value to a non-alphanumeric field.");
constexpr wide_view changing_defaults = OLESTR("Changing the defaults");

}  // namespace

template <class Precision>
variant basic_ovtable<Precision>::getDefaultValue(std::uint64_t index) {
  const field& from = rows_.fields().at(index);
  if (from.kind == field_kind::numeric) {
    return variant(load_number<Precision>(from.atoms.front().default_word.data(), rows_.order()));
  }
  const std::string text = default_text_of(from);
  return text.empty() ? variant() : variant(wide_view(wide_from_ansi(text)));
}

template <class Precision>
variant basic_ovtable<Precision>::getDefaultValueByName(const wide& name) {
  return getDefaultValue(getFieldIndex(name));
}

template <class Precision>
float basic_ovtable<Precision>::getDefaultFloat(std::uint64_t index) {
  field_of(index, field_kind::numeric, numeric_requested);
  return table::getDefaultFloat(index);
}

template <class Precision>
double basic_ovtable<Precision>::getDefaultDouble(std::uint64_t index) {
  field_of(index, field_kind::numeric, numeric_requested);
  return table::getDefaultDouble(index);
}

template <class Precision>
void basic_ovtable<Precision>::set_native_default(std::uint64_t index, number value) {
  field& to = rows_.fields().at(index);
  if (to.kind != field_kind::numeric) throw MyExceptionClass(wide(default_not_numeric));
  rows_.own_header(changing_defaults);
  std::byte* place = entry_word<Precision>(rows_.header().entry(to.first_entry), format::entry_default);
  store_number<Precision>(place, value, rows_.order());
  std::memcpy(to.atoms.front().default_word.data(), place, Precision::word_bytes);
  rows_.mark_header_changed();
}

template <class Precision>
void basic_ovtable<Precision>::setDefaultFloat(std::uint64_t index, float value) {
  set_native_default(index, static_cast<number>(value));
}

template <class Precision>
void basic_ovtable<Precision>::setDefaultDouble(std::uint64_t index, double value) {
  if constexpr (Precision::is_double) {
    set_native_default(index, value);
  } else {
    field_of(index, field_kind::numeric, default_not_numeric);
    set_native_default(index, to_float(variant(value)));
  }
}

template <class Precision>
void basic_ovtable<Precision>::setDefaultString(std::uint64_t index, const wide& value) {
  field& to = rows_.fields().at(index);
  if (to.kind != field_kind::alphanumeric) throw MyExceptionClass(wide(default_not_text));
  std::string text = ansi_from_wide(value);
  text.resize(to.atoms.size() * format::text_word_chars, ' ');
  rows_.own_header(changing_defaults);
  for (std::size_t i = 0; i < to.atoms.size(); ++i) {
    std::byte* place = entry_word<Precision>(rows_.header().entry(to.first_entry + i), format::entry_default);
    std::memset(place, 0, Precision::word_bytes);
    std::memcpy(place, text.data() + i * format::text_word_chars, format::text_word_chars);
    std::memcpy(to.atoms[i].default_word.data(), place, Precision::word_bytes);
    rows_.mark_header_changed();
  }
  flush();
}

template <class Precision>
table_facts basic_ovtable<Precision>::facts() {
  const auto text = [this](std::size_t word, std::size_t words) {
    return wide_from_ansi(rows_.header().characters(word, words));
  };
  table_facts found;
  found.order = rows_.order();
  found.atoms = static_cast<std::uint64_t>(rows_.header().get(format::atoms_word));
  found.header_pages = rows_.counts().header_pages;
  found.record_words = rows_.fields().record_words();
  found.records_per_page = rows_.records_per_page();
  found.records_in_last_page = rows_.counts().records_in_last_page;
  found.pages = rows_.counts().pages;
  found.file_bytes = rows_.file_bytes();
  found.first_name = text(format::first_name_word, format::name_words);
  found.second_name = text(format::second_name_word, format::name_words);
  found.description = text(format::description_word, format::description_words);
  found.owner = text(format::owner_word, format::name_words);
  return found;
}

template variant basic_ovtable<single_precision>::getDefaultValue(std::uint64_t);
template variant basic_ovtable<single_precision>::getDefaultValueByName(const wide&);
template float basic_ovtable<single_precision>::getDefaultFloat(std::uint64_t);
template double basic_ovtable<single_precision>::getDefaultDouble(std::uint64_t);
template void basic_ovtable<single_precision>::setDefaultString(std::uint64_t, const wide&);
template void basic_ovtable<single_precision>::setDefaultFloat(std::uint64_t, float);
template void basic_ovtable<single_precision>::setDefaultDouble(std::uint64_t, double);
template table_facts basic_ovtable<single_precision>::facts();
template variant basic_ovtable<double_precision>::getDefaultValue(std::uint64_t);
template variant basic_ovtable<double_precision>::getDefaultValueByName(const wide&);
template float basic_ovtable<double_precision>::getDefaultFloat(std::uint64_t);
template double basic_ovtable<double_precision>::getDefaultDouble(std::uint64_t);
template void basic_ovtable<double_precision>::setDefaultString(std::uint64_t, const wide&);
template void basic_ovtable<double_precision>::setDefaultFloat(std::uint64_t, float);
template void basic_ovtable<double_precision>::setDefaultDouble(std::uint64_t, double);
template table_facts basic_ovtable<double_precision>::facts();

}  // namespace ovf
