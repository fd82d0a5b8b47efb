#include "stream/read_plan.h"

#include <algorithm>
#include <numeric>

namespace ovf {
namespace {

constexpr ULONG known_flags =
    ovStreamAbsentAsNull | ovStreamTrailingBlanks | ovStreamTextDictionaries | ovStreamWidened;

[[noreturn]] void refuse_request(wide_view what, long long number) {
  throw bad_request(OLESTR("Read failed, ") + wide_format(what).arg(number).text());
}

std::vector<std::uint64_t> fields_of(const OvStreamRequest& request, std::uint64_t count) {
  std::vector<std::uint64_t> fields;
  if (request.pColumns == nullptr) {
    fields.resize(static_cast<std::size_t>(count));
    std::iota(fields.begin(), fields.end(), std::uint64_t{0});
    return fields;
  }
  if (request.nColumns < 0) refuse_request(OLESTR("a number of columns cannot be %d"), request.nColumns);
  for (LONG i = 0; i < request.nColumns; ++i) {
    const LONG column = request.pColumns[i];
    if (column < 1 || static_cast<std::uint64_t>(column) > count) {
      refuse_request(OLESTR("the table has no column %d"), column);
    }
    fields.push_back(static_cast<std::uint64_t>(column) - 1);
  }
  return fields;
}

std::uint64_t rows_of(const OvStreamRequest& request, std::uint64_t count) {
  if (request.firstRow < 1) refuse_request(OLESTR("the first row cannot be %d"), request.firstRow);
  if (request.nRows < -1) refuse_request(OLESTR("a number of rows cannot be %d"), request.nRows);
  const std::uint64_t before = static_cast<std::uint64_t>(request.firstRow) - 1;
  if (request.nRows == -1) return before < count ? count - before : 0;
  const auto rows = static_cast<std::uint64_t>(request.nRows);
  if (before + rows > count) {
    const long long last = request.firstRow - 1LL + std::max<LONG>(request.nRows, 1);
    refuse_request(OLESTR("the table has no row %d"), last);
  }
  return rows;
}

}  // namespace

read_plan plan_of(const OvStreamRequest& request, table& from) {
  if (request.cbSize != sizeof(OvStreamRequest)) {
    refuse_request(OLESTR("no request has the size %d"), request.cbSize);
  }
  if ((request.flags & ~known_flags) != 0)
    refuse_request(OLESTR("unknown flags 0x%x"), request.flags & ~known_flags);
  if (request.rowsPerBatch < 0) refuse_request(OLESTR("a batch cannot have %d rows"), request.rowsPerBatch);
  read_plan plan;
  plan.fields = fields_of(request, from.getFieldCount());
  plan.rows = rows_of(request, from.getRowCount());
  plan.first_row = static_cast<std::uint64_t>(request.firstRow);
  plan.rows_per_batch = static_cast<std::uint64_t>(request.rowsPerBatch);
  plan.choices.absent_as_null = (request.flags & ovStreamAbsentAsNull) != 0;
  plan.choices.trailing_blanks = (request.flags & ovStreamTrailingBlanks) != 0;
  plan.choices.text_dictionaries = (request.flags & ovStreamTextDictionaries) != 0;
  plan.choices.widened = (request.flags & ovStreamWidened) != 0;
  return plan;
}

}  // namespace ovf
