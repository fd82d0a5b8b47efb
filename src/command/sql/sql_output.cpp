#include "sql/sql_output.h"

#include <algorithm>
#include <cmath>

#include "csv_text.h"
#include "shown_text.h"
#include "unique_names.h"
#include "words.h"

namespace command {
namespace {

void end_line(text_output& output) {
  output.text() += '\n';
  output.pass_on();
}

/// Takes the first line off a text; true when there are more.
bool take_line(std::string& rest, std::string& line) {
  const std::size_t end = rest.find('\n');
  line = rest.substr(0, end);
  rest.erase(0, end == rest.npos ? rest.npos : end + 1);
  return !rest.empty();
}

/// Aligned columns, as wide as the first rows need. So many are held back; wider ones further down stick out.
class aligned_writer {
 public:
  aligned_writer(sql_rows& rows, const std::string& absent, text_output& output)
      : rows_(rows), absent_(absent), output_(output), widths_(rows.names().size()) {}

  void write() {
    bool more = rows_.next();
    // A statement that has nothing to tell of what it did has names all the same.
    if (!more && !rows_.is_query()) return;
    hold_line([&](std::size_t i, std::string& text) { text = rows_.names()[i]; });
    for (; more && held_.size() < most_held * widths_.size(); more = rows_.next()) hold_row();
    flush();
    for (; more; more = rows_.next()) {
      hold_row();
      flush();
    }
  }

 private:
  static constexpr std::size_t most_held = 4096;

  struct held_cell {
    std::string text;
    std::size_t width;
  };

  void hold_row() {
    if (!rows_.is_query()) return hold_lines();
    hold_line([&](std::size_t i, std::string& text) { take_cell(i, text); });
  }

  /// How a statement is going to be answered is drawn over several lines.
  void hold_lines() {
    std::vector<std::string> cells(widths_.size());
    for (std::size_t i = 0; i < cells.size(); ++i) take_cell(i, cells[i]);
    for (bool more = true; more;) {
      more = false;
      hold_line([&](std::size_t i, std::string& text) { more = take_line(cells[i], text) || more; });
    }
  }

  void take_cell(std::size_t i, std::string& text) const {
    rows_.is_null(i) ? void(text = absent_) : rows_.append(text, i);
  }

  template <class Take>
  void hold_line(Take take) {
    for (std::size_t i = 0; i < widths_.size(); ++i) {
      raw_.clear();
      take(i, raw_);
      held_cell& made = held_.emplace_back();
      made.width = append_shown(made.text, raw_);
    }
  }

  void flush() {
    if (!measured_) {
      for (std::size_t i = 0; i < held_.size(); ++i) {
        std::size_t& width = widths_[i % widths_.size()];
        width = std::max(width, held_[i].width);
      }
      measured_ = true;
    }
    for (std::size_t i = 0; i < held_.size(); ++i) write_cell(i % widths_.size(), held_[i]);
    held_.clear();
  }

  void write_cell(std::size_t column, const held_cell& cell) {
    std::string& line = output_.text();
    const std::size_t blanks = widths_[column] - std::min(cell.width, widths_[column]);
    const bool last = column + 1 == widths_.size();
    if (column > 0) line += "  ";
    if (rows_.is_right_aligned(column)) {
      line.append(blanks, ' ');
      line += cell.text;
    } else {
      line += cell.text;
      if (!last) line.append(blanks, ' ');
    }
    if (last) end_line(output_);
  }

  sql_rows& rows_;
  const std::string& absent_;
  text_output& output_;
  std::vector<std::size_t> widths_;
  std::vector<held_cell> held_;
  std::string raw_;
  bool measured_ = false;
};

void write_csv(sql_rows& rows, const std::string& absent, text_output& output) {
  const std::size_t columns = rows.names().size();
  for (std::size_t i = 0; i < columns; ++i) {
    if (i > 0) output.text() += ',';
    append_csv_cell(output.text(), rows.names()[i]);
  }
  end_line(output);
  std::string cell;
  while (rows.next()) {
    const std::size_t begin = output.text().size();
    for (std::size_t i = 0; i < columns; ++i) {
      if (i > 0) output.text() += ',';
      cell.clear();
      rows.is_null(i) ? void(cell = absent) : rows.append(cell, i);
      append_csv_cell(output.text(), cell);
    }
    // An empty line would be taken for no row at all.
    if (output.text().size() == begin) output.text() += "\"\"";
    end_line(output);
  }
}

bool is_json_number(std::string_view text) noexcept { return text.find_first_of("ni") == text.npos; }

/// Appends the database's JSON, in which numbers inside a list may have names that JSON does not know.
void append_json(std::string& out, std::string_view json) {
  bool in_text = false;
  while (!json.empty()) {
    const char c = json.front();
    if (in_text && c == '\\') {
      out += json.substr(0, 2);
      json.remove_prefix(std::min<std::size_t>(2, json.size()));
      continue;
    }
    if (in_text && c != '"') {
      take_json_character(out, json);
      continue;
    }
    if (c == '"') in_text = !in_text;
    if (in_text || (c != 'N' && c != 'I' && !json.starts_with("-I"))) {
      out += c;
      json.remove_prefix(1);
      continue;
    }
    out += c == 'N' ? "\"nan\"" : c == 'I' ? "\"inf\"" : "\"-inf\"";
    json.remove_prefix(std::min(json.find_first_not_of("-NaInfity"), json.size()));
  }
}

void append_json_cell(std::string& out, const sql_rows& rows, std::size_t column, std::string& cell) {
  if (rows.is_null(column)) {
    out += "null";
    return;
  }
  cell.clear();
  rows.append(cell, column);
  if (rows.kind(column) == cell_kind::other) return append_json(out, cell);
  // JSON has no names for what is no number.
  const bool plain =
      rows.kind(column) == cell_kind::number && (is_json_number(cell) || cell == "true" || cell == "false");
  out += plain ? cell : json_text(cell);
}

void write_json(sql_rows& rows, text_output& output) {
  std::vector<std::string> keys;
  for (const std::string& name : unique_names(rows.names(), letter_case::counts)) {
    keys.push_back((keys.empty() ? "{" : ", ") + json_text(name) + ": ");
  }
  std::string cell;
  const char* separator = "[\n";
  while (rows.next()) {
    output.text() += separator;
    // Only whole lines: a bar may come behind what is passed on.
    output.pass_on();
    separator = ",\n";
    for (std::size_t i = 0; i < keys.size(); ++i) {
      output.text() += keys[i];
      append_json_cell(output.text(), rows, i, cell);
    }
    output.text() += '}';
  }
  output.text() += *separator == '[' ? "[]\n" : "\n]\n";
}

}  // namespace

void write_rows(sql_rows& rows, row_format format, const std::string& absent, text_output& output) {
  switch (format) {
    case row_format::table:
      aligned_writer(rows, absent, output).write();
      break;
    case row_format::csv:
      write_csv(rows, absent, output);
      break;
    case row_format::json:
      write_json(rows, output);
  }
}

}  // namespace command
