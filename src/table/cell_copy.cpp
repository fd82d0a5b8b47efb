#include "table/cell_copy.h"

#include "table/column_values.h"

namespace ovf {
namespace {

constexpr wide_view text_too_long = OLESTR("the text is longer than %d characters");

[[noreturn]] void fail_too_long(table& to, std::uint64_t column) {
  throw MyExceptionClass(
      wide_format(text_too_long).arg(static_cast<long long>(to.getFieldWidth(column))).text());
}

void copy_cell(table& from, table& to, LONG column, const column_origin& origin, long_texts longer) {
  const std::uint64_t target = field_index(column);
  switch (origin.type) {
    case ovColumnSingle:
      to.setFloat(target, from.getFloat(field_index(origin.column)));
      break;
    case ovColumnString:
      if (put_text_column(to, column, from.getString(field_index(origin.column))) &&
          longer == long_texts::refused) {
        fail_too_long(to, target);
      }
      break;
    default:
      to.setDouble(target, column_as_double(from, origin.column));
  }
}

/// A text is put even where it is the default that the row has: words of a text that was put differ from
/// those of a default.
void put_default_texts(table& to, std::span<const column_origin> origins) {
  for (std::size_t i = 0; i < origins.size(); ++i) {
    if (origins[i].column != 0 || origins[i].type != ovColumnString) continue;
    put_text_column(to, static_cast<LONG>(i + 1), to.getDefaultString(i));
  }
}

void copy_row(table& from, table& to, const cell_plan& plan) {
  const auto origins = plan.origins;
  for (std::size_t i = 0; i < origins.size(); ++i) {
    if (origins[i].column == 0) continue;
    const auto column = static_cast<LONG>(i + 1);
    try {
      if (plan.road == cell_road::typed) {
        copy_cell(from, to, column, origins[i], plan.longer);
      } else {
        put_column(to, column, column_value(from, origins[i].column).get());
      }
    } catch (const MyExceptionClass& error) {
      throw cell_error(error.message(), static_cast<LONG>(from.currentRow()), origins[i].column);
    }
  }
}

/// Appends the current row of `from`.
void append_row(table& from, table& to, const cell_plan& plan) {
  to.addRow();
  put_default_texts(to, plan.origins);
  copy_row(from, to, plan);
}

/// Appends the rows in the order of the file, and puts their records into the right order behind them.
void append_part(table& from, table& to, const cell_plan& plan, std::span<const std::uint32_t> rows,
                 work_progress& work, std::vector<std::byte>& records) {
  const std::uint64_t first = to.getRowCount() + 1;
  const std::size_t bytes = to.recordBytes();
  records.resize(rows.size() * bytes);
  walk_in_file_order(from, rows, work, [&](std::size_t place) {
    append_row(from, to, plan);
    to.readRecord(0, records.data() + place * bytes);
  });
  for (std::size_t place = 0; place < rows.size(); ++place) {
    move_to_row(to, first + place);
    to.writeRecord(0, records.data() + place * bytes);
    work.step();
  }
}

}  // namespace

cell_error::cell_error(wide_view reason, LONG row, LONG column)
    : MyExceptionClass(wide(reason)), row_(row), column_(column) {}

void copy_cells(table& from, table& to, const cell_plan& plan, std::span<const std::uint32_t> rows,
                work_progress& work, std::size_t memory) {
  if (std::ranges::is_sorted(rows)) {
    for (const std::uint32_t row : rows) {
      move_to_row(from, row);
      append_row(from, to, plan);
      work.step(steps_per_copied_row);
    }
    return;
  }
  std::vector<std::byte> records;
  in_parts(rows, to.recordBytes(), memory,
           [&](std::span<const std::uint32_t> part) { append_part(from, to, plan, part, work, records); });
}

}  // namespace ovf
