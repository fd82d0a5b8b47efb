// ovfile setup: what the program can use and does not bring with it.
#include <memory>

#include "commands.h"
#include "duckdb/duckdb_package.h"
#include "duckdb/duckdb_trial.h"
#include "duckdb/setup_sql.h"
#include "text_output.h"
#include "words.h"

namespace command {
namespace {

std::string setup_sql_help() {
  return fmt::format(
      "Downloads the package {} (version {}, {} MB) with the system's curl from npm's registry, or the one "
      "that\nnpm_config_registry names, checks its digest, and puts the library into the user's folder.\n"
      "Nothing happens when it is there already. On a machine without a network use `npm pack\n{}@{}`\n"
      "elsewhere and --from FILE here.",
      duckdb_package.name, duckdb_package.version, duckdb_package.bytes / 1'000'000, duckdb_package.name,
      duckdb_package.version);
}

void define_setup_sql(const verb& setup) {
  auto request = std::make_shared<setup_request>();
  auto tried = std::make_shared<std::string>();
  auto asked = std::make_shared<bool>(false);
  const verb this_verb = setup.add_verb("sql", "Put DuckDB's library in place, which SQL needs");
  this_verb.footer(setup_sql_help());
  this_verb.add_option("--from", request->from, "the package's file, instead of a download")
      .type_name("FILE");
  this_verb.add_option("--registry", request->registry, "where the package comes from").type_name("URL");
  this_verb.add_option("--folder", request->folder, "where the library goes").type_name("FOLDER");
  this_verb.add_option("--version", request->version, "another version of the package").type_name("VERSION");
  this_verb
      .add_option("--integrity", request->integrity, "the digest that the package must have (sha512-...)")
      .type_name("DIGEST");
  this_verb.add_flag("--force", request->force, "also when it is there already");
  this_verb.add_flag("--package", *asked, "only say which package it is, as `npm pack` takes it");
  // For this program itself: tries a library, with --folder for its files, and prints its version.
  this_verb.add_option("--try", *tried).hidden();
  this_verb.callback([request, tried, asked] {
    if (!tried->empty()) {
      print(try_duckdb_here(*tried, request->folder) + "\n");
    } else if (*asked) {
      print(fmt::format("{}@{}\n", duckdb_package.name, duckdb_package.version));
    } else {
      set_up_sql(*request);
    }
  });
}

}  // namespace

void define_setup(const verb& program) {
  const verb this_verb = program.add_verb("setup", "Put in place what the program does not bring with it");
  define_setup_sql(this_verb);
  this_verb.callback([this_verb] {
    if (!this_verb.has_verb()) print(this_verb.help("ovfile"));
  });
}

}  // namespace command
