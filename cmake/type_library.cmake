# The type library, compiled from src/server/OvFileLib.idl, and the resources that carry it. The same
# compiler makes the header that a C++ host generates for itself, in OVF_TYPE_LIBRARY_FOLDER.
if(NOT WIN32)
  return()
endif()

find_program(OVF_WIDL ${OVF_TRIPLET}-widl REQUIRED)
# What it imports: the automation interfaces, and the type library that describes them.
find_path(OVF_IDL_INCLUDE oaidl.idl PATHS /usr/include/wine/wine/windows /usr/include/wine/windows
          NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
find_path(OVF_STANDARD_TYPES stdole2.tlb NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED
          PATHS /usr/lib/x86_64-linux-gnu/wine/x86_64-windows /usr/lib/wine/x86_64-windows)

set(OVF_TYPE_LIBRARY_FOLDER "${CMAKE_BINARY_DIR}/type_library")
file(MAKE_DIRECTORY "${OVF_TYPE_LIBRARY_FOLDER}")
set(idl "${CMAKE_CURRENT_SOURCE_DIR}/src/server/OvFileLib.idl")
math(EXPR bits "8 * ${CMAKE_SIZEOF_VOID_P}")
set(widl "${OVF_WIDL}" -m${bits} -I "${OVF_IDL_INCLUDE}")

# It makes one kind of output a call.
set(tlb "${OVF_TYPE_LIBRARY_FOLDER}/OvFileLib.tlb")
set(header "${OVF_TYPE_LIBRARY_FOLDER}/OvFileLib.h")
add_custom_command(OUTPUT "${tlb}" "${header}" DEPENDS "${idl}" VERBATIM
                   COMMAND ${widl} -L "${OVF_STANDARD_TYPES}" -t -o "${tlb}" "${idl}"
                   COMMAND ${widl} -h -o "${header}" "${idl}")
add_custom_target(ovf_type_library DEPENDS "${tlb}" "${header}")

# The version that both modules carry.
string(REPLACE "." "," numbers "${PROJECT_VERSION}.0")
file(CONFIGURE OUTPUT "${OVF_TYPE_LIBRARY_FOLDER}/module_version.h" @ONLY NEWLINE_STYLE UNIX CONTENT
"#define OVFILE_VERSION_NUMBERS @numbers@
#define OVFILE_VERSION_TEXT \"@PROJECT_VERSION@\\0\"
")
set_source_files_properties("${CMAKE_CURRENT_SOURCE_DIR}/src/filter/ovfilter.rc" PROPERTIES
                            INCLUDE_DIRECTORIES "${OVF_TYPE_LIBRARY_FOLDER}"
                            OBJECT_DEPENDS "${OVF_TYPE_LIBRARY_FOLDER}/module_version.h")

set(OVF_RESOURCES "${CMAKE_CURRENT_SOURCE_DIR}/src/server/ovfile.rc")
set_source_files_properties("${OVF_RESOURCES}" PROPERTIES
                            INCLUDE_DIRECTORIES "${CMAKE_CURRENT_SOURCE_DIR}/src;${OVF_TYPE_LIBRARY_FOLDER}"
                            OBJECT_DEPENDS "${tlb};${OVF_TYPE_LIBRARY_FOLDER}/module_version.h")

# The library's resources: messages, type library, version.
function(ovf_add_resources target)
  target_sources(${target} PRIVATE "${OVF_RESOURCES}")
  add_dependencies(${target} ovf_type_library)
endfunction()
