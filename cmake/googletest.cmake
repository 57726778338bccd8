# GoogleTest as GTest::gtest and GTest::gtest_main: from a folder with its sources, built with our own toolchain and
# settings, or as a package, vcpkg's for example.
include(GoogleTest)
if(EXISTS /usr/src/googletest)
  set(googletest_of_debian /usr/src/googletest)
endif()
set(KEXLIB_GOOGLETEST_FOLDER "${googletest_of_debian}" CACHE PATH "GoogleTest's sources; empty: the package is used")
if(KEXLIB_GOOGLETEST_FOLDER)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
  set(gtest_force_shared_crt ON CACHE BOOL "" FORCE) # the run-time library that everything else has
  add_subdirectory(${KEXLIB_GOOGLETEST_FOLDER} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
else()
  find_package(GTest CONFIG QUIET)
  if(NOT GTest_FOUND) # the space before the text keeps it on one line
    message(FATAL_ERROR " The tests need GoogleTest: name the folder with its sources by -DKEXLIB_GOOGLETEST_FOLDER=FOLDER, "
                        "use vcpkg's toolchain file, or configure with -DKEXLIB_BUILD_TESTS=OFF.")
  endif()
endif()
