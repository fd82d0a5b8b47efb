#include "stream/given_columns.h"

#include <algorithm>

namespace ovf {
namespace {

wide in_column(std::string_view name, wide_view where, wide_view what) {
  return OLESTR("column ") + wide_from_utf8(name) + wide(where) + OLESTR(": ") + wide(what);
}

/// Runs a body that has to do with one column, whose name comes before its refusals.
template <class Body>
void about_column(std::string_view name, Body body) {
  try {
    body();
  } catch (const refusal& wrong) {
    refuse(in_column(name, {}, wrong.reason));
  }
}

}  // namespace

given_columns::given_columns(table& to, const number_listener& listener) : table_(to), listener_(listener) {}

void given_columns::take_types(const ArrowSchema& schema) {
  check_structure(schema);
  for (std::int64_t i = 0; i < schema.n_children; ++i) {
    const ArrowSchema* type = schema.children[i];
    if (type == nullptr || type->release == nullptr) {
      refuse(OLESTR("the stream has a column without a type"));
    }
    const std::string_view name = type->name == nullptr ? "" : type->name;
    about_column(name, [&] {
      const bool is_known =
          std::ranges::any_of(columns_, [&](const column& each) { return each.type.name == name; });
      if (is_known) refuse(OLESTR("the stream has it twice"));
      columns_.push_back(made_column(*type));
    });
  }
}

auto given_columns::made_column(const ArrowSchema& type) const -> column {
  column made;
  made.type = checked_type(type);
  const std::uint64_t field = field_of(made.type.name);
  const record_layout layout{table_.isDouble(), table_.order(), table_.recordBytes()};
  made.writer = make_writer(table_.fields().at(field), layout, made.type.kind, page_, heard(field));
  return made;
}

std::uint64_t given_columns::field_of(std::string_view name) const {
  const wide wanted = wide_from_utf8(name);
  if (!table_.fields().contains(wanted)) refuse(OLESTR("the table has no such column"));
  return table_.fields().index_of(wanted);
}

value_listener given_columns::heard(std::uint64_t field) const {
  if (!listener_) return {};
  return [this, number = static_cast<LONG>(field + 1)](double value) { listener_(number, value); };
}

void given_columns::take_batch(const ArrowArray& batch, std::uint64_t room) {
  check_batch(batch, columns_.size(), room);
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    column& each = columns_[i];
    about_column(each.type.name, [&] {
      each.values = checked_column(each.type, batch.children[i], batch.offset, batch.length);
    });
  }
}

void given_columns::put(std::uint64_t rows_before, std::int64_t first, std::byte* records,
                        std::size_t rows) const {
  for (const column& each : columns_) {
    try {
      each.writer->put(each.values, first, records, rows);
    } catch (const bad_value& wrong) {
      const auto row = static_cast<long long>(rows_before) + wrong.row + 1;
      const wide where = wide_format(OLESTR(", row %d")).arg(row).text();
      refuse(in_column(each.type.name, where, wrong.reason));
    }
  }
}

}  // namespace ovf
