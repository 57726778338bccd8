# What kexlib needs of a compiler and its settings, for the project itself and for users of the installed package.
# include/kexlib/export.h says the same, for other build systems. KEXLIB_REFUSAL is the sentence for what is missing, or
# empty.
set(KEXLIB_REFUSAL "")
if(NOT WIN32)
  set(KEXLIB_REFUSAL "kexlib is for 64-bit Windows: choose a compiler for it, by the package's toolchain file "
                     "mingw_w64.cmake for example.")
elseif(NOT CMAKE_SIZEOF_VOID_P EQUAL 8)
  set(KEXLIB_REFUSAL "kexlib is for 64-bit Windows: choose the platform x64 and its compiler.")
elseif(NOT cxx_std_20 IN_LIST CMAKE_CXX_COMPILE_FEATURES)
  set(KEXLIB_REFUSAL "kexlib needs a compiler for C++20, which ${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION} "
                     "is not.")
else()
  get_directory_property(kexlib_definitions COMPILE_DEFINITIONS)
  string(TOUPPER "${CMAKE_BUILD_TYPE}" kexlib_build_type)
  if("${kexlib_definitions};${CMAKE_CXX_FLAGS} ${CMAKE_CXX_FLAGS_${kexlib_build_type}}"
     MATCHES "(^|;|[/-]D *)_?UNICODE($|[; =])")
    set(KEXLIB_REFUSAL "The texts of kexlib are narrow: build without UNICODE and _UNICODE.")
  endif()
endif()
list(JOIN KEXLIB_REFUSAL "" KEXLIB_REFUSAL)
