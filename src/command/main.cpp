#include "console.h"
#include "failure.h"
#include "program.h"

int main(int count, char** values) {
  try {
    return command::run_program(command::start_console(count, values));
  } catch (const command::interrupted&) {
    command::end_as_interrupted();
  }
}
