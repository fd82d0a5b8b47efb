# Tests of what was built, not of what it does: exported names, libraries needed, resources; and that
# each public header compiles when a host includes nothing before it.

if(TARGET ovfile)
  add_test(NAME artifact.library
           COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/tools/check_library.sh" "${CMAKE_SYSTEM_NAME}"
                   "$<TARGET_FILE:ovfile>" "${CMAKE_CURRENT_SOURCE_DIR}/src/server" "${CMAKE_CXX_FLAGS}")
endif()

list(TRANSFORM OVF_DEFINITIONS PREPEND -D OUTPUT_VARIABLE definitions)
file(GLOB headers CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/include/ovfile/*.h")
foreach(header ${headers})
  get_filename_component(name "${header}" NAME)
  add_test(NAME public_header.${name}
           COMMAND "${CMAKE_CXX_COMPILER}" -std=c++20 ${OVF_WARNINGS} ${definitions} -fsyntax-only
                   -I "${CMAKE_CURRENT_SOURCE_DIR}/include" -include "ovfile/${name}" -x c++ /dev/null)
endforeach()
