#include "engine/table.h"

namespace ovf {
namespace {

constexpr wide_view past_the_end = OLESTR("index out of bounds: row past the end of the table");
constexpr wide_view before_the_beginning = OLESTR("index out of bounds: row before beginning of table");
constexpr wide_view out_of_bounds = OLESTR("index out of bounds");

}  // namespace

float table::getFloat(std::uint64_t index) { return to_float(getValue(index)); }

double table::getDouble(std::uint64_t index) { return to_double(getValue(index)); }

wide table::getString(std::uint64_t index) { return to_text(getValue(index)); }

void table::setDouble(std::uint64_t index, double value) { setFloat(index, to_float(value)); }

void table::setFloat(std::uint64_t index, float value) { setDouble(index, static_cast<double>(value)); }

void table::setString(std::uint64_t index, const wide& value) { setValue(index, variant(wide_view(value))); }

float table::getDefaultFloat(std::uint64_t index) { return to_float(getDefaultValue(index)); }

double table::getDefaultDouble(std::uint64_t index) { return to_double(getDefaultValue(index)); }

wide table::getDefaultString(std::uint64_t index) { return to_text(getDefaultValue(index)); }

void table::firstRow() {
  if (getRowCount() > 0) {
    load(1);
    return;
  }
  current_ = 0;
  drop_record(nullptr);
}

void table::lastRow() {
  const std::uint64_t last = getRowCount();
  if (last == 0) {
    firstRow();
  } else if (current_ != last || record_ == nullptr) {
    load(last);
  }
}

void table::next_row_elsewhere() {
  if (current_ >= getRowCount()) throw bound_error(wide(past_the_end));
  load(current_ + 1);
}

void table::previousRow() {
  if (current_ <= 1) throw bound_error(wide(before_the_beginning));
  load(current_ - 1);
}

void table::goToRow(std::uint64_t row) {
  if (row == 0 || row > getRowCount()) throw bound_error(wide(out_of_bounds));
  load(row);
}

void table::load(std::uint64_t row) {
  try {
    locate(row);
    current_ = row;
    load_failure_ = nullptr;
  } catch (...) {
    drop_record(std::current_exception());
    throw;
  }
}

void table::drop_record(std::exception_ptr reason) noexcept {
  record_ = nullptr;
  rows_left_in_page_ = 0;
  load_failure_ = std::move(reason);
}

void table::restore_record() noexcept {
  try {
    drop_record(nullptr);
    if (current_ > 0) load(current_);
  } catch (...) {
    // Accesses tell why, until a move succeeds.
  }
}

void table::fail_without_record() const {
  if (load_failure_ != nullptr) std::rethrow_exception(load_failure_);
  throw MyExceptionClass(wide(out_of_bounds));
}

}  // namespace ovf
