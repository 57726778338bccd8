# What every target of this project is built with, and what its programs need beside them.

# Compiler settings of our own code. They are not part of the targets' interface for users.
add_library(kexlib_settings INTERFACE)
target_compile_features(kexlib_settings INTERFACE cxx_std_20)
if(MSVC)
  # CMake's own /EHsc says that functions with C linkage throw nothing. SendMessage and its like throw what a window
  # procedure throws: with /EHsc such an exception would pass a noexcept, and skip destructors on its way.
  string(REPLACE "/EHsc" "" CMAKE_CXX_FLAGS "${CMAKE_CXX_FLAGS}")
  target_compile_options(kexlib_settings INTERFACE /EHs)
  # C4324 reports that an aligned class is padded.
  target_compile_options(kexlib_settings INTERFACE /W4 $<$<BOOL:${KEXLIB_WARNINGS_AS_ERRORS}>:/WX> /wd4324 /permissive- /utf-8 /Zc:__cplusplus)
  target_compile_definitions(kexlib_settings INTERFACE _CRT_SECURE_NO_WARNINGS)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang") # what else breaks the rules of Visual C++
    target_compile_options(
      kexlib_settings INTERFACE -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wundef -Wmicrosoft
                                -Wdllexport-explicit-instantiation-decl -Wnon-gcc
                                # ATL's message maps override without the word; MFC has a VARTYPE before its dots.
                                -Wno-inconsistent-missing-override -Wno-varargs)
  endif()
else()
  # The texts of assertions name a source by its place in the project, not on the machine that compiled it.
  target_compile_options(kexlib_settings INTERFACE -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=)
  target_compile_options(
    kexlib_settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
                              -Wold-style-cast -Wundef -fvisibility=hidden
                              $<$<BOOL:${KEXLIB_WARNINGS_AS_ERRORS}>:-Werror>)
endif()
if(WIN32)
  target_compile_definitions(kexlib_settings INTERFACE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00 WINVER=0x0A00)
endif()
target_include_directories(kexlib_settings INTERFACE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)

# mingw's run-time libraries are copied beside the programs, where the loader looks first.
kexlib_compiler_dlls(runtime_dlls)
foreach(path IN LISTS runtime_dlls)
  if(path MATCHES "-NOTFOUND") # the space before the text keeps it on one line
    string(REPLACE "-NOTFOUND" "" name ${path})
    message(FATAL_ERROR " The compiler's ${name} is not found: kexlib needs GCC of mingw-w64 with posix threads.")
  endif()
  file(COPY ${path} DESTINATION ${PROJECT_BINARY_DIR}/bin)
endforeach()
set_property(GLOBAL PROPERTY KEXLIB_RUNTIME_DLLS ${runtime_dlls})

# Every program carries the manifest for version 6 of the common controls, except those with the property
# KEXLIB_WITHOUT_MANIFEST.
if(WIN32)
  set(is_program $<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>)
  set(wants_manifest $<NOT:$<BOOL:$<TARGET_PROPERTY:KEXLIB_WITHOUT_MANIFEST>>>)
  kexlib_manifest(manifest)
  target_sources(kexlib_settings INTERFACE $<$<AND:${is_program},${wants_manifest}>:${manifest}>)
  target_include_directories(kexlib_settings INTERFACE ${PROJECT_SOURCE_DIR}/cmake) # where resource compilers look for it
endif()

# kexlib_loaded_module(NAME [FOLDER]) puts the DLL of a module library into the programs' folder, or into a folder in it,
# with every generator.
function(kexlib_loaded_module name)
  cmake_path(APPEND CMAKE_RUNTIME_OUTPUT_DIRECTORY ${ARGN} OUTPUT_VARIABLE folder)
  # To a generator expression no generator appends the configuration.
  set_target_properties(${name} PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY $<1:${folder}>)
endfunction()
