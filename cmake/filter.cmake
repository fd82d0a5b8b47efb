# The filter evaluator: a module of its own, which hosts (the library among them) find by its class
# identifier. Its tests and fuzz target link the parts without the entry points, target ovf_filter.
ovf_sources(files src/filter)
if(NOT TARGET ovfile)
  return()
endif()
list(FILTER files EXCLUDE REGEX "/entry_points\\.cpp$")
add_library(ovf_filter STATIC ${files})
target_include_directories(ovf_filter PUBLIC include src)
target_link_libraries(ovf_filter PUBLIC ovf_settings)
ovf_may_unite(ovf_filter)

set(filter "${CMAKE_CURRENT_SOURCE_DIR}/src/filter")
add_library(ovfilter MODULE "${filter}/entry_points.cpp" $<TARGET_OBJECTS:ovf_filter>)
target_include_directories(ovfilter PRIVATE include src)
target_link_libraries(ovfilter PRIVATE ovf_settings)

include(GNUInstallDirs)
if(WIN32)
  set_target_properties(ovfilter PROPERTIES OUTPUT_NAME OvFilter PREFIX "")
  target_sources(ovfilter PRIVATE "${filter}/ovfilter.def" "${filter}/ovfilter.rc")
  install(TARGETS ovfilter DESTINATION "${CMAKE_INSTALL_BINDIR}")
else()
  # The component runtime is the library's.
  target_link_libraries(ovfilter PRIVATE ovfile)
  set_target_properties(ovfilter PROPERTIES INSTALL_RPATH "$ORIGIN" LINK_DEPENDS "${filter}/ovfilter.map")
  target_link_options(ovfilter PRIVATE "-Wl,--version-script=${filter}/ovfilter.map"
                      -Wl,-Bsymbolic-functions)
  if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    target_link_options(ovfilter PRIVATE -Wl,--no-undefined)
  endif()
  # Beside the library, which looks there for classes that are not its own.
  configure_file("${filter}/ovfile-components.reg"
                 "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/ovfile-components.reg" COPYONLY)
  install(TARGETS ovfilter DESTINATION "${CMAKE_INSTALL_LIBDIR}")
  install(FILES "${filter}/ovfile-components.reg" DESTINATION "${CMAKE_INSTALL_LIBDIR}")
endif()

if(TARGET ovfile_command)
  add_dependencies(ovfile_command ovfilter)
endif()

add_test(NAME artifact.filter
         COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/tools/check_library.sh" "${CMAKE_SYSTEM_NAME}"
                 "$<TARGET_FILE:ovfilter>" "${filter}" "${CMAKE_CXX_FLAGS}")
