// Whole commands over tables of any bytes. The first byte tells the command, the others are the table. Beside
// not crashing: it ends with a status that it may have, what only reads leaves the table as it is, and
// nothing is left beside it.
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "failure.h"
#include "program.h"
#include "require.h"

namespace {

namespace fs = std::filesystem;

struct work {
  bool only_reads;
  std::vector<std::string> arguments;
};

const std::vector<work>& works() {
  static const std::vector<work> all = {
      {true, {"info", "t.ovt"}},
      {true, {"info", "t.ovt", "--json"}},
      {true, {"head", "t.ovt", "-n", "5"}},
      {true, {"stats", "t.ovt"}},
      {true, {"schema", "t.ovt"}},
      {true, {"sign", "t.ovt"}},
      {true, {"verify", "t.ovt"}},
      {true, {"diff", "t.ovt", "t.ovt"}},
      {false, {"export", "t.ovt", "out.csv"}},
      {false, {"verify", "t.ovt", "--salvage", "out.ovt"}},
      {false, {"set", "t.ovt", "A=1", "--all"}},
      {false, {"set", "t.ovt", "B=x", "--where", "A > 0"}},
      {false, {"sort", "t.ovt", "--by", "A"}},
      {false, {"delete-rows", "t.ovt", "--rows", "1-3"}},
      {false, {"delete-rows", "t.ovt", "--where", "A IS ABSENT"}},
      {false, {"truncate", "t.ovt", "--rows", "2"}},
      {false, {"alter", "t.ovt", "--add", "NEW=1"}},
      {false, {"rename", "t.ovt", "A", "C"}},
      {false, {"add-implicit", "t.ovt", "C=2"}},
      {false, {"default", "t.ovt", "A=5"}},
  };
  return all;
}

std::string content(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// What commands say is much, and nobody reads it. Each closes its standard output at the end.
void open_output() {
  static const int nowhere = open("/dev/null", O_WRONLY);
  require(nowhere >= 0 && dup2(nowhere, STDOUT_FILENO) >= 0, "there is a place for output");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  static std::string folder = fs::temp_directory_path() / "ovfuzz-XXXXXX";
  require(mkdtemp(folder.data()) != nullptr && chdir(folder.c_str()) == 0, "there is a folder");
  setenv("OVFILE_REGISTRY", (folder + "-settings.reg").c_str(), 1);
  std::atexit([] {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
  });
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const work& chosen = works()[data[0] % works().size()];
  const std::string table(reinterpret_cast<const char*>(data + 1), size - 1);
  std::ofstream("t.ovt", std::ios::binary) << table;
  open_output();
  std::vector<std::string> arguments = {"ovfile"};
  arguments.insert(arguments.end(), chosen.arguments.begin(), chosen.arguments.end());
  const int status = command::run_program(arguments);
  require(status >= 0 && status <= 2, "a command ends as it may");
  if (chosen.only_reads) require(content("t.ovt") == table, "what reads changes nothing");
  for (const auto& entry : fs::directory_iterator(".")) {
    const std::string name = entry.path().filename();
    require(name == "t.ovt" || name == "out.csv" || name == "out.ovt", "nothing is left beside the table");
  }
  for (const char* const name : {"t.ovt", "out.csv", "out.ovt"}) fs::remove(name);
  return 0;
}
