#include <windows.h>
// windows.h goes first.
#include "failure.h"
#include "session_mark.h"

namespace command {

bool session_is_marked() { return GlobalFindAtomW(L"MaxFieldNameLength") != 0; }

void forget_session_mark() {
  // Every program that set it counts.
  constexpr int most_programs = 0x10000;
  for (int i = 0; i < most_programs; ++i) {
    const ATOM atom = GlobalFindAtomW(L"MaxFieldNameLength");
    if (atom == 0) return;
    GlobalDeleteAtom(atom);
  }
  throw failure("cannot remove the session's global atom MaxFieldNameLength");
}

}  // namespace command
