#include "table/row_filter.h"

#include "platform/printed_float.h"
#include "schema/refusals.h"
#include "schema/schema_filling.h"
#include "storage/special_values.h"
#include "table/column_values.h"

namespace ovf {
namespace {

bool is_absent(double value) noexcept { return value == absent_value; }
bool is_absent(float value) noexcept { return value == static_cast<float>(absent_value); }

bool is_absent(const variant& value) noexcept {
  if (value.type() == VT_R4) return is_absent(value.get().fltVal);
  return value.type() == VT_R8 && is_absent(value.get().dblVal);
}

LONG column_of(IOvSchema& schema, IOvFilter& evaluator, LONG variable) {
  ovfile::text name;
  LONG column = 0;
  const HRESULT named = evaluator.GetVariableName(variable, name.out());
  only_memory_counts(named);
  if (FAILED(named)) return 0;
  const HRESULT found = schema.GetFieldIndex(name.get(), &column);
  only_memory_counts(found);
  return SUCCEEDED(found) && column > 0 ? column : 0;
}

}  // namespace

void row_filter::need_evaluator() {
  if (evaluator_) return;
  void* made = nullptr;
  const HRESULT status = CoCreateInstance(CLSID_OvFilter, nullptr, CLSCTX_ALL, IID_IOvFilter, &made);
  only_memory_counts(status);
  if (FAILED(status) || made == nullptr) throw no_evaluator();
  *evaluator_.out() = static_cast<IOvFilter*>(made);
  if (SUCCEEDED(evaluator_->QueryInterface(IID_IOvFilterValues, &made))) {
    *values_.out() = static_cast<IOvFilterValues*>(made);
  }
}

const wide& row_filter::expression() {
  need_evaluator();
  return text_;
}

void row_filter::set_expression(wide_view text) {
  // Error information that is there afterwards is the evaluator's.
  SetErrorInfo(0, nullptr);
  need_evaluator();
  text_ = text;
  columns_stamp_ = 0;
  only_memory_counts(evaluator_->SetExpression(ovfile::text(text).get()));
}

void row_filter::find_columns(IOvSchema& schema) {
  const auto own = own_schema(schema);
  const std::uint64_t stamp = own ? own->field_stamp() : 0;
  // A foreign schema does not tell when it changes.
  if (stamp != 0 && stamp == columns_stamp_) return;
  LONG count = 0;
  const HRESULT counted = evaluator_->GetVariableCount(&count);
  only_memory_counts(counted);
  if (FAILED(counted)) count = 0;
  columns_.clear();
  for (LONG variable = 0; variable < count; ++variable) {
    columns_.push_back(column_of(schema, *evaluator_.get(), variable));
  }
  columns_stamp_ = stamp;
}

VARIANT_BOOL row_filter::passes(const table_core& core) {
  need_evaluator();
  if (text_.empty()) return VARIANT_TRUE;
  if (!core.is_open() || !core.schema) throw table_core::not_open();
  find_columns(*core.schema.get());
  // True is 1 here, not VARIANT_TRUE: that is what hosts have always got.
  return (values_ ? test_values(core) : test_text(core)) ? 1 : 0;
}

bool row_filter::test_values(const table_core& core) {
  // Where the text of values would be empty nothing passes, so it does not here either.
  if (columns_.empty()) return false;
  if (columns_.size() == 1) {
    if (columns_.front() == 0) return false;
    const bool may_be_empty = core.opened().storedNumber(field_index(columns_.front())) == nullptr;
    if (may_be_empty && to_text(column_value(core.opened(), columns_.front())).empty()) return false;
  }
  for (std::size_t variable = 0; variable < columns_.size(); ++variable) give(core, variable);
  SHORT result = 0;
  const HRESULT tested = values_->Test(&result);
  only_memory_counts(tested);
  return SUCCEEDED(tested) && result != 0;
}

void row_filter::give(const table_core& core, std::size_t variable) {
  const auto number = static_cast<LONG>(variable);
  const auto give_double = [&](double value) {
    only_memory_counts(is_absent(value) ? values_->SetAbsent(number) : values_->SetNumber(number, value));
  };
  const auto give_float = [&](float value) {
    only_memory_counts(is_absent(value) ? values_->SetAbsent(number)
                                        : values_->SetNumber(number, printed_value(value)));
  };
  const LONG column = columns_[variable];
  if (column == 0) {
    only_memory_counts(values_->SetAbsent(number));
    return;
  }
  if (const std::byte* place = core.opened().storedNumber(field_index(column)); place != nullptr) {
    if (core.opened().isDouble())
      return give_double(load_number<double_precision>(place, byte_order::native));
    return give_float(load_number<single_precision>(place, byte_order::native));
  }
  const variant value = column_value(core.opened(), column);
  if (value.type() == VT_R8) return give_double(value.get().dblVal);
  if (value.type() == VT_R4) return give_float(value.get().fltVal);
  only_memory_counts(values_->SetText(number, value.get().bstrVal));
}

bool row_filter::test_text(const table_core& core) {
  wide values;
  for (std::size_t variable = 0; variable < columns_.size(); ++variable) {
    if (variable > 0) values += OLESTR(',');
    if (columns_[variable] == 0) continue;
    const variant value = column_value(core.opened(), columns_[variable]);
    values += is_absent(value) ? wide(OLESTR("-")) : to_text(value);
  }
  if (values.empty()) return false;
  const ovfile::text text{wide_view(values)};
  only_memory_counts(evaluator_->SetValues(text.get()));
  SHORT result = 0;
  const HRESULT tested = evaluator_->Evaluate(text.get(), &result);
  only_memory_counts(tested);
  return SUCCEEDED(tested) && result != 0;
}

}  // namespace ovf
