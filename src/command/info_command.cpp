// ovfile info: what a table is.
#include <memory>

#include "commands.h"
#include "field_listing.h"
#include "kind_words.h"
#include "table_options.h"
#include "table_view.h"
#include "text_output.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* info_help =
    "Tells a table's kind, precision, byte order, description, size and columns.";

struct info_request {
  std::string table;
  bool json = false;
};

struct table_facts {
  OvTableFacts file{};
  std::string description;
  bool linked = false;
  std::string target;  ///< of a link
  OvFileType hint{};
};

table_facts read_facts(const table_view& view) {
  table_facts facts;
  facts.file = view.facts();
  facts.description = view.description();
  view.check(view.schema()->get_TypeHint(&facts.hint));
  VARIANT_BOOL linked = VARIANT_FALSE;
  view.check(view.table().get_IsLinked(&linked));
  facts.linked = linked != VARIANT_FALSE;
  if (facts.linked) {
    ovfile::text name;
    view.check(view.table().get_Name(name.out()));
    facts.target = name.utf8();
  }
  return facts;
}

const char* byte_order_words(LONG code) {
  switch (code) {
    case 0:
      return "little-endian";
    case 256:
      return "bytes swapped in each half word";
    case 1024:
      return "halves of words swapped";
    default:
      return "big-endian";
  }
}

void append_words(std::string& out, const table_view& view, const table_facts& facts) {
  const OvTableFacts& file = facts.file;
  const auto line = [&](const char* what, const std::string& words) {
    out += fmt::format("{:<12} {}\n", what, words);
  };
  line("file", view.file());
  if (facts.linked) line("link to", facts.target);
  line("kind", kind_words(facts.hint));
  line("precision",
       fmt::format("{} ({}-byte words)", view.is_single() ? "single" : "double", file.wordBytes));
  line("byte order", fmt::format("{} ({})", file.byteOrder, byte_order_words(file.byteOrder)));
  line("description", facts.description);
  line("rows", std::to_string(view.rows()));
  line("record", fmt::format("{} words, {} in a page", file.recordWords, file.recordsPerPage));
  line("pages", fmt::format("{}, {} of them header", file.pages, file.headerPages));
  line("file size", fmt::format("{} bytes", file.fileBytes));
  if (const LONG held = view.rows_held(); held < view.rows()) {
    line("cut off", fmt::format("behind row {}; the header promises more than the file holds", held));
  }
  line("columns", std::to_string(view.fields().size()));
  out += '\n';
  append_field_lines(out, view.fields(), view.is_single());
}

void append_json(std::string& out, const table_view& view, const table_facts& facts) {
  const OvTableFacts& file = facts.file;
  out += fmt::format("{{\n  \"file\": {},\n  \"link_target\": {},\n", json_text(view.file()),
                     facts.linked ? json_text(facts.target) : "null");
  out += fmt::format("  \"kind\": {},\n  \"type_hint\": {},\n", json_text(kind_words(facts.hint)),
                     static_cast<LONG>(facts.hint));
  out += fmt::format("  \"precision\": \"{}\",\n  \"byte_order\": {},\n  \"description\": {},\n",
                     view.is_single() ? "single" : "double", file.byteOrder, json_text(facts.description));
  out +=
      fmt::format("  \"rows\": {},\n  \"record_words\": {},\n  \"records_per_page\": {},\n  \"pages\": {},\n",
                  view.rows(), file.recordWords, file.recordsPerPage, file.pages);
  out += fmt::format("  \"header_pages\": {},\n  \"file_size\": {},\n  \"fields\": ", file.headerPages,
                     file.fileBytes);
  append_json_fields(out, view.fields(), view.is_single());
  out += "\n}\n";
}

void run_info(const info_request& request) {
  const table_view view(request.table);
  const table_facts facts = read_facts(view);
  text_output output(request.json ? meant_for::programs : meant_for::people);
  request.json ? append_json(output.text(), view, facts) : append_words(output.text(), view, facts);
  output.finish();
}

}  // namespace

void define_info(const verb& program) {
  auto request = std::make_shared<info_request>();
  const verb this_verb = program.add_verb("info", "Tell what a table is");
  this_verb.footer(info_help);
  add_table_argument(this_verb, request->table);
  this_verb.add_flag("--json", request->json, "as JSON: a default of null is absent");
  this_verb.callback([request] { run_info(*request); });
}

}  // namespace command
