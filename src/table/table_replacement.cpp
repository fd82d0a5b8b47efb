#include "table/table_replacement.h"

#include "platform/system_error.h"
#include "storage/file_error.h"

namespace ovf {

table& table_replacement::begin(const table_definition& definition, bool keep_description) {
  try {
    make_copy(definition, keep_description);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const MyExceptionClass& error) {
    throw no_copy_made{wide(error.message())};
  } catch (const std::exception& error) {
    throw no_copy_made{wide_from_utf8(error.what())};
  }
  return *copy_;
}

void table_replacement::make_copy(const table_definition& definition, bool keep_description) {
  table& old = core_.opened();
  table_definition copied = definition;
  for (std::uint64_t i = 0; i < old.getFieldCount(); ++i) copied.known_names.insert(old.getFieldName(i));
  new_table made(copied);
  made.carry_over(old, keep_description);
  if (!file_.begin()) throw file_error(with_system_error(OLESTR("cannot create file (%x: %s)")));
  file_.close();
  copy_ = create_table(file_.copy_name(), made);
}

void table_replacement::commit() {
  copy_->flush();
  copy_.reset();
  const auto schema = core_.schema;
  core_.release_table();
  const bool is_placed = file_.commit();
  const system_code refusal = is_placed ? 0 : last_system_error();
  reopen();
  if (!is_placed) {
    core_.schema = schema;
    throw not_replaced{path_, refusal};
  }
  cursor_.give_up();
}

void table_replacement::reopen() {
  try {
    core_.reopen(path_);
  } catch (...) {
    throw not_reopened();
  }
}

}  // namespace ovf
