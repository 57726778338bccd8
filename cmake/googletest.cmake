# GoogleTest as GTest::gtest and GTest::gtest_main, built from the distribution's sources, if they are
# installed, with our own toolchain and settings.
include(GoogleTest)
if(EXISTS /usr/src/googletest)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  set(gtest_force_shared_crt ON CACHE BOOL "" FORCE) # the run-time library that everything else has
  set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
else()
  find_package(GTest REQUIRED)
endif()
