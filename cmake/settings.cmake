# How every file of our own is compiled. Third-party code gets none of the warnings.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_SCAN_FOR_MODULES OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()
# Line tables are cheap and make the traces of a crash readable; no debugger of Windows reads them.
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
if(NOT WIN32)
  string(APPEND CMAKE_CXX_FLAGS_RELEASE " -g1")
endif()

# The command, the tests and the library stand together: on Windows programs look for the library
# beside themselves, on Linux the run path says the same.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  # So that it also serves files with a precompiled header.
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env CCACHE_SLOPPINESS=pch_defines,time_macros
      "${CCACHE_PROGRAM}")
endif()

if(OVFILE_LTO)
  set(CMAKE_INTERPROCEDURAL_OPTIMIZATION ON)
endif()

option(OVFILE_JOINED "Compile many sources as one: quick from nothing, slow after a change" OFF)
# ovf_join_sources(TARGET SIZE): its sources are compiled in lots of so many.
function(ovf_join_sources target size)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${size})
endfunction()
# The product's sources, each of which also compiles alone, as it does where this is off. The standard's headers
# are three quarters of the work then: they are parsed once, and tools/check_includes.py sees to it that each file
# names those that it needs.
function(ovf_may_join_sources target)
  if(OVFILE_JOINED)
    ovf_join_sources(${target} 16)
    set_target_properties(${target} PROPERTIES UNITY_BUILD_CODE_BEFORE_INCLUDE
                          "// NOLINTNEXTLINE(bugprone-suspicious-include)")
  else()
    target_precompile_headers(${target} REUSE_FROM ovf_precompiled)
  endif()
endfunction()

find_package(Threads REQUIRED)

set(OVF_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

add_library(ovf_settings INTERFACE)
target_compile_options(ovf_settings INTERFACE ${OVF_WARNINGS})
# g++ means names of the other files of a lot too, clang only what a local name hides of the same namespace.
set(is_joined "$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>")
target_compile_options(ovf_settings INTERFACE "$<$<AND:$<CXX_COMPILER_ID:GNU>,${is_joined}>:-Wno-shadow;-Wshadow=local>")
target_link_libraries(ovf_settings INTERFACE Threads::Threads)

if(WIN32)
  enable_language(RC)
  set(OVF_DEFINITIONS UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601
      __USE_MINGW_ANSI_STDIO=1)
  target_compile_definitions(ovf_settings INTERFACE ${OVF_DEFINITIONS})
  target_link_libraries(ovf_settings INTERFACE ole32 oleaut32 uuid advapi32)
endif()

if(NOT OVFILE_JOINED)
  file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/precompiled.cpp" CONTENT "")
  add_library(ovf_precompiled OBJECT "${CMAKE_BINARY_DIR}/precompiled.cpp")
  target_link_libraries(ovf_precompiled PRIVATE ovf_settings)
  target_precompile_headers(ovf_precompiled PRIVATE <algorithm> <array> <charconv> <filesystem> <functional> <limits>
                            <memory> <optional> <span> <string> <string_view> <vector>)
endif()
