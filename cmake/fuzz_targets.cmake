# One libFuzzer program for each file of fuzz/. In ordinary builds a test runs it over its seeds
# (fuzz/seeds/NAME); the preset `fuzz` compiles everything with coverage for real runs.
if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  message(FATAL_ERROR "OVFILE_FUZZ needs clang.")
endif()

ovf_sources(files fuzz)
foreach(file ${files})
  get_filename_component(name "${file}" NAME_WE)
  add_executable(fuzz_${name} "${file}")
  target_include_directories(fuzz_${name} PRIVATE include src fuzz)
  target_link_libraries(fuzz_${name} PRIVATE ovf_settings)
  if(name STREQUAL "filter_fuzz")
    target_link_libraries(fuzz_${name} PRIVATE ovf_filter)
  endif()
  if(name STREQUAL "csv_fuzz" OR name STREQUAL "command_fuzz")
    target_link_libraries(fuzz_${name} PRIVATE ovf_command)  # which has the library itself
  else()
    ovf_link_modules(fuzz_${name} ${OVF_MODULES})
  endif()
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)

  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/run/fuzz")
  set(seeds "${CMAKE_CURRENT_SOURCE_DIR}/fuzz/seeds/${name}")
  if(IS_DIRECTORY "${seeds}")
    add_test(NAME fuzz_seeds.${name} COMMAND fuzz_${name} -runs=0 "${seeds}"
             WORKING_DIRECTORY "${CMAKE_BINARY_DIR}/run/fuzz")
    set_tests_properties(fuzz_seeds.${name} PROPERTIES TIMEOUT 300)
  endif()
endforeach()

# Writes seeds for dictionary_fuzz from the tests' tables.
file(GLOB table_cases CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/tests/support/table_cases*.cpp")
add_executable(fuzz_table_seeds EXCLUDE_FROM_ALL fuzz/tools/table_seeds.cpp ${table_cases})
target_include_directories(fuzz_table_seeds PRIVATE include src tests)
target_link_libraries(fuzz_table_seeds PRIVATE ovf_settings)
target_link_options(fuzz_table_seeds PRIVATE -fsanitize=fuzzer-no-link)
