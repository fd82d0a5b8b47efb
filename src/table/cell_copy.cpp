#include "table/cell_copy.h"

#include "storage/file_error.h"
#include "table/column_values.h"

namespace ovf {
namespace {

void copy_cell(table& from, table& to, LONG column, const column_origin& origin) {
  const std::uint64_t target = field_index(column);
  switch (origin.type) {
    case ovColumnSingle:
      to.setFloat(target, from.getFloat(field_index(origin.column)));
      break;
    case ovColumnString:
      put_text_column(to, column, from.getString(field_index(origin.column)));
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

void copy_row(table& from, table& to, std::span<const column_origin> origins) {
  for (std::size_t i = 0; i < origins.size(); ++i) {
    if (origins[i].column == 0) continue;
    try {
      copy_cell(from, to, static_cast<LONG>(i + 1), origins[i]);
    } catch (const file_error&) {
      throw;
    } catch (const MyExceptionClass& error) {
      throw cell_error(error.message(), static_cast<LONG>(from.currentRow()), origins[i].column);
    }
  }
}

}  // namespace

cell_error::cell_error(wide_view reason, LONG row, LONG column)
    : MyExceptionClass(wide(reason)), row_(row), column_(column) {}

void copy_cells(table& from, table& to, std::span<const column_origin> origins,
                std::span<const std::uint32_t> rows) {
  for (const std::uint32_t row : rows) {
    if (from.currentRow() + 1 == row) {
      from.nextRow();
    } else {
      from.goToRow(row);
    }
    to.addRow();
    put_default_texts(to, origins);
    copy_row(from, to, origins);
  }
}

}  // namespace ovf
