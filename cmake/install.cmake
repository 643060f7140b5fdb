# What `cmake --install` puts in place: headers, both libraries, the program with its manual page and
# bash completion, the CMake package and nimbara.pc.
include(CMakePackageConfigHelpers)

set(NIMBARA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/nimbara)
install(TARGETS nimbara nimbara_static nimbara_c EXPORT nimbaraTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(NIMBARA_BUILD_PROGRAM)
  install(TARGETS nimbara_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${CMAKE_BINARY_DIR}/share/man/man1/nimbara.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${CMAKE_BINARY_DIR}/share/bash-completion/completions/nimbara
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endif()
install(DIRECTORY include/nimbara DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${NIMBARA_GENERATED_INCLUDE}/nimbara/version.hpp DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/nimbara)

install(EXPORT nimbaraTargets NAMESPACE nimbara:: DESTINATION ${NIMBARA_CMAKE_DIR})
configure_package_config_file(cmake/nimbaraConfig.cmake.in ${CMAKE_BINARY_DIR}/nimbaraConfig.cmake
  INSTALL_DESTINATION ${NIMBARA_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/nimbaraConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/nimbaraConfig.cmake ${CMAKE_BINARY_DIR}/nimbaraConfigVersion.cmake
  DESTINATION ${NIMBARA_CMAKE_DIR})

# pkg-config: the shared library by default, the static one's third-party libraries with --static.
set(NIMBARA_PC_REQUIRES_PRIVATE "sqlite3")
# A static host finds the modules through its own RUNPATH.
set(NIMBARA_PC_LIBS_PRIVATE "-lzint -l${CMAKE_DL_LIBS} -Wl,-rpath,\${libdir}/nimbara")
configure_file(cmake/nimbara.pc.in ${CMAKE_BINARY_DIR}/nimbara.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/nimbara.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
# The C interface for hosts without CMake: only the include folder and the one library.
configure_file(cmake/nimbara_c.pc.in ${CMAKE_BINARY_DIR}/nimbara_c.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/nimbara_c.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The JSON Schemas of the Guia file and the client file, for editors and for hosts that check first.
install(DIRECTORY data/schema/ DESTINATION ${CMAKE_INSTALL_DATADIR}/nimbara/schema)
