#include "row_condition.h"

#include <algorithm>
#include <charconv>
#include <new>

#include "evaluator.h"
#include "failure.h"
#include "shown_text.h"

namespace command {
namespace {

constexpr const char* no_evaluator =
    "--where: there is no evaluator for conditions (libovfilter.so or OvFilter.dll)";
constexpr std::size_t widest_line = 76;

/// The number that the message ends in, as the evaluator's messages do; 0: it does not.
std::size_t place_in(std::string_view message) {
  constexpr std::string_view before = " at position ";
  const std::size_t at = message.rfind(before);
  if (at == message.npos) return 0;
  const std::string_view digits = message.substr(at + before.size());
  std::size_t place = 0;
  const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), place);
  return read.ec == std::errc() && read.ptr == digits.data() + digits.size() ? place : 0;
}

/// The expression, or what is near the place of a long one, with a mark under the place, which counts
/// UTF-16 units from 1.
std::string marked(ovfile::wide_view expression, std::size_t place) {
  const std::size_t at = std::min(place - 1, expression.size());
  const std::size_t begin = at > widest_line * 2 / 3 ? at - widest_line / 2 : 0;
  std::string line = "  ";
  std::string mark = line;
  bool valid = true;
  std::size_t unit = begin;
  const std::string utf8 = ovfile::to_utf8(expression.substr(begin, widest_line));
  for (std::string_view rest = utf8; !rest.empty();) {
    const std::string_view before = rest;
    const std::uint32_t c = ovfile::take_utf8(rest, valid);
    line += is_control(c) ? " " : before.substr(0, before.size() - rest.size());
    unit += c < 0x10000 ? 1 : 2;
    if (unit <= at) mark += ' ';
  }
  return line + '\n' + mark + "^\n";
}

[[noreturn]] void fail_as_told(const std::string& expression) {
  const std::string message = ovfile::error::take(E_FAIL).what();
  const std::string words = "--where: " + message;
  const std::size_t place = place_in(message);
  if (place == 0) throw failure(words);
  throw marked_failure(words, marked(ovfile::to_wide(expression), place));
}

/// The library answers success for a bad expression, and tells by the error information alone.
void give_to_table(IOvTable& table, const std::string& expression) {
  SetErrorInfo(0, nullptr);
  const HRESULT status = table.put_FilterString(0, ovfile::text(std::string_view(expression)).get());
  ovfile::pointer<IErrorInfo> info;
  const bool told = GetErrorInfo(0, info.out()) == S_OK && info;
  if (told) SetErrorInfo(0, info.get());
  if (told) fail_as_told(expression);
  if (status == E_OUTOFMEMORY) throw std::bad_alloc();
  if (FAILED(status)) throw failure(no_evaluator);
}

std::vector<std::string> names_in(IOvFilter& evaluator) {
  LONG count = 0;
  ovfile::check(evaluator.GetVariableCount(&count));
  std::vector<std::string> names;
  for (LONG i = 0; i < count; ++i) {
    ovfile::text name;
    ovfile::check(evaluator.GetVariableName(i, name.out()));
    names.push_back(name.utf8());
  }
  return names;
}

}  // namespace

row_condition::row_condition(const table_view& view, const std::string& expression) : view_(view) {
  make_evaluator_known();
  give_to_table(view.table(), expression);
  const auto evaluator = new_evaluator();
  if (!evaluator) throw failure(no_evaluator);
  if (FAILED(evaluator->SetExpression(ovfile::text(std::string_view(expression)).get()))) {
    fail_as_told(expression);
  }
  const std::vector<std::string> names = names_in(*evaluator.get());
  if (names.empty()) throw failure("--where: the condition names no column, so no row could pass");
  for (const std::string& name : names) (void)view.field(name);
  const field_view& first = view.field(names.front());
  if (names.size() > 1 || !first.is_text) return;
  // The table has no values to ask for when the only one is blank, and lets no such row through.
  SHORT passes = 0;
  const HRESULT tested = evaluator->Evaluate(nullptr, &passes);
  if (tested == E_OUTOFMEMORY) throw std::bad_alloc();
  if (SUCCEEDED(tested) && passes != 0) blank_passes_ = &first;
}

bool row_condition::passes() const {
  VARIANT_BOOL in = VARIANT_FALSE;
  view_.check_at(nullptr, view_.table().IsFilteredIn(0, 0, &in));
  if (in != VARIANT_FALSE || blank_passes_ == nullptr) return in != VARIANT_FALSE;
  std::string text;
  view_.append_text(text, *blank_passes_);
  return text.empty();
}

std::optional<row_condition> make_condition(const table_view& view,
                                            const std::optional<std::string>& expression) {
  if (!expression) return {};
  return std::optional<row_condition>(std::in_place, view, *expression);
}

bool row_walk::next() {
  while (row_ < view_.rows()) {
    ++row_;
    begun_ ? view_.go_on() : view_.go_to(row_);
    begun_ = true;
    if (condition_ == nullptr || condition_->passes()) return true;
  }
  return false;
}

}  // namespace command
