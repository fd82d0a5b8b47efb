# One program for each folder of tests/. A folder named like a module sees that module and those below
# it; `command`, `golden` and `filter` are hosts of the shared library, and the first two know the parts of the
# command; `host` loads it by itself at run time.
# `early_bound` knows it from the header that the type library gives. tests/support is a library for all
# of them.

# From its sources in every build, so that it is compiled as the tests are (sanitizers, Windows).
set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
target_compile_options(gtest PRIVATE -O0)
target_compile_options(gmock PRIVATE -O0)

if(WIN32)
  set(root "Z:")  # where Wine shows the whole file system
endif()
set(OVF_TEST_DEFINITIONS
    OVFILE_SOURCE_DIR="${root}${CMAKE_CURRENT_SOURCE_DIR}"
    OVFILE_COMMAND_PATH="${root}${CMAKE_BINARY_DIR}/bin/ovfile${CMAKE_EXECUTABLE_SUFFIX}"
    OVFILE_LIBRARY_PATH="${root}${CMAKE_BINARY_DIR}/bin/$<IF:$<BOOL:${WIN32}>,OvFile.dll,libovfile.so>"
    OVFILTER_PATH="${root}${CMAKE_BINARY_DIR}/bin/$<IF:$<BOOL:${WIN32}>,OvFilter.dll,libovfilter.so>")

# Where the shared inputs lie is decided when the tests run: the environment, else a folder `shared`
# beside the source root.
configure_file(cmake/shared_inputs.cmake.in "${CMAKE_BINARY_DIR}/shared_inputs.cmake" @ONLY)
set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${CMAKE_BINARY_DIR}/shared_inputs.cmake")

# The tests' own code need not be fast, but there is much of it: GoogleTest is parsed once for all, and nothing
# is optimised, which takes a third of the time with sanitizers.
add_library(ovf_test_settings INTERFACE)
target_compile_options(ovf_test_settings INTERFACE
                       -O0 "$<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>"
                       "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")
target_compile_definitions(ovf_test_settings INTERFACE ${OVF_TEST_DEFINITIONS})
target_include_directories(ovf_test_settings INTERFACE include src tests)
target_link_libraries(ovf_test_settings INTERFACE ovf_settings ovf_header_libraries GTest::gmock
                      GTest::gtest_main ${CMAKE_DL_LIBS})
file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/precompiled_tests.cpp" CONTENT "")
# All who share it are compiled alike, programs and libraries.
set(CMAKE_POSITION_INDEPENDENT_CODE OFF)
add_library(ovf_precompiled_tests OBJECT "${CMAKE_BINARY_DIR}/precompiled_tests.cpp")
target_link_libraries(ovf_precompiled_tests PRIVATE ovf_test_settings)
target_precompile_headers(ovf_precompiled_tests PRIVATE <gtest/gtest.h> <gmock/gmock.h> <filesystem>)

ovf_sources(files tests/support)
if(files)
  add_library(ovf_test_support STATIC ${files})
  target_precompile_headers(ovf_test_support REUSE_FROM ovf_precompiled_tests)
  target_link_libraries(ovf_test_support PRIVATE ovf_test_settings)
endif()

# What the tests of a module link: the module and all below it. The classes need server/ for their
# reports and method tables.
set(modules_for_base base platform)
set(modules_for_platform platform base)
set(modules_for_storage storage platform base)
set(modules_for_engine engine storage platform base)

# On Windows there is one registry and one session for all: tests that change either run alone.
set(alone_in_engine "long_names*")
set(alone_in_schema "long_names*")
set(alone_in_table "long_names*")
set(alone_in_command "settings_test*")
set(alone_in_host "registration*:scripts*:documented_scripts*")
set(alone_in_early_bound "registered*")
set(alone_in_filter "filter_registration*")

# A start of Wine or of a sanitized program takes longer than most tests: each program's tests run in a few
# starts, in equal parts: two keep two processors busy, eight the longest program from being the last.
set(OVF_TEST_PARTS 2)
set(OVF_TEST_PARTS_command 8)
set(OVF_TEST_RESULTS "${CMAKE_BINARY_DIR}/results")
file(MAKE_DIRECTORY "${OVF_TEST_RESULTS}")

# How many sources a compilation takes: few where people change and build them again, many where all are built once.
set(OVF_TEST_BATCH 18)
if(OVFILE_UNITY)
  set(OVF_TEST_BATCH 30)
endif()

# ovf_add_test_run(TARGET NAME FILTER): one start; what each test said goes to results/NAME.xml.
function(ovf_add_test_run target name filter)
  set(run "${CMAKE_BINARY_DIR}/run/${target}")
  file(MAKE_DIRECTORY "${run}")
  add_test(NAME ${name} WORKING_DIRECTORY "${run}"
           COMMAND ${target} "--gtest_filter=${filter}" "--gtest_output=xml:${root}${OVF_TEST_RESULTS}/${name}.xml")
  set_tests_properties(${name} PROPERTIES TIMEOUT 900)
endfunction()

