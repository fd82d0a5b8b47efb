# The programs that the README and docs/hosts.md show, one for each C++ file of docs/examples/, run over a
# sample. Its scripts for Windows are run by tests/host.
ovf_sources(files docs/examples)
if(NOT TARGET ovfile)
  return()
endif()

foreach(file ${files})
  get_filename_component(name "${file}" NAME_WE)
  string(REGEX REPLACE "_(linux|windows)$" "" name "${name}")
  add_executable(example_${name} "${file}")
  target_include_directories(example_${name} PRIVATE include)
  target_link_libraries(example_${name} PRIVATE ovfile ovf_settings)
endforeach()
if(TARGET example_load_library)
  target_link_options(example_load_library PRIVATE -municode)
endif()
if(TARGET example_early_bound)
  target_link_options(example_early_bound PRIVATE -municode)
  target_include_directories(example_early_bound SYSTEM PRIVATE "${OVF_TYPE_LIBRARY_FOLDER}")
  add_dependencies(example_early_bound ovf_type_library)
endif()

# 32-bit programs are not run.
if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
  return()
endif()
set(table "${CMAKE_CURRENT_SOURCE_DIR}/samples/assays.ovt")
add_test(NAME example.read_column COMMAND example_read_column "${table}" FROM)
add_test(NAME example.late_bound COMMAND example_late_bound "${table}")
find_package(Python3 COMPONENTS Interpreter)
if(Python3_FOUND AND NOT WIN32 AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  add_test(NAME example.print_column
           COMMAND "${Python3_EXECUTABLE}" "${CMAKE_CURRENT_SOURCE_DIR}/docs/examples/print_column.py"
                   "$<TARGET_FILE:ovfile>" "${table}" 2)
endif()
if(TARGET example_load_library)
  add_test(NAME example.load_library COMMAND example_load_library "Z:${table}")
endif()
if(TARGET example_own_evaluator)
  add_dependencies(example_own_evaluator ovfilter)
  add_test(NAME example.own_evaluator COMMAND example_own_evaluator "Z:${table}" "FROM > 10")
  set_tests_properties(example.own_evaluator PROPERTIES PASS_REGULAR_EXPRESSION "^[1-9][0-9]*[\r\n]+$")
endif()
if(TARGET example_register)
  # Into a registry of its own.
  foreach(step registers unregisters)
    add_test(NAME example.${step} COMMAND example_register "$<TARGET_FILE:ovfile>" $<$<STREQUAL:${step},unregisters>:u>
             COMMAND_EXPAND_LISTS)
    set_tests_properties(example.${step} PROPERTIES RESOURCE_LOCK example_registry
                         ENVIRONMENT "OVFILE_REGISTRY=${CMAKE_BINARY_DIR}/run/example.reg")
  endforeach()
  set_tests_properties(example.unregisters PROPERTIES DEPENDS example.registers)
endif()
