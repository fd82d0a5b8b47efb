#include "verify/salvage.h"

#include <algorithm>
#include <cmath>

#include "absent.h"
#include "failure.h"
#include "progress.h"
#include "replacement.h"

namespace command {
namespace {

class row_copier {
 public:
  row_copier(table_view& from, IOvTable& to, const std::string& shown)
      : from_(from), to_(to), shown_(shown) {}

  void copy(LONG row) {
    from_.go_to(row);
    check(to_.AddRow());
    for (const field_view& field : from_.fields()) {
      if (!field.implicit) copy(field);
    }
  }

 private:
  void copy(const field_view& field) {
    if (field.is_text) {
      from_.read_text(text_, field);
      check(to_.SetColumnString(field.column, text_.get()));
      return;
    }
    const double number = from_.number(field);
    const double kept = std::isfinite(number) ? number : absent_number;
    check(from_.is_single() ? to_.SetColumnFloat(field.column, static_cast<float>(kept))
                            : to_.SetColumnDouble(field.column, kept));
  }
  void check(HRESULT status) const { check_call("cannot write " + shown_, status); }

  table_view& from_;
  IOvTable& to_;
  const std::string& shown_;
  ovfile::text text_;
};

}  // namespace

LONG salvage(const std::string& file, const check_result& found, const std::string& target) {
  table_view view(file);
  replacement made(target);
  LONG rows = 0;
  {
    const auto table = ovfile::create_table();
    const auto schema = view.schema();
    check_call("cannot write " + target,
               table->Create(ovfile::text(std::string_view(made.name())).get(), schema.get()));
    row_copier copier(view, *table.get(), target);
    progress bar("writing");
    for (LONG row = 1; row <= found.rows_in_file; ++row) {
      throw_if_interrupted();
      bar.at(static_cast<std::uint64_t>(row), static_cast<std::uint64_t>(found.rows_in_file));
      if (std::binary_search(found.lost.begin(), found.lost.end(), row)) continue;
      copier.copy(row);
      ++rows;
    }
    check_call("cannot write " + target, table->Close());
  }
  made.commit();
  return rows;
}

}  // namespace command
