// ovfile kinds: which kinds of table are recognised, and by what.
#include <algorithm>
#include <memory>

#include "commands.h"
#include "kind_words.h"
#include "ovfile/table_kinds.h"
#include "text_output.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* kinds_help =
    "Lists the kinds of table and the columns that make each out, in the order in which they are tried: a\n"
    "table is of the first kind whose columns it has, whatever others it has besides.";

/// No field's name ends with a blank, so that a kind with such a name among its own is never found.
bool can_match(const ovfile::table_kind& kind) {
  return std::none_of(kind.fields().begin(), kind.fields().end(),
                      [](std::string_view name) { return name.ends_with(' '); });
}

/// The names apart by `separator`, each as `shown` gives it.
template <class Shown>
std::string joined_names(const ovfile::table_kind& kind, std::string_view separator, Shown shown) {
  std::string out;
  for (const std::string_view name : kind.fields()) {
    if (!out.empty()) out += separator;
    out += shown(name);
  }
  return out;
}

std::string columns_of(const ovfile::table_kind& kind) {
  const auto shown = [](std::string_view name) {
    return name.ends_with(' ') ? fmt::format("\"{}\"", name) : std::string(name);
  };
  return joined_names(kind, " ", shown) +
         (can_match(kind) ? "" : "  (never found: no name ends with a blank)");
}

void append_words(std::string& out) {
  std::size_t width = 4;
  for (const auto& kind : ovfile::table_kinds) width = std::max(width, kind_words(kind.type).size());
  out += fmt::format("{:>4}  {:<{}}  {:<10}  {}\n", "#", "kind", width, "value", "columns");
  int row = 0;
  for (const auto& kind : ovfile::table_kinds) {
    out += fmt::format("{:>4}  {:<{}}  0x{:<8X}  {}\n", ++row, kind_words(kind.type), width,
                       static_cast<unsigned>(kind.type), columns_of(kind));
  }
}

void append_json(std::string& out) {
  const char* separator = "[\n  ";
  int row = 0;
  for (const auto& kind : ovfile::table_kinds) {
    out += fmt::format(
        R"({}{{"row": {}, "kind": {}, "name": {}, "value": {}, "can_match": {}, "fields": [{}]}})", separator,
        ++row, json_text(kind_words(kind.type)), kind.name.empty() ? "null" : json_text(kind.name),
        static_cast<LONG>(kind.type), can_match(kind), joined_names(kind, ", ", json_text));
    separator = ",\n  ";
  }
  out += "\n]\n";
}

void run_kinds(bool json) {
  text_output output;
  json ? append_json(output.text()) : append_words(output.text());
  output.finish();
}

}  // namespace

void define_kinds(const verb& program) {
  auto json = std::make_shared<bool>(false);
  const verb this_verb = program.add_verb("kinds", "List the kinds of table that are recognised");
  this_verb.footer(kinds_help);
  this_verb.add_flag("--json", *json, "as JSON");
  this_verb.callback([json] { run_kinds(*json); });
}

}  // namespace command
