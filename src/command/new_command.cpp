// ovfile new: an empty table from a template or a schema.
#include <cmath>
#include <memory>
#include <optional>
#include <set>

#include "cell_grid.h"
#include "commands.h"
#include "failure.h"
#include "field_names.h"
#include "field_view.h"
#include "new_table.h"
#include "replacement.h"
#include "schema_xml.h"
#include "table_limits.h"
#include "table_options.h"
#include "words.h"

namespace command {
namespace {

constexpr const char* new_help =
    "Makes a table without rows, with the standard columns of a template or those of an XML schema (as\n"
    "`ovfile schema --xml` writes it). The templates model and grid need sizes and numbers of cells.";

struct new_request {
  std::string table;
  std::string template_name;
  std::string xml;  ///< a file; `-` is standard input
  cell_grid_options cells;
  bool ijk = false;
  bool single = false;
  std::optional<std::string> description;
};

bool has_cells(const std::string& template_name) {
  return template_name == "model" || template_name == "grid";
}

void check_usage(const new_request& request) {
  if (request.template_name.empty() == request.xml.empty()) {
    throw wrong_usage("give --template or --xml, one of them");
  }
  if (!request.xml.empty() && request.single) {
    throw wrong_usage("--single goes with --template; a schema in XML tells its own precision");
  }
  const std::string option = request.cells.first_given();
  if (!option.empty() && !has_cells(request.template_name)) {
    throw wrong_usage(option + " goes with --template model or grid");
  }
  if (request.ijk && request.template_name != "grid") throw wrong_usage("--ijk goes with --template grid");
}

HRESULT add_model(IOvSchema& schema, const cell_grid& cells) {
  // It takes the cells' last numbers, from 0, and adds 1 to each; a grid's numbers it stores as they are.
  return schema.CreateModelFile(cells.size[0], cells.size[1], cells.size[2], cells.origin[0], cells.origin[1],
                                cells.origin[2], 0, cells.count[0] - 1, 0, cells.count[1] - 1, 0,
                                cells.count[2] - 1);
}

HRESULT add_grid(IOvSchema& schema, const cell_grid& cells, bool ijk) {
  return schema.CreateRegularGrid(cells.size[0], cells.size[1], cells.size[2], cells.origin[0],
                                  cells.origin[1], cells.origin[2], cells.count[0], cells.count[1],
                                  cells.count[2], ijk ? VARIANT_TRUE : VARIANT_FALSE);
}

HRESULT add_cells(IOvSchema& schema, const new_request& request) {
  const cell_grid cells = request.cells.read("--template " + request.template_name, request.single);
  if (!cells.lost_digits.empty()) {
    say("warning: single precision loses digits of " + cells.lost_digits);
  }
  return request.template_name == "model" ? add_model(schema, cells) : add_grid(schema, cells, request.ijk);
}

HRESULT add_standard_fields(IOvSchema& schema, const std::string& template_name) {
  if (template_name == "points") return schema.CreatePointsFile();
  if (template_name == "strings") return schema.CreateStringsFile();
  if (template_name == "triangles") return schema.CreateWfTriangleFile();
  return schema.CreateWfPointFile();
}

ovfile::pointer<IOvSchema> make_from_template(const new_request& request) {
  auto schema = ovfile::create_schema();
  ovfile::check(schema->put_DoublePrecisionFlag(request.single ? 0 : 1));
  ovfile::check(has_cells(request.template_name) ? add_cells(*schema.get(), request)
                                                 : add_standard_fields(*schema.get(), request.template_name));
  return schema;
}

void warn_of_fields_not_taken(const std::string& xml, const std::vector<field_view>& taken,
                              const std::string& file) {
  const std::vector<std::string> missing = names_not_taken(xml, taken);
  if (missing.empty()) return;
  say(fmt::format(
      "warning: {}: not taken over: {} (a field is <OvField and a blank, on a line of its own, with "
      "values in double quotes, a name of at most 8 characters, a type numeric or alphanumeric, and "
      "in the latter case a length of 0 to 1048576)",
      file, joined(missing, ", ")));
}

void check_field(const field_view& field, bool single, std::size_t longest, const std::string& file) {
  const std::string place =
      fmt::format("{}, field {}", file, field.name.empty() ? std::to_string(field.column) : field.name);
  const std::string problem = name_problem(field.name, longest);
  if (!problem.empty()) throw failure(place + ": " + problem);
  if (single && !field.is_text && std::isinf(static_cast<float>(field.number_default))) {
    throw failure(place + ": the default is beyond the range of single precision");
  }
}

/// Finds what the library would refuse, often without telling which field it is about.
void check_fields(const std::vector<field_view>& fields, bool single, const std::string& file) {
  if (fields.empty()) throw failure(file + " has no fields");
  const std::size_t longest = longest_name(single);
  std::set<std::string> names;
  std::size_t words = 0;
  for (const field_view& field : fields) {
    check_field(field, single, longest, file);
    if (!names.insert(field.name).second) {
      throw failure(fmt::format("{}, field {}: the name is there twice", file, field.name));
    }
    words += words_of(field);
  }
  check_words(file, words, single);
}

ovfile::pointer<IOvSchema> make_from_xml(const new_request& request) {
  const std::string file = request.xml == "-" ? "standard input" : request.xml;
  const std::string xml = read_schema_text(request.xml);
  auto schema = schema_from_xml(xml, file);
  VARIANT_BOOL is_double = VARIANT_FALSE;
  ovfile::text description;
  check_call(file, schema->get_DoublePrecision(&is_double));
  check_call(file, schema->get_Description(description.out()));
  const std::vector<field_view> fields = read_fields(*schema.get(), file);
  warn_of_fields_not_taken(xml, fields, file);
  check_fields(fields, is_double == VARIANT_FALSE, file);
  if (!request.description) check_description(file + ", desc", description.utf8());
  return schema;
}

void create(const std::string& table, IOvSchema& schema) {
  replacement file(table);
  {
    const auto made = create_new_table(file.name(), schema, table);
    check_call("cannot write " + table, made->Close());
  }
  file.commit();
}

void run_new(const new_request& request) {
  check_usage(request);
  if (request.description) check_description("--description", *request.description);
  if (!request.xml.empty() && request.xml != "-" && same_file(request.xml, request.table)) {
    throw wrong_usage("the XML and the table are one file: " + request.xml);
  }
  const auto schema = request.xml.empty() ? make_from_template(request) : make_from_xml(request);
  if (request.description) {
    ovfile::check(schema->put_Description(ovfile::text(std::string_view(*request.description)).get()));
  }
  create(request.table, *schema.get());
}

}  // namespace

void define_new(const verb& program) {
  auto request = std::make_shared<new_request>();
  const verb this_verb = program.add_verb("new", "Make a table without rows");
  this_verb.footer(new_help);
  this_verb.add_argument("table", request->table, "the table to make; one that is there is replaced")
      .required();
  this_verb.add_option("--template", request->template_name, "the standard columns of this kind of table")
      .type_name("NAME")
      .one_of({"model", "grid", "points", "strings", "triangles", "wireframe-points"});
  this_verb.add_option("--xml", request->xml, "the columns of this schema; - is standard input")
      .type_name("FILE");
  request->cells.add_to(this_verb);
  this_verb.add_flag("--ijk", request->ijk, "a grid whose rows have cell numbers");
  this_verb.add_flag("--single", request->single, "numbers of 4 bytes (7 digits) instead of 8");
  add_description_option(this_verb, request->description);
  this_verb.callback([request] { run_new(*request); });
}

}  // namespace command