function(ovf_add_test_folder name)
  set(others "*")
  ovf_sources(files "tests/${name}")
  set(target "test_${name}")
  add_executable(${target} ${files})
  target_precompile_headers(${target} REUSE_FROM ovf_precompiled_tests)
  ovf_unite(${target} ${OVF_TEST_BATCH})
  if(WIN32)
    set_target_properties(${target} PROPERTIES RULE_LAUNCH_LINK "${CMAKE_CURRENT_SOURCE_DIR}/tools/link_with_lld.sh")
  elseif(NOT name STREQUAL "platform")
    # No test touches the registry and the session of the user who runs it.
    target_sources(${target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/tests/platform/test_settings_linux.cpp")
  endif()
  if(TARGET ovf_test_support)
    target_link_libraries(${target} PRIVATE ovf_test_support)
  endif()
  if(name STREQUAL "command")
    add_dependencies(${target} fake_duckdb lacking_duckdb)
    if(TARGET denied_malloc)
      add_dependencies(${target} denied_malloc)
    endif()
  endif()
  if(name STREQUAL "command" OR name STREQUAL "golden")
    add_dependencies(${target} ovfile_command ovfilter)
    target_link_libraries(${target} PRIVATE ovf_command)
  elseif(name STREQUAL "host")
    add_dependencies(${target} ovfile ovfilter)
  elseif(name STREQUAL "early_bound")
    add_dependencies(${target} ovfile ovf_type_library)
    target_include_directories(${target} SYSTEM PRIVATE "${OVF_TYPE_LIBRARY_FOLDER}")
  elseif(name STREQUAL "filter")
    add_dependencies(${target} ovfile ovfilter)
    target_link_libraries(${target} PRIVATE ovf_filter)
    if(NOT WIN32)
      target_link_libraries(${target} PRIVATE ovfile)  # the component runtime
    endif()
  elseif(DEFINED modules_for_${name})
    ovf_link_modules(${target} ${modules_for_${name}})
  else()
    ovf_link_modules(${target} ${OVF_MODULES})
    if(WIN32)
      # What the library has as resources, a program with its modules needs too.
      ovf_add_resources(${target})
    endif()
  endif()
  target_link_libraries(${target} PRIVATE ovf_test_settings)
  if(name STREQUAL "platform")
    # They write a list of components beside themselves, and must not meet the library's own.
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin/platform")
  endif()

  if(WIN32 AND DEFINED alone_in_${name})
    ovf_add_test_run(${target} "${name}.alone" "${alone_in_${name}}")
    set_tests_properties("${name}.alone" PROPERTIES RUN_SERIAL ON)
    set(others "-${alone_in_${name}}")
  endif()
  set(parts ${OVF_TEST_PARTS})
  if(DEFINED OVF_TEST_PARTS_${name})
    set(parts ${OVF_TEST_PARTS_${name}})
  endif()
  math(EXPR last "${parts} - 1")
  foreach(part RANGE ${last})
    ovf_add_test_run(${target} "${name}.${part}" "${others}")
    set_tests_properties("${name}.${part}" PROPERTIES
                         ENVIRONMENT "GTEST_TOTAL_SHARDS=${parts};GTEST_SHARD_INDEX=${part}")
  endforeach()
endfunction()

# What stands in for DuckDB's library where a test needs something to load, and one that lacks a function.
foreach(name fake_duckdb lacking_duckdb)
  add_library(${name} MODULE tests/command/fake_duckdb/fake_duckdb.cpp)
  set_target_properties(${name} PROPERTIES PREFIX "" CXX_VISIBILITY_PRESET default
                        LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin/fake")
  target_include_directories(${name} PRIVATE src)
  target_link_libraries(${name} PRIVATE ovf_settings)
  # Nothing behind what is loaded, so that one that was cut off lacks something.
  target_link_options(${name} PRIVATE -s)
endforeach()
target_compile_definitions(lacking_duckdb PRIVATE FAKE_DUCKDB_LACKS_ONE)
# What denies memory to a program that it is loaded before. A sanitized one has an allocator of its own.
if(NOT WIN32 AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  add_library(denied_malloc MODULE tests/command/denied_malloc/denied_malloc.cpp)
  set_target_properties(denied_malloc PROPERTIES PREFIX "" CXX_VISIBILITY_PRESET default
                        LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin/fake")
  target_link_libraries(denied_malloc PRIVATE ovf_settings ${CMAKE_DL_LIBS})
endif()

file(GLOB folders CONFIGURE_DEPENDS LIST_DIRECTORIES true "${CMAKE_CURRENT_SOURCE_DIR}/tests/*")
foreach(folder ${folders})
  get_filename_component(name "${folder}" NAME)
  ovf_sources(files "tests/${name}")
  if(files AND NOT name STREQUAL "support")
    ovf_add_test_folder(${name})
  endif()
endforeach()

set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# A host in another language, which has nothing but the contract. A sanitized library wants to be loaded
# first of all, which an interpreter does not do.
find_package(Python3 COMPONENTS Interpreter)
if(TARGET ovfile AND NOT WIN32 AND Python3_FOUND AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  add_test(NAME host.python_client COMMAND "${Python3_EXECUTABLE}"
           "${CMAKE_CURRENT_SOURCE_DIR}/tests/host/python_client.py" "$<TARGET_FILE:ovfile>")
endif()
