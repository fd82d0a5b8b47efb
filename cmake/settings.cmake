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

option(OVFILE_UNITY "Unity builds of the product: quick from nothing, slow after a change" OFF)
# ovf_unite(TARGET SIZE): its sources are compiled in batches of so many.
function(ovf_unite target size)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${size})
endfunction()
# The product's sources, each of which also compiles alone, as it does where this is off. Much of the work is the
# standard's headers: they are parsed once for all, and tools/check_includes.py sees to it that each file names those
# that it needs. clang-tidy, which has nothing built, reads them anew (preset `lint`).
function(ovf_may_unite target)
  target_precompile_headers(${target} REUSE_FROM ovf_precompiled)
  if(OVFILE_UNITY)
    ovf_unite(${target} 24)
    set_target_properties(${target} PROPERTIES UNITY_BUILD_CODE_BEFORE_INCLUDE
                          "// NOLINTNEXTLINE(bugprone-suspicious-include)")
    # No other build compiles these alone, with all warnings.
    get_target_property(windows_only ${target} SOURCES)
    list(FILTER windows_only INCLUDE REGEX "_windows\\.cpp$")
    if(windows_only)
      set_source_files_properties(${windows_only} PROPERTIES COMPILE_OPTIONS -Wshadow SKIP_UNITY_BUILD_INCLUSION ON)
    endif()
  endif()
endfunction()

find_package(Threads REQUIRED)

set(OVF_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

add_library(ovf_settings INTERFACE)
target_compile_options(ovf_settings INTERFACE ${OVF_WARNINGS})
# clang tells of constants that a source does not use, g++ when it is asked.
target_compile_options(ovf_settings INTERFACE "$<$<CXX_COMPILER_ID:GNU>:-Wunused-const-variable=1>")
# In a unity build g++ takes a local name for one that hides what another source of the batch has in its unnamed
# namespace; the builds without it see those that hide something.
set(is_unity "$<BOOL:$<TARGET_PROPERTY:UNITY_BUILD>>")
target_compile_options(ovf_settings INTERFACE "$<$<AND:$<CXX_COMPILER_ID:GNU>,${is_unity}>:-Wno-shadow;-Wshadow=local>")
target_link_libraries(ovf_settings INTERFACE Threads::Threads)

if(WIN32)
  enable_language(RC)
  set(OVF_DEFINITIONS UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601
      __USE_MINGW_ANSI_STDIO=1)
  target_compile_definitions(ovf_settings INTERFACE ${OVF_DEFINITIONS})
  target_link_libraries(ovf_settings INTERFACE ole32 oleaut32 uuid advapi32)
endif()

file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/precompiled.cpp" CONTENT "")
add_library(ovf_precompiled OBJECT "${CMAKE_BINARY_DIR}/precompiled.cpp")
target_link_libraries(ovf_precompiled PRIVATE ovf_settings)
target_precompile_headers(ovf_precompiled PRIVATE <algorithm> <array> <charconv> <filesystem> <functional> <limits>
                          <memory> <optional> <span> <string> <string_view> <vector>)
