// How far a long call has come, and a way to stop it. `OvTable` and `OvTableADO` answer
// `IOvProgressSource`; a host that wants to know gives it an `IOvProgress` of its own.
#pragma once

#include "ovfile/component.h"

inline constexpr IID IID_IOvProgress{
    0x5E0C93B1, 0x7A24, 0x4D68, {0x91, 0x3F, 0xC2, 0x08, 0xB6, 0x5D, 0xE4, 0x7A}};
inline constexpr IID IID_IOvProgressSource{
    0xC7418F2A, 0x1B96, 0x4E03, {0xA5, 0x6D, 0x39, 0xF0, 0x82, 0xCB, 0x17, 0xD4}};

#define OVFILE_METHOD virtual HRESULT STDMETHODCALLTYPE

/// The host's side.
struct IOvProgress : IUnknown {
  /// `done` of `total` steps are behind the call: called on its thread, many times a second, with a `done`
  /// that never falls. A `total` of 0: nobody knows how many there will be. S_OK goes on. Anything else stops
  /// the call, which then fails with E_ABORT and leaves the table as it was. The table must not be called
  /// from here.
  OVFILE_METHOD Progress(LONGLONG done, LONGLONG total) = 0;
};

/// The table's side.
struct IOvProgressSource : IUnknown {
  /// `pProgress` hears from then on of `Sort`, `Repair`, `Rebuild`, `DeleteRow`, the signatures and `Append`
  /// (IOvTableStream; rows, of a total that nobody knows); null: nobody does. The table holds a reference.
  OVFILE_METHOD SetProgress(IOvProgress* pProgress) = 0;
};

#undef OVFILE_METHOD
