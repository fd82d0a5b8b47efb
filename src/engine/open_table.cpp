#include "engine/open_table.h"

#include <algorithm>
#include <cstring>
#include <set>

#include "engine/field_name.h"
#include "engine/header_report.h"
#include "engine/ovtable.h"
#include "platform/clock.h"
#include "storage/file_error.h"
#include "storage/ovdd.h"
#include "storage/random_access_file.h"
#include "storage/recognise.h"

namespace ovf {
namespace {

constexpr wide_view no_name = OLESTR("no filename given");
constexpr wide_view open_failed =
    OLESTR("Failed to open table %s, windows reported the following error\r\nError: %i\r\nMessage: %s");
constexpr wide_view too_many_fields = OLESTR(
    "Failed to create file.\nPlease note there is a size limit of 64 4-byte fields per record in a "
    "single precision Orvexa file.\nPlease consider removing some columns and/or choosing double "
    "precision format");
constexpr wide_view write_failed = OLESTR("Failed to create file");

std::unique_ptr<file> open_handle(const wide& name, bool read_only) {
  if (name.empty()) throw MyExceptionClass(wide(no_name));
  auto opened = files().open(name, read_only ? open_mode::read : open_mode::edit);
  if (opened != nullptr) return opened;
  const system_code code = last_system_error();
  throw file_error(wide_format(open_failed)
                       .arg(wide_view(name))
                       .arg(static_cast<long long>(code))
                       .arg(system_message(code))
                       .text());
}

wide description_of(const table_definition& definition) {
  if (!definition.description.empty()) return definition.description;
  return default_description(definition.is_double, today_utc());
}

template <class Precision>
std::vector<std::byte> header_of(const table_definition& definition) {
  require_field_limit(Precision::is_double, definition.fields.size());
  basic_ovdd<Precision> dictionary;
  dictionary.set_description(ansi_from_wide(description_of(definition)));
  std::set<wide_view> names;
  std::multiset<wide> known = definition.known_names;
  for (const field_definition& each : definition.fields) {
    const auto known_name = known.find(each.name);
    const std::string name = ansi_from_wide(each.name);
    if (known_name == known.end() || (!Precision::is_double && name.size() > format::short_name_chars)) {
      check_new_field_name(each.name, Precision::is_double);
      if (names.contains(each.name)) fail_name_taken();
    } else {
      known.erase(known_name);
    }
    names.insert(each.name);
    if (each.kind == field_kind::numeric) {
      dictionary.add_number(name, number_from<Precision>(each.number_default), !each.implicit);
    } else {
      dictionary.add_text(name, each.text_default, !each.implicit);
    }
  }
  return dictionary.finished();
}

/// Finds out, before an existing file is emptied, whether the temporary copy of the header will have room.
void try_temporary_room(const std::vector<std::byte>& header) {
  const wide name = temporary_name(files().temporary_folder(), OLESTR("RAF"));
  auto trial = files().open(name, open_mode::scratch);
  if (trial == nullptr) fail_told(OLESTR("cannot create temp file for segment"));
  std::size_t done = 0;
  const bool written = trial->write(header, done) && done == header.size();
  trial.reset();
  files().remove(name);
  if (!written) throw file_error(write_failed);
}

/// Writes the header; a target that could not be written whole is removed again.
void write_new(const wide& name, const std::vector<std::byte>& header) {
  try_temporary_room(header);
  std::exception_ptr failure;
  {
    random_access_file target(name, random_access::create);
    try {
      if (target.write(0, header) != header.size() || !target.sync()) throw file_error(write_failed);
    } catch (...) {
      failure = std::current_exception();
    }
  }
  if (failure == nullptr) return;
  files().remove(name);
  std::rethrow_exception(failure);
}

}  // namespace

std::unique_ptr<table> open_table(std::string_view name, bool read_only) {
  return open_table(wide_from_ansi(name), read_only);
}

void require_field_limit(bool is_double, std::uint64_t fields) {
  if (!is_double && fields > single_precision::max_atoms) throw MyExceptionClass(wide(too_many_fields));
}

wide default_description(bool is_double, utc_date date) {
  const wide_view words = is_double ? double_precision::created_by : single_precision::created_by;
  return wide_format(words).arg(date.day).arg(date.month).arg(date.year).text();
}

std::unique_ptr<table> open_table(const wide& name, bool read_only) {
  if (name.empty()) throw MyExceptionClass(wide(no_name));
  const recognition found = recognise(name);
  auto opened = open_handle(name, read_only);
  std::unique_ptr<table> made;
  if (found.is_double) {
    made = std::make_unique<ovtable64>(std::move(opened), name, read_only, found.order);
  } else {
    made = std::make_unique<ovtable>(std::move(opened), name, read_only, found.order);
  }
  tell_header(*made);
  return made;
}

new_table::new_table(const table_definition& definition)
    : header(definition.is_double ? header_of<double_precision>(definition)
                                  : header_of<single_precision>(definition)),
      is_double(definition.is_double) {}

void new_table::carry_over(table& from, bool description) {
  const std::vector<std::byte> texts = from.headerTexts();
  const std::size_t word_bytes = is_double ? double_precision::word_bytes : single_precision::word_bytes;
  const std::size_t from_word_bytes = texts.size() / format::text_words;
  for (std::size_t word = 0; word < format::text_words; ++word) {
    const bool describes = word >= format::description_word && word < format::owner_word;
    if (describes && !description) continue;
    std::byte* place = header.data() + word * word_bytes;
    // A word of the other size keeps its 4 characters.
    std::memcpy(place, texts.data() + word * from_word_bytes, std::min(word_bytes, from_word_bytes));
  }
}

std::unique_ptr<table> create_table(const wide& name, const new_table& made) {
  if (name.empty()) throw MyExceptionClass(wide(no_name));
  write_new(name, made.header);
  auto opened = open_handle(name, false);
  if (made.is_double) return std::make_unique<ovtable64>(std::move(opened), name, false, byte_order::native);
  return std::make_unique<ovtable>(std::move(opened), name, false, byte_order::native);
}

}  // namespace ovf
