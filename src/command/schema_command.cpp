// ovfile schema: the fields of a table.
#include <memory>

#include "commands.h"
#include "failure.h"
#include "field_listing.h"
#include "kind_words.h"
#include "schema_xml.h"
#include "table_options.h"
#include "table_view.h"
#include "text_output.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* schema_help =
    "Lists a table's columns: name, type, width of a text, whether stored or implicit, default. The XML is\n"
    "what `ovfile new --xml` reads; it has room for about 25 columns.";

struct schema_request {
  std::string table;
  bool xml = false;
  bool json = false;
};

std::string json_of(const table_view& view) {
  const auto schema = view.schema();
  OvFileType hint{};
  view.check(schema->get_TypeHint(&hint));
  std::string out = fmt::format("{{\n  \"file\": {},\n  \"kind\": {},\n", json_text(view.file()),
                                json_text(kind_words(hint)));
  out += fmt::format("  \"precision\": \"{}\",\n  \"description\": {},\n  \"fields\": ",
                     view.is_single() ? "single" : "double", json_text(view.description()));
  append_json_fields(out, view.fields(), view.is_single());
  return out + "\n}\n";
}

std::string xml_of(const table_view& view) {
  const auto schema = view.schema();
  std::string xml = schema_to_xml(*schema.get(), view.description(), view.file());
  if (!reads_back(xml, *schema.get(), view.description(), view.fields())) {
    say(
        fmt::format("warning: {}: the XML form does not hold all of this schema (names of more than 8 "
                    "characters, quotes, blank texts, digits of defaults); --json does",
                    view.file()));
  }
  return xml;
}

std::string listing_of(const table_view& view) {
  std::string out;
  append_field_lines(out, view.fields(), view.is_single());
  return out;
}

void run_schema(const schema_request& request) {
  const table_view view(request.table);
  text_output output(request.xml || request.json ? meant_for::programs : meant_for::people);
  output.text() = request.xml ? xml_of(view) : request.json ? json_of(view) : listing_of(view);
  output.finish();
}

}  // namespace

void define_schema(const verb& program) {
  auto request = std::make_shared<schema_request>();
  const verb this_verb = program.add_verb("schema", "List the columns of a table");
  this_verb.footer(schema_help);
  add_table_argument(this_verb, request->table);
  const option xml = this_verb.add_flag("--xml", request->xml, "as the library's XML");
  this_verb.add_flag("--json", request->json, "as JSON: a default of null is absent").excludes(xml);
  this_verb.callback([request] { run_schema(*request); });
}

}  // namespace command
