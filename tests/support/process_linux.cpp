#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>

#include "support/file_bytes.h"
#include "support/process.h"
#include "support/scratch_folder.h"

namespace ovtest {
namespace {

int exit_status(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw std::runtime_error("cannot wait for a program");
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

process_result run_process(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                           const std::string& input) {
  // Files instead of pipes: nothing can wait for the other side.
  const scratch_folder streams;
  write_text(streams / "in", input);
  std::vector<char*> pointers;
  for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
  pointers.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, (streams / "in").c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, (streams / "out").c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, (streams / "err").c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
  // A program of tests that is started for one of them runs it, whatever part of all runs here.
  for (const char* const name : {"GTEST_TOTAL_SHARDS", "GTEST_SHARD_INDEX"}) ::unsetenv(name);
  pid_t child = 0;
  const int failed = ::posix_spawn(&child, pointers[0], &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) throw std::runtime_error("cannot start " + arguments[0]);
  const int status = exit_status(child);
  return {status, read_text(streams / "out"), read_text(streams / "err")};
}

void set_environment(const std::string& name, const std::filesystem::path& value) {
  ::setenv(name.c_str(), value.c_str(), 1);
}

}  // namespace ovtest
