// ovfile sign: a digest of what a table holds.
#include <memory>
#include <optional>

#include "commands.h"
#include "console.h"
#include "long_call.h"
#include "table_options.h"
#include "table_view.h"
#include "text_output.h"

namespace command {
namespace {

constexpr const char* sign_help =
    "Prints the signature of a table: 40 hexadecimal digits made of its columns and rows, which are the\n"
    "same for tables that hold the same. A tight one counts the description, the order of the columns and\n"
    "the precision, a loose one none of them.";

struct signature_request {
  std::string table;
  bool loose = false;
  bool tight = false;
  std::optional<LONG> decimals;
};

std::string signature(const table_view& view, const signature_request& request) {
  std::optional<interrupt_guard> guard;  // where nobody asks for the flag a signal shall end the work
  const long_call call(view, "signing");
  if (call.can_be_stopped()) guard.emplace();
  const VARIANT_BOOL ignore = request.loose ? VARIANT_TRUE : VARIANT_FALSE;
  ovfile::text digits;
  const HRESULT status =
      view.table().GetSignature(ignore, ignore, ignore, request.decimals.value_or(-1), digits.out());
  long_call::throw_if_stopped(status);
  view.check(status);
  return digits.utf8();
}

void run_sign(const signature_request& request) {
  const table_view view(request.table);
  text_output output(meant_for::people);
  output.text() = signature(view, request) + "  " + view.file() + "\n";
  output.finish();
}

}  // namespace

void define_sign(const verb& program) {
  auto request = std::make_shared<signature_request>();
  const verb this_verb = program.add_verb("sign", "Print the signature of a table");
  this_verb.footer(sign_help);
  add_table_argument(this_verb, request->table);
  const option loose =
      this_verb.add_flag("--loose", request->loose, "whatever description, order of columns and precision");
  this_verb.add_flag("--tight", request->tight, "with all of them (the default)").excludes(loose);
  this_verb
      .add_number("--decimals", request->decimals, {.least = 0, .most = 1000},
                  "numbers with exactly so many decimals; by default six at most, without zeros at the end")
      .type_name("N");
  this_verb.callback([request] { run_sign(*request); });
}

}  // namespace command
