// The user's settings and the session's mark, for tests that change them.
#pragma once

namespace ovtest {

/// Starts with no setting at all and a marked session, and gives back what was there before.
class settings_keeper {
 public:
  settings_keeper();
  ~settings_keeper();
  settings_keeper(const settings_keeper&) = delete;
  settings_keeper& operator=(const settings_keeper&) = delete;

  /// The session begins anew: no program has chosen yet.
  static void unmark();
  static bool is_marked();

 private:
  struct state;
  state* before_ = nullptr;
};

}  // namespace ovtest
