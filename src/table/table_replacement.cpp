#include "table/table_replacement.h"

#include "platform/system_error.h"
#include "storage/file_error.h"

namespace ovf {

table_replacement::table_replacement(table_core& core)
    : core_(core), path_(absolute_path(core.opened().getFileName())), file_(path_) {}

table& table_replacement::begin(const table_definition& definition, bool keep_description) {
  new_table made(definition);
  made.carry_over(core_.opened(), keep_description);
  if (!file_.begin()) throw file_error(OLESTR("cannot create file"));
  file_.close();
  copy_ = create_table(file_.copy_name(), made);
  return *copy_;
}

bool table_replacement::commit() {
  copy_->flush();
  copy_.reset();
  core_.release_table();
  const bool placed = file_.commit();
  if (!placed) refusal_ = last_system_error();
  core_.reopen(path_);
  return placed;
}

}  // namespace ovf
