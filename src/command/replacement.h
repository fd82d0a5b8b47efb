// A file that is either wholly new or wholly as it was: the new one is made beside the target and takes
// its place in one step at the end. Whatever ends the work early (a failure, a signal) removes it. Names are
// UTF-8, failures are thrown.
#pragma once

#include <string>
#include <string_view>

#include "base/file_replacement.h"
#include "console.h"

namespace command {

class replacement {
 public:
  /// Makes an empty file beside `target` (a link's target where it is a link). Throws `failure`, also when
  /// the target is a folder or a device.
  explicit replacement(const std::string& target);

  /// The new file, for whoever writes it: a name that leads to it whatever others do in its folder.
  const std::string& name() const noexcept { return name_; }
  /// The same for a process that this one starts.
  std::string name_for_children() const;
  /// Puts the new file, which nobody has open any more, in the target's place. Throws `failure`.
  void commit();

 private:
  interrupt_guard guard_;
  std::string shown_;
  ovf::file_replacement file_;
  std::string name_;
};

/// Whether the name ends in `suffix`, which has small letters; those of the name do not count.
bool ends_in(const std::string& name, std::string_view suffix);
/// Whether a file's name says that it holds a table, or a CSV.
bool is_named_as_table(const std::string& name);
bool is_named_as_csv(const std::string& name);
/// What a file's name says that it holds where that is neither a table nor CSV nor Parquet; null where it
/// says no such thing.
const char* promised_format(const std::string& name);

/// Whether two names mean one existing file.
bool same_file(const std::string& left, const std::string& right);

}  // namespace command
