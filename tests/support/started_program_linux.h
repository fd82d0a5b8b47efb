// Programs that run beside the test: until a signal ends them, on a terminal, or until they have to wait.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace ovtest {

struct ended_program {
  int status = -1;             ///< as waitpid tells it
  std::size_t most_bytes = 0;  ///< resident at their highest

  bool was_ended_by(int signal) const noexcept;
};

/// What programs do to a folder. What lies in folders inside it does not count.
enum class folder_change {
  creation,  ///< of a file or a folder
  writing    ///< into a file, or its cutting
};

/// Hears of every signal, whatever this process does with it. One that is not waited for is killed.
class started_program {
 public:
  /// Stands still at first. `arguments` with the program's path first; `error` is the file that has its
  /// standard error.
  started_program(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                  const std::filesystem::path& error = "/dev/null");
  ~started_program();
  started_program(const started_program&) = delete;
  started_program& operator=(const started_program&) = delete;

  void go_on() const;
  /// From where it stands still up to the call that makes the first such change in `folder`, in which it
  /// stands still again, however busy the system is. False when it ends before. Nobody else may change the
  /// folder.
  bool goes_on_to(folder_change kind, const std::filesystem::path& folder);
  /// One that stands still hears of the signal when it goes on.
  void send(int signal) const;
  /// Lets it go on to its end.
  ended_program wait();
  /// The same with a signal that comes before anything else.
  ended_program wait_after(int signal);

 private:
  bool has_ended(int options, int& status);

  pid_t id_;
  ended_program end_;
};

/// A signal that is sent as soon as the terminal has seen these words.
struct answer {
  std::string words;
  int signal = 0;
};

struct shown {
  ended_program end;
  std::string text;  ///< all that was written to the terminal
};

/// Runs a shell script whose three streams are a terminal of its own. Lines end there with "\r\n" unless it
/// says `stty -opost`.
shown on_terminal(const std::string& script, const std::filesystem::path& folder, const answer& sent = {});

/// What stands on the terminal after all that: bars are gone that were wiped away.
std::string left_on_terminal(const std::string& written);

/// A named pipe that takes nothing: whoever has something to say waits, however fast the work was.
class full_pipe {
 public:
  explicit full_pipe(const std::filesystem::path& name);
  ~full_pipe();
  full_pipe(const full_pipe&) = delete;
  full_pipe& operator=(const full_pipe&) = delete;

 private:
  int handle_;
};

}  // namespace ovtest
