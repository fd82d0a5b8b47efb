#include "program.h"

#include <exception>
#include <new>
#include <sstream>

#include "commands.h"
#include "failure.h"
#include "ovfile/smart.h"
#include "text_output.h"
#include "words.h"

namespace command {
namespace {

constexpr int failed = 1;
constexpr int used_wrongly = 2;
constexpr int differs = 1;
constexpr int not_compared = 2;

void set_up(CLI::App& program) {
  program.allow_windows_style_options(false);  // a statement may begin with a comment, a path with a slash
  program.set_version_flag("--version", "ovfile " OVFILE_VERSION);
  program.require_subcommand(1);
  program.footer(
      "Exit status: 0 done, 1 failed, 2 wrong usage (diff: 0 equal, 1 different, 2 failed). `ovfile COMMAND "
      "--help` tells more of a command.");
#define OVFILE_DEFINE(name) define_##name(program);
  OVFILE_COMMANDS(OVFILE_DEFINE)
#undef OVFILE_DEFINE
}

/// Help and version are output like any other; everything else that stops the reading of arguments is
/// wrong usage.
int answer(const CLI::App& program, const CLI::ParseError& stopped) {
  std::ostringstream words;
  std::ostringstream complaint;
  if (program.exit(stopped, words, complaint) == 0) {
    text_output output;
    output.text() = words.str();
    output.finish();
    return 0;
  }
  say(std::string(stopped.what()) + " (see --help)");
  return used_wrongly;
}

int parse_and_run(const std::vector<std::string>& arguments) {
  CLI::App program("Table files of mines: drillholes, block models, wireframes.", "ovfile");
  set_up(program);
  try {
    // The parser takes them last one first, without the program's name.
    std::vector<std::string> rest(arguments.rbegin(), arguments.rend());
    if (!rest.empty()) rest.pop_back();
    program.parse(std::move(rest));
    return 0;
  } catch (const CLI::ParseError& stopped) {
    return answer(program, stopped);
  }
}

}  // namespace

int run_program(const std::vector<std::string>& arguments) {
  try {
    return parse_and_run(arguments);
  } catch (const broken_pipe&) {
    return 0;
  } catch (const difference&) {
    return differs;
  } catch (const no_comparison& error) {
    say(error.what());
    return not_compared;
  } catch (const wrong_usage& error) {
    say(error.what());
    return used_wrongly;
  } catch (const marked_failure& error) {
    say(error.what(), error.lines);
  } catch (const std::bad_alloc&) {
    say("there is not enough memory");
  } catch (const std::exception& error) {
    say(error.what());
  }
  return failed;
}

}  // namespace command
