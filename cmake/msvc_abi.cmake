# Cross-building for 64-bit Windows with the ABI of Visual C++: clang-cl, lld-link and libc++, on Wine's headers and import
# libraries. scripts/msvc_abi.sh makes what this file names; cmake/msvc_abi has our own part of it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

cmake_path(SET msvc_abi_tools NORMALIZE ${CMAKE_CURRENT_LIST_DIR}/../build/msvc-abi-tools)
set(llvm /usr/lib/llvm-19)
set(CMAKE_C_COMPILER ${msvc_abi_tools}/bin/clang-cl)
set(CMAKE_CXX_COMPILER ${msvc_abi_tools}/bin/clang-cl)
set(CMAKE_LINKER ${llvm}/bin/lld-link)
set(CMAKE_AR ${llvm}/bin/llvm-lib)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres) # llvm-rc knows no code_page(65001)
set(CMAKE_RC_FLAGS_INIT --output-format=res) # the linker merges any number of those, but takes one such object only
set(CMAKE_MT ${llvm}/bin/llvm-mt)

# The order matters: each folder's headers include the next one's. libc++ must stand before the compiler's own headers.
set(wine ${msvc_abi_tools}/root/usr/include/wine/wine)
set(flags "--target=x86_64-pc-windows-msvc19.42 /X -nobuiltininc")
foreach(folder ${CMAKE_CURRENT_LIST_DIR}/msvc_abi/include_cxx ${msvc_abi_tools}/root${llvm}/include/c++/v1
               ${CMAKE_CURRENT_LIST_DIR}/msvc_abi/include ${msvc_abi_tools}/include ${llvm}/lib/clang/19/include
               ${wine}/msvcrt ${wine}/windows)
  string(APPEND flags " -imsvc ${folder}")
endforeach()
# Wine's headers: the universal run-time library, and wchar_t as the type of wide text. libc++: the static library.
string(APPEND flags " -D_UCRT -DWINE_UNICODE_NATIVE -D_HAS_EXCEPTIONS=1 -D_LIBCPP_DISABLE_VISIBILITY_ANNOTATIONS")
# Those of Windows choose the newest version by themselves.
string(APPEND flags " -D_WIN32_WINNT=0x0A00 -DWINVER=0x0A00")
string(APPEND flags " /GS-") # the mingw-w64 build has no check of the stack either
set(CMAKE_C_FLAGS_INIT "${flags}")
set(CMAKE_CXX_FLAGS_INIT "${flags}")

# The compiler asks for oldnames.lib, which has nothing that is used here. Manifests are resources (cmake/program.rc).
foreach(kind EXE SHARED MODULE)
  set(CMAKE_${kind}_LINKER_FLAGS_INIT "/libpath:${msvc_abi_tools}/lib /nodefaultlib:oldnames /manifest:no")
endforeach()
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " /entry:mainCRTStartup") # some library has a wmain too

# There is no run-time library for the debugger, and nothing that links incrementally.
set(CMAKE_TRY_COMPILE_CONFIGURATION Release)

set(CMAKE_FIND_ROOT_PATH ${msvc_abi_tools} ${CMAKE_PREFIX_PATH})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../scripts/wine-run)
