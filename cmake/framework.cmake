# ATL, WTL and MFC: the toolchain's own if it has them, otherwise the subset in framework/. In both cases the sources
# include the same headers and link kexlib::framework.
include(CheckCXXSourceCompiles)

set(CMAKE_REQUIRED_DEFINITIONS -D_AFXDLL)
check_cxx_source_compiles("#include <afxwin.h>\n#include <atlwin.h>\nint main() { return 0; }" KEXLIB_HAS_ATL_AND_MFC)
check_cxx_source_compiles("#include <afxwin.h>\n#include <atlbase.h>\n#include <atlapp.h>\nint main() { return 0; }"
                          KEXLIB_HAS_WTL)
unset(CMAKE_REQUIRED_DEFINITIONS)

if(KEXLIB_HAS_ATL_AND_MFC AND KEXLIB_HAS_WTL)
  add_library(framework INTERFACE)
  add_library(kexlib::framework ALIAS framework)
  target_compile_definitions(framework INTERFACE _AFXDLL)
  target_link_libraries(framework INTERFACE atls comctl32)
else()
  add_subdirectory(framework)
endif()
