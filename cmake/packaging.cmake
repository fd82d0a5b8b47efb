# What `cmake --install` puts where, and the packages: a Debian package, a zip for Windows. `./package`
# makes both.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Named as the package is, unless whoever builds says otherwise.
if(NOT "$CACHE{CMAKE_INSTALL_DOCDIR}" STREQUAL "")
  set(CMAKE_INSTALL_DOCDIR "$CACHE{CMAKE_INSTALL_DOCDIR}")
elseif(WIN32)
  set(CMAKE_INSTALL_DOCDIR "docs")
else()
  set(CMAKE_INSTALL_DOCDIR "${CMAKE_INSTALL_DATAROOTDIR}/doc/libovfile")
endif()

if(NOT TARGET ovfile OR NOT TARGET ovfile_command)
  return()
endif()

# A package is made of what it holds; the tests need not be built for it.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

set(packaging "${CMAKE_CURRENT_SOURCE_DIR}/packaging")
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/OvFile")

set_target_properties(ovfile PROPERTIES EXPORT_NAME OvFile)
set_property(TARGET ovfile PROPERTY INTERFACE_INCLUDE_DIRECTORIES
             "$<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>"
             "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>")
target_compile_features(ovfile INTERFACE cxx_std_20)

install(TARGETS ovfile EXPORT OvFileTargets)
install(TARGETS ovfile_command)
install(DIRECTORY include/ovfile TYPE INCLUDE)
install(EXPORT OvFileTargets NAMESPACE OvFile:: DESTINATION "${package_folder}")
configure_package_config_file("${packaging}/OvFileConfig.cmake.in"
                              "${CMAKE_CURRENT_BINARY_DIR}/OvFileConfig.cmake"
                              INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file("${CMAKE_CURRENT_BINARY_DIR}/OvFileConfigVersion.cmake"
                                 COMPATIBILITY SameMinorVersion)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/OvFileConfig.cmake"
              "${CMAKE_CURRENT_BINARY_DIR}/OvFileConfigVersion.cmake" DESTINATION "${package_folder}")
install(FILES CHANGELOG.md docs/command.md docs/data-tools.md docs/filters.md docs/hosts.md
        DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY docs/examples DESTINATION "${CMAKE_INSTALL_DOCDIR}")

set(CPACK_PACKAGE_NAME "libovfile")
set(CPACK_PACKAGE_VENDOR "OvFile")
set(CPACK_PACKAGE_CONTACT "OvFile <ovfile@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_RESOURCE_FILE_LICENSE "${CMAKE_CURRENT_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGE_DIRECTORY "${CMAKE_BINARY_DIR}/packages")
set(CPACK_STRIP_FILES ON)

if(WIN32)
  # The library lies beside the programs. The 64-bit package has the 32-bit modules too, when they are
  # there: 32-bit hosts, a 32-bit Excel among them, load no others.
  set(CPACK_GENERATOR ZIP)
  set(OVFILE_32_BIT_FOLDER "" CACHE PATH "Where OvFile.dll and OvFilter.dll for 32-bit hosts lie")
  install(FILES LICENSE RENAME LICENSE.txt DESTINATION ".")
  install(FILES "${OVF_TYPE_LIBRARY_FOLDER}/OvFileLib.tlb" "${OVF_TYPE_LIBRARY_FOLDER}/OvFileLib.h"
          DESTINATION "type_library")
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(CPACK_PACKAGE_FILE_NAME "ovfile-${PROJECT_VERSION}-windows-x64")
    install(FILES "${packaging}/HOWTO-windows.txt" DESTINATION ".")
    if(OVFILE_32_BIT_FOLDER)
      install(PROGRAMS "${OVFILE_32_BIT_FOLDER}/OvFile.dll" "${OVFILE_32_BIT_FOLDER}/OvFilter.dll"
              DESTINATION "bin32" OPTIONAL)
    endif()
  else()
    set(CPACK_PACKAGE_FILE_NAME "ovfile-${PROJECT_VERSION}-windows-x86")
  endif()
else()
  set_target_properties(ovfile_command PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  # The package's description of itself lies in the library folder, wherever that is.
  set(described "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig")
  file(RELATIVE_PATH to_prefix "${described}" "${CMAKE_INSTALL_PREFIX}")
  file(RELATIVE_PATH to_includes "${described}" "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
  install(FILES LICENSE RENAME copyright DESTINATION "${CMAKE_INSTALL_DOCDIR}")
  configure_file("${packaging}/ovfile.pc.in" "${CMAKE_CURRENT_BINARY_DIR}/ovfile.pc" @ONLY)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/ovfile.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
  configure_file("${packaging}/ovfile.1.in" "${CMAKE_CURRENT_BINARY_DIR}/ovfile.1" @ONLY)
  install(FILES "${CMAKE_CURRENT_BINARY_DIR}/ovfile.1" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
  install(FILES "${packaging}/ovfile.bash" RENAME ovfile
          DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION "libs")
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${packaging}/triggers")
endif()
include(CPack)

if(WIN32 AND OVFILE_TESTS AND CMAKE_CROSSCOMPILING_EMULATOR)
  add_test(NAME package.zip
           COMMAND "${packaging}/consumer/check_zip.sh" "${CMAKE_COMMAND}" "${CMAKE_BINARY_DIR}"
                   "${CMAKE_TOOLCHAIN_FILE}" ${CMAKE_CROSSCOMPILING_EMULATOR})
  set_tests_properties(package.zip PROPERTIES TIMEOUT 300)
endif()
if(NOT WIN32 AND OVFILE_TESTS AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  add_test(NAME package.debian
           COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/packaging/consumer/check_package.sh" "${CMAKE_COMMAND}"
                   "${CMAKE_BINARY_DIR}" "${CMAKE_CXX_COMPILER}")
  set_tests_properties(package.debian PROPERTIES TIMEOUT 300)
endif()
