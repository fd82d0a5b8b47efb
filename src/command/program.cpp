#include "program.h"

#include <exception>

#include "commands.h"
#include "failure.h"
#include "ovfile/smart.h"
#include "text_output.h"
#include "words.h"

namespace command {
namespace {

constexpr int failure_status = 1;
constexpr int usage_status = 2;
constexpr int difference_status = 1;
constexpr int no_comparison_status = 2;

void define_verbs(const verb& program) {
#define OVFILE_DEFINE(name) define_##name(program);
  OVFILE_COMMANDS(OVFILE_DEFINE)
#undef OVFILE_DEFINE
}

void parse_and_run(const std::vector<std::string>& arguments) {
  const argument_parser parser("Table files of mines: drillholes, block models, wireframes.", "ovfile");
  parser.set_version("ovfile " OVFILE_VERSION);
  parser.program().footer(
      "Exit status: 0 done, 1 failed, 2 wrong usage (diff: 0 equal, 1 different, 2 failed). `ovfile COMMAND "
      "--help` tells more of a command.");
  define_verbs(parser.program());
  const std::string wanted = parser.run(arguments);
  if (!wanted.empty()) print(wanted);
}

}  // namespace

int run_program(const std::vector<std::string>& arguments) {
  try {
    parse_and_run(arguments);
    return 0;
  } catch (const broken_pipe&) {
    return 0;
  } catch (const difference&) {
    return difference_status;
  } catch (const no_comparison& error) {
    say(error.what());
    return no_comparison_status;
  } catch (const wrong_usage& error) {
    say(error.what());
    return usage_status;
  } catch (const marked_failure& error) {
    say(error.what(), error.lines);
  } catch (const std::exception& error) {
    say(words_of(error));
  }
  return failure_status;
}

}  // namespace command
