# 64-bit Windows by MinGW-w64 with posix threads, everything static.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(OVF_TRIPLET x86_64-w64-mingw32)
include("${CMAKE_CURRENT_LIST_DIR}/mingw.cmake")
