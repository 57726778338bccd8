# What `cmake --install` gives, in four components:
#   runtime      the DLLs that programs ship, with the compiler's
#   development  headers, import libraries, the CMake package, the pkg-config file, the manifest, and how
#                debuggers show its objects
#   viewer       the page that shows a profile record, and its program for scripts
#   docs         the guide, and the examples as sources
# Each has the licence. Only the library must be built: what else is not there is left out, and the installation says so.
include(CheckCXXSourceCompiles)
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/kexlib)
set(data_folder ${CMAKE_INSTALL_DATADIR}/kexlib)

# kexlib_install_note(COMPONENT FILE LEVEL TARGET TEXT) says TEXT, as a message of that level, and how to build TARGET
# where its FILE is missing when the component is installed.
function(kexlib_install_note component file level target text)
  install(
    CODE "if(NOT EXISTS \"${file}\")
  message(${level} \" kexlib: ${text} it is not built: cmake --build ${PROJECT_BINARY_DIR} --target ${target}\")
endif()"
    COMPONENT ${component})
endfunction()

foreach(component runtime development)
  kexlib_install_note(${component} $<TARGET_FILE:kexlib> FATAL_ERROR kexlib "there is nothing to install, since")
endforeach()
foreach(component runtime development viewer docs)
  install(FILES LICENSE NOTICE.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT ${component})
endforeach()

# ---- runtime ----------------------------------------------------------------------------------------------------------

set_target_properties(kexframework PROPERTIES EXPORT_NAME framework)
install(
  TARGETS kexlib kexframework
  EXPORT kexlib_targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
get_property(runtime_dlls GLOBAL PROPERTY KEXLIB_RUNTIME_DLLS)
install(FILES ${runtime_dlls} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)

# ---- development ------------------------------------------------------------------------------------------------------

install(DIRECTORY include/kexlib DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
get_property(public_companions GLOBAL PROPERTY KEXLIB_PUBLIC_COMPANIONS)
foreach(companion IN LISTS public_companions)
  string(TOUPPER ${companion} name)
  if(NOT KEXLIB_${name}_LIBRARY)
    install(DIRECTORY ${KEXLIB_${name}_INCLUDE_DIR}/${companion} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
            COMPONENT development)
  endif()
endforeach()
if(NOT KEXLIB_HAS_ATL_AND_MFC) # the framework is our own: users compile against it too
  install(DIRECTORY framework/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kexlib/framework COMPONENT development)
endif()

# What the package was built with, for the header that tells others.
set(KEXLIB_PACKAGE_FOR_MINGW ${MINGW})
if(NOT KEXLIB_HAS_ATL_AND_MFC)
  set(KEXLIB_PACKAGE_WITH_FRAMEWORK ON)
endif()
if(MINGW)
  check_cxx_source_compiles("#include <cstddef>\n#ifndef _UCRT\n#error\n#endif\nint main() { return 0; }"
                            KEXLIB_PACKAGE_FOR_UCRT)
endif()
configure_file(cmake/package.h.in ${PROJECT_BINARY_DIR}/package/package.h)
install(FILES ${PROJECT_BINARY_DIR}/package/package.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/kexlib
        COMPONENT development)

install(
  EXPORT kexlib_targets
  FILE kexlib-targets.cmake
  NAMESPACE kexlib::
  DESTINATION ${package_folder}
  COMPONENT development)
set(runtime_dll_names)
foreach(dll IN LISTS runtime_dlls)
  cmake_path(GET dll FILENAME name)
  list(APPEND runtime_dll_names ${name})
endforeach()
string(JOIN " " runtime_dll_names ${runtime_dll_names})
set(package_dlls kexlib.dll)
if(NOT KEXLIB_HAS_ATL_AND_MFC)
  string(APPEND package_dlls " kexframework.dll")
endif()
configure_package_config_file(
  cmake/kexlib-config.cmake.in ${PROJECT_BINARY_DIR}/package/kexlib-config.cmake
  INSTALL_DESTINATION ${package_folder}
  PATH_VARS CMAKE_INSTALL_BINDIR
  NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
# What the package is for is checked by kexlib-config.cmake, which says it in a sentence.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/kexlib-config-version.cmake
                                 COMPATIBILITY SameMinorVersion ARCH_INDEPENDENT)
install(
  FILES ${PROJECT_BINARY_DIR}/package/kexlib-config.cmake ${PROJECT_BINARY_DIR}/package/kexlib-config-version.cmake
        cmake/requirements.cmake cmake/kexlib_programs.cmake cmake/program.manifest cmake/program.rc
  DESTINATION ${package_folder}
  COMPONENT development)

install(FILES packaging/debugging/kexlib.natvis packaging/debugging/kexlib_gdb.py DESTINATION ${data_folder} COMPONENT development)

if(MINGW)
  install(FILES cmake/mingw_w64.cmake DESTINATION ${data_folder} COMPONENT development)
  file(RELATIVE_PATH prefix_from_pkgconfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" prefix_from_pkgconfig ${prefix_from_pkgconfig})
  set(pkgconfig_framework -I\${includedir}/kexlib/framework)
  get_target_property(libraries kexframework INTERFACE_LINK_LIBRARIES)
  list(TRANSFORM libraries PREPEND -l)
  if(NOT KEXLIB_HAS_ATL_AND_MFC)
    list(PREPEND libraries -lkexframework)
  endif()
  string(JOIN " " pkgconfig_libraries ${libraries})
  configure_file(cmake/kexlib.pc.in ${PROJECT_BINARY_DIR}/package/kexlib.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package/kexlib.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
          COMPONENT development)
elseif(MSVC)
  install(FILES $<TARGET_PDB_FILE:kexlib> DESTINATION ${CMAKE_INSTALL_BINDIR} OPTIONAL COMPONENT development)
endif()

# ---- viewer -----------------------------------------------------------------------------------------------------------

set(viewer_page ${PROJECT_BINARY_DIR}/viewer/page/index.html)
if(KEXLIB_VIEWER)
  kexlib_install_note(viewer ${viewer_page} STATUS viewer "the profile viewer is left out, since")
  install(FILES ${viewer_page} DESTINATION ${data_folder} RENAME profile_viewer.html OPTIONAL COMPONENT viewer)
  install(FILES ${PROJECT_BINARY_DIR}/viewer/cli/profile_tool.mjs DESTINATION ${data_folder} OPTIONAL COMPONENT viewer)
else()
  install(CODE "message(STATUS \"kexlib: the profile viewer is left out, since KEXLIB_VIEWER is off\")" COMPONENT viewer)
endif()

# ---- docs -------------------------------------------------------------------------------------------------------------

install(DIRECTORY examples DESTINATION ${data_folder} COMPONENT docs)
install(
  CODE "set(source [[${PROJECT_SOURCE_DIR}]])
set(work [[${PROJECT_BINARY_DIR}/package]])
set(include_folder ${CMAKE_INSTALL_INCLUDEDIR})
set(data_folder ${data_folder})
set(docs_folder ${CMAKE_INSTALL_DOCDIR})
include([[${PROJECT_SOURCE_DIR}/cmake/install_guide.cmake]])"
  COMPONENT docs)
