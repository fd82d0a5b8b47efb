#include <algorithm>

#include "base/file_copy.h"
#include "base/file_replacement.h"
#include "engine/row_store.h"
#include "storage/file_error.h"
#include "storage/recognise.h"

namespace ovf {
namespace {

[[noreturn]] void fail_no_copy() { throw file_error(OLESTR("cannot create file")); }

/// The entries of a field, in whatever holds the header.
template <class Precision, class Header>
void write_entries(Header& header, const field& added) {
  const std::string name = ansi_from_wide(added.name);
  const char type = added.kind == field_kind::alphanumeric ? 'A' : 'N';
  for (std::size_t i = 0; i < added.atoms.size(); ++i) {
    const entry_span<Precision> entry = header.entry(added.first_entry + i);
    start_entry<Precision>(entry, name, type);
    store_number<Precision>(entry_word<Precision>(entry, format::entry_ordinal),
                            static_cast<typename Precision::number>(i + 1), header.order());
    std::memcpy(entry_word<Precision>(entry, format::entry_default), added.atoms[i].default_word.data(),
                Precision::word_bytes);
  }
}

constexpr wide_view changing_fields = OLESTR("Changing the fields");

bool on_one_page(const field& each) noexcept {
  return format::entry_page(each.first_entry) == format::entry_page(each.first_entry + each.atoms.size() - 1);
}

}  // namespace

template <class Precision>
void row_store<Precision>::require_room_for_atoms(std::uint64_t more) const {
  if (more > Precision::max_atoms - fields_.atoms()) throw MyExceptionClass(wide(Precision::too_many_atoms));
}

template <class Precision>
void row_store<Precision>::require_readable_count(std::size_t atoms) {
  if constexpr (!Precision::is_double) {
    if (header_.get(format::mark_word) == Precision::mark || count_tells_order(atoms, order())) return;
    throw MyExceptionClass(OLESTR("the table has no precision mark and cannot have this number of fields"));
  }
}

template <class Precision>
void row_store<Precision>::append_field(field added) {
  require_room_for_atoms(added.atoms.size());
  added.first_entry = fields_.atoms();
  const std::size_t atoms = added.first_entry + added.atoms.size();
  require_readable_count(atoms);
  table_fields grown = fields_;
  grown.add(added);
  own_header(changing_fields);
  note_change();
  flush_and_keep();
  if (format::header_pages(atoms) > counts_.header_pages) {
    append_field_in_copy(added);
  } else {
    append_field_in_place(added);
  }
  fields_ = std::move(grown);
  may_let_others_grow();
}

template <class Precision>
template <class Change, class Undo>
void row_store<Precision>::change_header(Change change, Undo undo) {
  try {
    change();
    header_.flush();
  } catch (...) {
    // Part of it may have reached the file: the old bytes go over it, now or with the next flush.
    try {
      undo();
      header_.flush();
    } catch (...) {
      // The first failure is the one to tell.
    }
    throw;
  }
}

template <class Precision>
auto row_store<Precision>::entry_bytes(const field& of) -> std::span<std::byte> {
  return {header_.entry(of.first_entry).data(),
          of.atoms.size() * format::entry_words * Precision::word_bytes};
}

template <class Precision>
void row_store<Precision>::append_field_in_place(const field& added) {
  const std::span<std::byte> spare = entry_bytes(added);
  const std::vector<std::byte> before(spare.begin(), spare.end());
  change_header(
      [&] {
        // All entries stand on the header's last page, which is written before the count on the first
        // one: a stop in between leaves entries that nobody counts.
        write_entries<Precision>(header_, added);
        header_.mark_changed();
        header_.set(format::atoms_word, added.first_entry + added.atoms.size());
      },
      [&] {
        header_.set(format::atoms_word, added.first_entry);
        std::ranges::copy(before, entry_bytes(added).begin());
        header_.mark_changed();
      });
}

template <class Precision>
void row_store<Precision>::append_field_in_copy(const field& added) {
  const std::size_t atoms = added.first_entry + added.atoms.size();
  page_counts grown = counts_;
  grown.header_pages = format::header_pages(atoms);
  // Without pages the file counts no rows, and shall not count any later.
  if (counts_.pages != 0) grown.pages += grown.header_pages - counts_.header_pages;
  if (grown.pages > Precision::largest_count) throw std::out_of_range("ov_size_t_2_int");
  header_image<Precision> header = read_header_image();
  header.grow_to(static_cast<std::size_t>(grown.header_pages));
  write_entries<Precision>(header, added);
  header.set(format::atoms_word, atoms);
  header.set(format::pages_word, grown.pages);
  replace_header(header);
  counts_ = grown;
}

template <class Precision>
void row_store<Precision>::rename_field(std::size_t index, const wide& name) {
  table_fields renamed = fields_;
  renamed.rename(index, name);
  const std::string text = ansi_from_wide(name);
  const field& old = fields_.at(index);
  own_header(changing_fields);
  note_change();
  flush_and_keep();
  if (on_one_page(old)) {
    rename_field_in_place(old, text);
  } else {
    rename_field_in_copy(old, text);
  }
  fields_ = std::move(renamed);
  may_let_others_grow();
}

template <class Precision>
void row_store<Precision>::rename_field_in_place(const field& renamed, std::string_view name) {
  const std::span<std::byte> entries = entry_bytes(renamed);
  const std::vector<std::byte> before(entries.begin(), entries.end());
  change_header(
      [&] {
        for (std::size_t i = 0; i < renamed.atoms.size(); ++i) {
          store_entry_name<Precision>(header_.entry(renamed.first_entry + i), name);
        }
        header_.mark_changed();
      },
      [&] { std::ranges::copy(before, entry_bytes(renamed).begin()); });
}

template <class Precision>
void row_store<Precision>::rename_field_in_copy(const field& renamed, std::string_view name) {
  // Two pages cannot be written in one step, and a field with two names would be two fields.
  header_image<Precision> header = read_header_image();
  for (std::size_t i = 0; i < renamed.atoms.size(); ++i) {
    store_entry_name<Precision>(header.entry(renamed.first_entry + i), name);
  }
  replace_header(header);
}

template <class Precision>
header_image<Precision> row_store<Precision>::read_header_image() {
  header_image<Precision> header(static_cast<std::size_t>(counts_.header_pages), header_.order());
  if (!header.read(*file_)) fail_no_copy();
  return header;
}

template <class Precision>
void row_store<Precision>::replace_header(const header_image<Precision>& header) {
  // What is changed in a table opened for reading stays in memory; a file of another size cannot.
  if (read_only_) fail_no_copy();
  file_replacement made(path_);
  const std::uint64_t behind_header = counts_.header_pages * Precision::page_bytes;
  const file* before = file_.get();
  const bool done = made.begin() && write_whole(made.copy(), header.bytes()) &&
                    copy_from(*file_, behind_header, made.copy()) && made.commit(file_);
  // A refused file may have been opened again as well.
  if (done || file_.get() != before) {
    header_.turn_to(*file_);
    records_.turn_to(*file_);
    grows_alone_ = false;  // that went with the file before
    remember_header();
    note_file();
  }
  if (!done) fail_no_copy();
}

template class row_store<single_precision>;
template class row_store<double_precision>;

}  // namespace ovf
