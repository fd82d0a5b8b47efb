#include "table/table_core.h"

#include "base/file.h"
#include "table/link_target.h"
#include "table/schema_transfer.h"

namespace ovf {
namespace {

/// What no file is like: a replacement that expects it is refused.
constexpr file_stamp nobodys{};

std::optional<file_stamp> stamp_of(const wide& name) {
  file_stamp now;
  return files().stamp(name, now) ? std::optional(now) : std::nullopt;
}

}  // namespace

opening table_core::open(wide_view file_name, LONG read_only_choice, HRESULT& filled) {
  if (files().kind(file_name) == file_kind::missing) return opening::missing;
  // What the held table has not written yet might be in the very file that is opened now.
  if (table_ != nullptr) table_->flush();
  name = file_name;
  read_only = read_only_choice;
  std::unique_ptr<table> found;
  std::optional<file_stamp> before;
  const opening outcome = open_target(found, before);
  if (outcome == opening::opened) filled = hold(std::move(found), before);
  return outcome;
}

opening table_core::open_target(std::unique_ptr<table>& found, std::optional<file_stamp>& before) {
  const auto open_one = [&](std::unique_ptr<table>& one) {
    if (files().kind(name) != file_kind::regular) return opening::not_a_table;
    before = stamp_of(name);
    one = open_table(name, read_only != 0);
    return opening::opened;
  };
  const opening outcome = open_one(found);
  if (outcome != opening::opened) return outcome;
  const auto target = link_target(found->getDescription(), name);
  if (!target) return outcome;
  // One level only: what a link leads to is an ordinary table, whatever its description says.
  found.reset();
  name = *target;
  if (files().kind(name) == file_kind::missing) name = with_own_separators(name);
  if (files().kind(name) == file_kind::missing) return opening::missing;
  is_linked = true;  // whatever it leads to
  return open_one(found);
}

void table_core::note_stamp(const std::optional<file_stamp>& now) {
  stamp_ = now;
  stamped_ = table_->version();
  is_past_ = false;
  file_stamp own;
  if (!stamp_) return;
  if (!table_->stamp(own)) {
    stamp_.reset();
  } else if (!own.is_of_same_file(*stamp_)) {
    // Who may change the folder can put another file under the name for the moment in which it is opened.
    stamp_ = nobodys;
  }
}

file_stamp table_core::stamp() {
  const bool is_own = opened().version() != stamped_;
  if (stamp_ && !is_own && (is_past_ || stamp_of(path_) != stamp_)) return *stamp_;
  opened().flush();
  note_stamp(stamp_of(path_));
  if (!stamp_) return nobodys;
  files().wait_past(*stamp_);
  // What others have changed before that moment is read from here on; rows of theirs are not, and no later
  // look at the file would tell of them.
  if (!opened().readAgain()) stamp_ = nobodys;
  is_past_ = true;
  return *stamp_;
}

bool table_core::was_changed_elsewhere() const {
  if (!stamp_ || opened().version() != stamped_) return false;
  file_stamp now;
  return files().stamp(path_, now) && now != stamp_;
}

HRESULT table_core::hold(std::unique_ptr<table> found, const std::optional<file_stamp>& before) {
  ovfile::pointer<IOvSchema> filled = new_schema();
  const HRESULT status = fill_schema(*filled.get(), *found);
  path_ = absolute_path(found->getFileName());
  table_ = std::move(found);
  note_stamp(before);
  schema = std::move(filled);
  at_end = false;
  at_beginning = false;
  return status;
}

void table_core::create(ovfile::pointer<IOvSchema> definition) {
  schema = std::move(definition);
  require_field_limit(*schema.get());
  const new_table made(definition_of(*schema.get()));
  if (table_ != nullptr) {
    table_->flush();
    // The file that is made anew may be the very one that is held.
    if (is_held_file(name)) table_.reset();
  }
  table_ = create_table(name, made);
  path_ = absolute_path(name);
  note_stamp(stamp_of(path_));
  refill(*schema.get());
}

bool table_core::is_held_file(wide_view other) const {
  if (path_ == absolute_path(other)) return true;
  // By a link, or in another spelling.
  file_stamp held;
  file_stamp named;
  return files().stamp(path_, held) && files().stamp(other, named) && held.volume == named.volume &&
         held.number == named.number;
}

void table_core::refill(IOvSchema& definition) const {
  VARIANT_BOOL latched = VARIANT_FALSE;
  (void)definition.get_ReadOnly(&latched);
  (void)fill_schema(definition, *table_);
  if (latched != VARIANT_FALSE) (void)definition.put_ReadOnly(VARIANT_TRUE);
}

void table_core::close() {
  schema = {};
  if (table_ == nullptr) return;
  table_->flush();
  table_.reset();
}

void table_core::release_table() {
  opened().flush();
  table_.reset();
}

void table_core::reopen(const wide& path) {
  if (files().kind(path) != file_kind::regular) throw not_open();
  const std::optional<file_stamp> before = stamp_of(path);
  const HRESULT filled = hold(open_table(path, read_only != 0), before);
  if (FAILED(filled)) throw com_error(filled);
  try {
    first_row();
  } catch (const std::exception&) {
    // A row that cannot be read does not make the table unreadable: the next access says why.
  }
}

move table_core::first_row() {
  const bool empty = opened().getRowCount() == 0;
  opened().firstRow();
  at_end = empty;
  at_beginning = empty;
  return empty ? move::empty : move::on_a_row;
}

move table_core::last_row() {
  if (opened().getRowCount() == 0) return move::empty;
  opened().lastRow();
  at_end = false;
  at_beginning = false;
  return move::on_a_row;
}

move table_core::previous_row() {
  if (opened().getRowCount() == 0) return move::empty;
  if (opened().currentRow() > 1) {
    opened().previousRow();
    return move::on_a_row;
  }
  at_beginning = true;
  return move::off_the_end;
}

move table_core::row_at(LONG row) {
  const bool before = row < 1;
  const bool behind = !before && static_cast<std::uint64_t>(row) > opened().getRowCount();
  if (!before && !behind) opened().goToRow(static_cast<std::uint64_t>(row));
  at_beginning = before;
  at_end = behind;
  return before || behind ? move::off_the_end : move::on_a_row;
}

void table_core::add_row() {
  table& target = opened();
  if (target.getRowCount() > 0) {
    target.lastRow();
    at_end = false;
    at_beginning = false;
  }
  target.addRow();
  at_end = false;
  at_beginning = false;
}

}  // namespace ovf
