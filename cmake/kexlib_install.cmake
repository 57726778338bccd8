# The installed package: find_package(kexlib CONFIG) gives kexlib::kexlib.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

install(
  TARGETS kexlib
  EXPORT kexlib_targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kexlib DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(NOT KEXLIB_BZBASE_LIBRARY)
  install(DIRECTORY ${KEXLIB_BZBASE_INCLUDE_DIR}/bzbase DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/kexlib)
install(
  EXPORT kexlib_targets
  FILE kexlib-config.cmake
  NAMESPACE kexlib::
  DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kexlib-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kexlib-config-version.cmake DESTINATION ${package_folder})
