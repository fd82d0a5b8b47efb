#include "table/table_replacement.h"

#include "base/system_error.h"
#include "storage/file_error.h"

namespace ovf {
namespace {

constexpr wide_view no_file = OLESTR("there is no such file");
constexpr wide_view changed_meanwhile = OLESTR("another program has changed it meanwhile");

/// Some messages name the file alone: the system's words follow them.
wide with_systems_words(wide message, system_code code) {
  const wide words = system_message(code);
  if (code == 0 || message.find(words) != wide::npos) return message;
  return message.append(OLESTR(" (")).append(words).append(OLESTR(")"));
}

/// What the exception says that is being handled.
wide reason_in_flight() {
  try {
    throw;
  } catch (const file_error& error) {
    return with_systems_words(wide_from_utf8(error.what()), error.code());
  } catch (const MyExceptionClass& error) {
    return wide(error.message());
  } catch (const std::exception& error) {
    return wide_from_utf8(error.what());
  } catch (const table_core::not_open&) {
    return wide(no_file);
  }
}

}  // namespace

void open_again(table_core& core) {
  const wide path = core.path();
  core.release_table();
  try {
    core.reopen(path);
  } catch (...) {
    throw not_reopened{path, reason_in_flight()};
  }
}

table& table_replacement::begin(const table_definition& definition, bool keep_description) {
  try {
    make_copy(definition, keep_description);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    throw no_copy_made{reason_in_flight()};
  }
  return *copy_;
}

void table_replacement::make_copy(const table_definition& definition, bool keep_description) {
  table& old = core_.opened();
  table_definition copied = definition;
  for (std::uint64_t i = 0; i < old.getFieldCount(); ++i) copied.known_names.insert(old.getFieldName(i));
  new_table made(copied);
  made.carry_over(old, keep_description);
  file_.expect(before_);
  if (!file_.begin()) throw file_error(with_system_error(OLESTR("cannot create file (%x: %s)")));
  copy_ = create_table(file_.writer_name(), made);
}

wide table_replacement::refusal() const {
  return file_.was_changed() ? wide(changed_meanwhile) : system_message(last_system_error());
}

void table_replacement::commit() {
  copy_->flush();
  copy_.reset();
  if (!file_.settle()) throw not_replaced{path_, refusal()};
  const auto schema = core_.schema;
  core_.release_table();
  const bool is_placed = file_.commit();
  const wide why = is_placed ? wide() : refusal();
  const std::optional<wide> failure = reopen();
  if (failure && is_placed) throw not_reopened{path_, *failure};
  if (failure) throw not_restored{{path_, why}, *failure};
  if (!is_placed) {
    core_.schema = schema;
    throw not_replaced{path_, why};
  }
  cursor_.give_up();
}

std::optional<wide> table_replacement::reopen() {
  try {
    core_.reopen(path_);
    return std::nullopt;
  } catch (...) {
    return reason_in_flight();
  }
}

}  // namespace ovf
