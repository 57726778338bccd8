# Cross-building for 64-bit Windows with mingw-w64, posix threads.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# Libraries, headers and packages are those for Windows: the compiler's, and those of CMAKE_PREFIX_PATH.
cmake_path(CONVERT "$ENV{CMAKE_PREFIX_PATH}" TO_CMAKE_PATH_LIST prefixes)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${CMAKE_PREFIX_PATH} ${prefixes})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

if(EXISTS ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run) # not in an installed package
  set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run)
endif()

# Debuggers for Windows programs read DWARF 4 at most.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO_INIT "-gdwarf-4")
set(CMAKE_CXX_FLAGS_DEBUG_INIT "-gdwarf-4")
