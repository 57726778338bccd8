# The installed package: find_package(kexlib CONFIG) gives kexlib::kexlib.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

# If the framework is our own, users compile against it too.
set_target_properties(kexframework PROPERTIES EXPORT_NAME framework)
if(NOT KEXLIB_HAS_ATL_AND_MFC)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/framework/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kexlib/framework)
endif()
install(
  TARGETS kexlib kexframework
  EXPORT kexlib_targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kexlib DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
get_property(public_companions GLOBAL PROPERTY KEXLIB_PUBLIC_COMPANIONS)
foreach(companion IN LISTS public_companions)
  string(TOUPPER ${companion} name)
  if(NOT KEXLIB_${name}_LIBRARY)
    install(DIRECTORY ${KEXLIB_${name}_INCLUDE_DIR}/${companion} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  endif()
endforeach()

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/kexlib)
install(
  EXPORT kexlib_targets
  FILE kexlib-config.cmake
  NAMESPACE kexlib::
  DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kexlib-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kexlib-config-version.cmake DESTINATION ${package_folder})
