// The mark by which all programs of a login session know that the session's choice of long field names
// has been made: the global atom "MaxFieldNameLength", which the library sets and never takes away.
#pragma once

namespace command {

/// Whether the session's choice has been made.
bool session_is_marked();

/// Takes the mark away, so that the library chooses anew. Nothing happens where there is none. Throws
/// `failure`, and the mark stays.
void forget_session_mark();

}  // namespace command
