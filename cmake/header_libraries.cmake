# Header-only libraries from Debian that both systems use. A folder of links shows the compiler these
# headers and nothing else of /usr/include, which a cross compiler must not see.

set(links "${CMAKE_BINARY_DIR}/header_libraries")
file(MAKE_DIRECTORY "${links}")
foreach(name CLI fmt nlohmann fast_float)
  find_path(OVF_${name}_PARENT "${name}" PATHS /usr/include /usr/local/include
            NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(NOT OVF_${name}_PARENT)
    message(FATAL_ERROR "The headers of ${name} are missing; ./check installs them.")
  endif()
  file(CREATE_LINK "${OVF_${name}_PARENT}/${name}" "${links}/${name}" SYMBOLIC)
endforeach()

add_library(ovf_header_libraries INTERFACE)
target_include_directories(ovf_header_libraries SYSTEM INTERFACE "${links}")
