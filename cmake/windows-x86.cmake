# 32-bit Windows by MinGW-w64 with posix threads, everything static.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(OVF_TRIPLET i686-w64-mingw32)
# The module definition file names the entry points without the decoration of their convention.
set(OVF_LINK_FLAGS "-Wl,--enable-stdcall-fixup")
include("${CMAKE_CURRENT_LIST_DIR}/mingw.cmake")
