# What a program needs beside linking kexlib::kexlib. The sources and the installed package include this file.
#
#     add_executable(program main.cpp)
#     target_link_libraries(program PRIVATE kexlib::kexlib)
#     kexlib_program(program)
#
# kexlib_program(PROGRAM [OWN_MANIFEST]) puts the manifest for version 6 of the common controls into the program, unless
# it has its own, and all DLLs that it needs beside it: those of kexlib and of other libraries that it links, and the
# compiler's. Call it in the folder that adds the program.
function(kexlib_program program)
  cmake_parse_arguments(PARSE_ARGV 1 kexlib "OWN_MANIFEST" "" "")
  if(NOT kexlib_OWN_MANIFEST)
    kexlib_manifest(manifest)
    target_sources(${program} PRIVATE ${manifest})
    # Resource compilers look there for what program.rc names.
    target_include_directories(${program} PRIVATE ${CMAKE_CURRENT_FUNCTION_LIST_DIR})
  endif()
  get_property(runtime_dlls GLOBAL PROPERTY KEXLIB_RUNTIME_DLLS)
  add_custom_command(
    TARGET ${program} POST_BUILD
    COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_RUNTIME_DLLS:${program}> ${runtime_dlls}
            $<TARGET_FILE_DIR:${program}>
    COMMAND_EXPAND_LISTS VERBATIM)
endfunction()

# kexlib_manifest(VARIABLE) gives the source that carries the manifest: a resource, or a part of the manifest that Visual
# Studio's linker makes. A program cannot have both.
function(kexlib_manifest variable)
  set(name program.rc)
  if(MSVC AND NOT CMAKE_CROSSCOMPILING)
    set(name program.manifest)
  endif()
  set(${variable} ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/${name} PARENT_SCOPE)
endfunction()

# kexlib_compiler_dlls(VARIABLE) gives the run-time libraries of mingw's compiler; none for other compilers. One that
# cannot be found ends in -NOTFOUND.
function(kexlib_compiler_dlls variable)
  set(paths)
  if(MINGW)
    cmake_path(GET CMAKE_CXX_COMPILER PARENT_PATH beside)
    set(names libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    if(KEXLIB_HARDENED)
      list(APPEND names libssp-0.dll)
    endif()
    foreach(name IN LISTS names)
      execute_process(
        COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
        OUTPUT_VARIABLE path
        OUTPUT_STRIP_TRAILING_WHITESPACE)
      # Debian, Fedora, MSYS2
      foreach(folder /usr/x86_64-w64-mingw32/lib /usr/x86_64-w64-mingw32/sys-root/mingw/bin ${beside})
        if(NOT IS_ABSOLUTE "${path}" AND EXISTS ${folder}/${name})
          set(path ${folder}/${name})
        endif()
      endforeach()
      if(NOT IS_ABSOLUTE "${path}")
        set(path ${name}-NOTFOUND)
      endif()
      list(APPEND paths ${path})
    endforeach()
  endif()
  set(${variable} ${paths} PARENT_SCOPE)
endfunction()
