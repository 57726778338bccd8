# ATL, WTL and MFC: the toolchain's own if it has them, otherwise the subset in framework/. In both cases the sources
# include the same headers and link kexlib::framework. Visual C++ never gets the subset, which would stand before the
# headers that its users have.
include(CheckCXXSourceCompiles)

find_path(KEXLIB_WTL_INCLUDE_DIR atlapp.h PATH_SUFFIXES wtl DOC "The folder that holds WTL's atlapp.h")
set(wtl_folder)
if(KEXLIB_WTL_INCLUDE_DIR) # otherwise the compiler may find it
  set(wtl_folder ${KEXLIB_WTL_INCLUDE_DIR})
endif()

set(CMAKE_REQUIRED_DEFINITIONS -D_AFXDLL)
set(CMAKE_REQUIRED_INCLUDES ${wtl_folder})
check_cxx_source_compiles("#include <afxwin.h>\n#include <atlwin.h>\nint main() { return 0; }" KEXLIB_HAS_ATL_AND_MFC)
check_cxx_source_compiles("#include <afxwin.h>\n#include <atlbase.h>\n#include <atlapp.h>\nint main() { return 0; }"
                          KEXLIB_HAS_WTL)
unset(CMAKE_REQUIRED_DEFINITIONS)
unset(CMAKE_REQUIRED_INCLUDES)

# The space before a text keeps it on one line. A failed search is repeated at the next configuration.
if(KEXLIB_HAS_ATL_AND_MFC AND NOT KEXLIB_HAS_WTL)
  unset(KEXLIB_HAS_WTL CACHE)
  message(FATAL_ERROR " kexlib needs WTL beside ATL and MFC: get WTL 9.1 or 10 from https://wtl.sourceforge.io, or by "
                      "\"vcpkg install wtl\", and configure with -DKEXLIB_WTL_INCLUDE_DIR=FOLDER, the folder that holds "
                      "atlapp.h.")
endif()
if(MSVC AND NOT CMAKE_CROSSCOMPILING AND NOT KEXLIB_HAS_ATL_AND_MFC)
  unset(KEXLIB_HAS_ATL_AND_MFC CACHE)
  message(FATAL_ERROR " kexlib needs ATL and MFC: add the components \"C++ ATL\" and \"C++ MFC\" for your build tools with "
                      "the Visual Studio Installer.")
endif()
if(KEXLIB_WTL_INCLUDE_DIR AND NOT KEXLIB_HAS_ATL_AND_MFC)
  message(FATAL_ERROR " A real WTL does not go with kexlib's subset of ATL and MFC, and this compiler has no others: "
                      "configure with -DKEXLIB_WTL_INCLUDE_DIR= to build on the subset.")
endif()

if(KEXLIB_HAS_ATL_AND_MFC)
  add_library(kexframework INTERFACE)
  add_library(kexlib::framework ALIAS kexframework)
  target_compile_definitions(kexframework INTERFACE _AFXDLL)
  # Users of an installed kexlib have WTL in a folder of their own.
  target_include_directories(kexframework SYSTEM INTERFACE $<BUILD_INTERFACE:${wtl_folder}>)
  target_link_libraries(kexframework INTERFACE atls comctl32)
else()
  add_subdirectory(framework)
endif()
