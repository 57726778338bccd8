# What every target of this project is built with, and the run-time libraries that its programs need beside them.

# Compiler settings of our own code. They are not part of the targets' interface for users.
add_library(kexlib_settings INTERFACE)
target_compile_features(kexlib_settings INTERFACE cxx_std_20)
if(MSVC)
  # C4324 reports that an aligned class is padded.
  target_compile_options(kexlib_settings INTERFACE /W4 /WX /wd4324 /permissive- /utf-8 /Zc:__cplusplus)
  target_compile_definitions(kexlib_settings INTERFACE _CRT_SECURE_NO_WARNINGS)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang") # what else breaks the rules of Visual C++
    target_compile_options(
      kexlib_settings INTERFACE -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wundef -Wmicrosoft
                                -Wdllexport-explicit-instantiation-decl -Wnon-gcc
                                # ATL's message maps override without the word; MFC has a VARTYPE before its dots.
                                -Wno-inconsistent-missing-override -Wno-varargs)
  endif()
else()
  target_compile_options(
    kexlib_settings INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
                              -Wold-style-cast -Wundef -Werror -fvisibility=hidden)
endif()
if(WIN32)
  target_compile_definitions(kexlib_settings INTERFACE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00 WINVER=0x0A00)
endif()
target_include_directories(kexlib_settings INTERFACE ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)

# mingw's run-time libraries are copied beside the programs, where the loader looks first.
if(MINGW)
  set(runtime_libraries)
  foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(
      COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
      OUTPUT_VARIABLE path
      OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT IS_ABSOLUTE "${path}")
      set(path /usr/x86_64-w64-mingw32/lib/${name})
    endif()
    list(APPEND runtime_libraries ${path})
  endforeach()
  foreach(path IN LISTS runtime_libraries)
    file(COPY ${path} DESTINATION ${PROJECT_BINARY_DIR}/bin)
  endforeach()
endif()

# Every program carries the manifest for version 6 of the common controls, except those with the property
# KEXLIB_WITHOUT_MANIFEST. It is a resource, or a part of the manifest that Visual Studio's linker makes: a program
# cannot have both.
if(WIN32)
  set(is_program $<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>)
  set(wants_manifest $<NOT:$<BOOL:$<TARGET_PROPERTY:KEXLIB_WITHOUT_MANIFEST>>>)
  set(manifest program.rc)
  if(MSVC AND NOT CMAKE_CROSSCOMPILING)
    set(manifest program.manifest)
  endif()
  target_sources(kexlib_settings
                 INTERFACE $<$<AND:${is_program},${wants_manifest}>:${PROJECT_SOURCE_DIR}/cmake/${manifest}>)
  target_include_directories(kexlib_settings INTERFACE ${PROJECT_SOURCE_DIR}/cmake) # where resource compilers look for it
endif()

# kexlib_loaded_module(NAME [FOLDER]) puts the DLL of a module library into the programs' folder, or into a folder in it,
# with every generator.
function(kexlib_loaded_module name)
  cmake_path(APPEND CMAKE_RUNTIME_OUTPUT_DIRECTORY ${ARGN} OUTPUT_VARIABLE folder)
  # To a generator expression no generator appends the configuration.
  set_target_properties(${name} PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY $<1:${folder}>)
endfunction()
