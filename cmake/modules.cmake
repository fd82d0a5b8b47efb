# The modules, from the ground up, the shared library made of them, and the command. A module whose
# folder is still empty is left out.

set(OVF_MODULES "")

function(ovf_add_module name)
  ovf_sources(files "src/${name}")
  if(NOT files)
    return()
  endif()
  add_library(ovf_${name} STATIC ${files})
  target_include_directories(ovf_${name} PUBLIC include src)
  target_link_libraries(ovf_${name} PUBLIC ovf_settings)
  ovf_may_unite(ovf_${name})
  set(OVF_MODULES ${OVF_MODULES} ${name} PARENT_SCOPE)
endfunction()

# Each of these instantiates what it defines of the class, which one compilation can do but once.
file(GLOB alone CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/src/engine/row_store_*.cpp")
# And this one needs the library's entry point, which programs that link only some modules lack.
list(APPEND alone "${CMAKE_CURRENT_SOURCE_DIR}/src/platform/class_lookup_linux.cpp")
set_source_files_properties(${alone} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)

foreach(module base platform storage engine schema table stream server)
  ovf_add_module(${module})
endforeach()

# Links the modules named (those that exist) into a target. The classes and server/ know each other
# (error reports, tables of methods), so the linker looks through the whole group.
function(ovf_link_modules target)
  set(libraries "")
  foreach(module ${ARGN})
    if(module IN_LIST OVF_MODULES)
      list(APPEND libraries ovf_${module})
    endif()
  endforeach()
  if(libraries)
    list(JOIN libraries "," group)
    target_link_libraries(${target} PRIVATE "$<LINK_GROUP:RESCAN,${group}>")
  endif()
endfunction()

# The shared library takes every object of the modules, also those that nobody calls by name.
if("server" IN_LIST OVF_MODULES)
  set(objects "")
  foreach(module ${OVF_MODULES})
    list(APPEND objects $<TARGET_OBJECTS:ovf_${module}>)
  endforeach()
  add_library(ovfile SHARED ${objects})
  set_target_properties(ovfile PROPERTIES LINKER_LANGUAGE CXX)
  target_include_directories(ovfile INTERFACE include)
  target_link_libraries(ovfile PRIVATE ovf_settings)

  set(server "${CMAKE_CURRENT_SOURCE_DIR}/src/server")
  if(WIN32)
    set_target_properties(ovfile PROPERTIES OUTPUT_NAME OvFile PREFIX "")
    target_sources(ovfile PRIVATE "${server}/ovfile.def")
    ovf_add_resources(ovfile)
  else()
    set_target_properties(ovfile PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    if(EXISTS "${server}/ovfile.map")
      target_link_options(ovfile PRIVATE "-Wl,--version-script=${server}/ovfile.map")
      set_target_properties(ovfile PROPERTIES LINK_DEPENDS "${server}/ovfile.map")
    endif()
    # The library's own calls reach its own functions, also in a process that loaded a component with
    # entry points of the same names.
    target_link_options(ovfile PRIVATE -Wl,-Bsymbolic-functions)
    # The sanitizers' functions come with the program that loads the library.
    if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
      target_link_options(ovfile PRIVATE -Wl,--no-undefined)
    endif()
  endif()
endif()

# The command is a host like any other: published headers and the shared library, and the seam to the system. All of
# it but main() is a library, for its tests.
ovf_sources(files src/command src/command/duckdb src/command/sql src/command/parquet src/command/verify)
if(files AND TARGET ovfile)
  set(main "${CMAKE_CURRENT_SOURCE_DIR}/src/command/main.cpp")
  list(REMOVE_ITEM files "${main}")
  add_library(ovf_command STATIC ${files})
  target_include_directories(ovf_command PUBLIC src/command)
  set_source_files_properties(src/command/program.cpp PROPERTIES
                              COMPILE_DEFINITIONS "OVFILE_VERSION=\"${PROJECT_VERSION}\"")
  # The option parser is large, and a few microseconds of a start are nothing.
  set_source_files_properties(src/command/arguments.cpp PROPERTIES COMPILE_OPTIONS "$<$<CONFIG:Release>:-O1>")
  # The library before the system's, some of which have a DllGetClassObject too.
  target_link_libraries(ovf_command PUBLIC ovfile ovf_base ovf_settings ovf_header_libraries)
  ovf_may_unite(ovf_command)

  add_executable(ovfile_command "${main}")
  set_target_properties(ovfile_command PROPERTIES OUTPUT_NAME ovfile)
  target_link_libraries(ovfile_command PRIVATE ovf_command)
endif()
