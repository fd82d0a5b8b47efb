#include "engine/field.h"

#include <cmath>
#include <limits>

#include "storage/file_error.h"

namespace ovf {
namespace {

template <class Precision>
atom load_atom(const_entry_span<Precision> entry, byte_order order) {
  atom loaded;
  const auto position = load_number<Precision>(entry_word<Precision>(entry, format::entry_position), order);
  loaded.position = static_cast<std::uint32_t>(count_from(static_cast<double>(position)));
  std::memcpy(loaded.default_word.data(), entry_word<Precision>(entry, format::entry_default),
              Precision::word_bytes);
  return loaded;
}

/// Every word of the record belongs to one atom, or rows would be read that nobody wrote.
void check_positions(const table_fields& fields) {
  std::vector<bool> taken(fields.record_words());
  for (const field& each : fields) {
    for (const atom& word : each.atoms) {
      if (word.position == 0) continue;
      if (word.position > taken.size() || taken[word.position - 1]) fail_not_a_table();
      taken[word.position - 1] = true;
    }
  }
}

}  // namespace

void table_fields::add(field added) {
  for (const atom& word : added.atoms) record_words_ += word.position != 0 ? 1 : 0;
  atoms_ += added.atoms.size();
  by_name_.try_emplace(added.name, fields_.size());
  fields_.push_back(std::move(added));
}

void table_fields::rename(std::size_t index, wide name) {
  fields_[index].name = std::move(name);
  by_name_.clear();
  for (std::size_t i = 0; i < fields_.size(); ++i) by_name_.try_emplace(fields_[i].name, i);
}

void table_fields::fail_not_found() {
  throw MyExceptionClass(OLESTR("index out of range, field not found."));
}

field& table_fields::at(std::uint64_t index) { return const_cast<field&>(std::as_const(*this).at(index)); }

std::size_t table_fields::index_of(const wide& name) const {
  const auto found = by_name_.find(name);
  if (found == by_name_.end()) throw MyExceptionClass(OLESTR("unknown field name..."));
  return found->second;
}

std::uint64_t count_from(double word) {
  // The comparison is false for NaN.
  if (!(word > -1 && word < std::numeric_limits<std::int32_t>::max() + 1.0)) fail_not_a_table();
  return static_cast<std::uint64_t>(std::trunc(word) + 0.0);
}

template <class Precision>
table_fields read_fields(header_pages<Precision>& header) {
  const auto promised = static_cast<double>(header.get(format::atoms_word));
  if (promised >= static_cast<double>(Precision::max_atoms + 1)) fail_unrecognised();
  const std::uint64_t atoms = count_from(promised);
  table_fields fields;
  field current;
  for (std::size_t i = 0; i < atoms; ++i) {
    const const_entry_span<Precision> entry = header.entry(i);
    const field_kind kind =
        is_alphanumeric<Precision>(entry) ? field_kind::alphanumeric : field_kind::numeric;
    wide name = wide_from_ansi(load_entry_name<Precision>(entry));
    const bool continues = !current.atoms.empty() && kind == field_kind::alphanumeric &&
                           current.kind == kind && current.name == name;
    if (!continues) {
      if (!current.atoms.empty()) fields.add(std::move(current));
      current = {std::move(name), kind, i, {}};
    }
    current.atoms.push_back(load_atom<Precision>(entry, header.order()));
  }
  if (!current.atoms.empty()) fields.add(std::move(current));
  check_positions(fields);
  return fields;
}

template table_fields read_fields<single_precision>(header_pages<single_precision>&);
template table_fields read_fields<double_precision>(header_pages<double_precision>&);

}  // namespace ovf
