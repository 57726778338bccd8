# kexlib_add_type_library(NAME IDL) makes NAME.tlb and NAME.h from an interface description. A target that links NAME
# includes the header by #include <NAME.h> and the library as a resource (1 TYPELIB "NAME.tlb").
#
# The compiler is widl, or midl where that is missing. The description imports oaidl.idl; cmake/idl has the part of it
# that widl needs, since the cross tools have none.
#
# The target type_libraries makes all of them.
add_custom_target(type_libraries)
function(kexlib_add_type_library name idl)
  cmake_path(ABSOLUTE_PATH idl)
  set(folder ${PROJECT_BINARY_DIR}/type_libraries/${name})
  file(MAKE_DIRECTORY ${folder})
  find_program(WIDL x86_64-w64-mingw32-widl)
  if(WIDL)
    # widl reads IUnknown and IDispatch from the system's own library.
    find_path(STDOLE2_FOLDER stdole2.tlb REQUIRED NO_CMAKE_FIND_ROOT_PATH
              PATHS /usr/lib/x86_64-linux-gnu/wine/x86_64-windows /usr/lib64/wine/x86_64-windows)
    set(imports ${PROJECT_SOURCE_DIR}/cmake/idl)
    set(widl ${WIDL} --nostdinc -m64 -I${imports} -L${STDOLE2_FOLDER})
    set(commands COMMAND ${widl} -t -o ${folder}/${name}.tlb ${idl} COMMAND ${widl} -h -H ${folder}/${name}.h ${idl})
    set(imports ${imports}/oaidl.idl ${imports}/wtypes.idl)
  else()
    find_program(MIDL midl)
    if(NOT MIDL) # the space before the text keeps it on one line
      message(FATAL_ERROR " The tests and examples need midl, which the Windows SDK has, or mingw-w64's widl: start CMake in "
                          "a developer command prompt of Visual Studio, or configure with -DKEXLIB_BUILD_TESTS=OFF "
                          "-DKEXLIB_BUILD_EXAMPLES=OFF.")
    endif()
    # midl has the C compiler preprocess. What it makes for marshalling is not used.
    set(commands COMMAND ${MIDL} /nologo /env x64 /cpp_cmd ${CMAKE_CXX_COMPILER} /out ${folder} /tlb ${name}.tlb
                         /h ${name}.h ${idl})
    set(imports)
  endif()
  add_custom_command(OUTPUT ${folder}/${name}.tlb ${folder}/${name}.h ${commands} DEPENDS ${idl} ${imports} VERBATIM)
  add_custom_target(${name}_files DEPENDS ${folder}/${name}.tlb ${folder}/${name}.h)
  add_dependencies(type_libraries ${name}_files)
  add_library(${name} INTERFACE)
  add_dependencies(${name} ${name}_files)
  target_include_directories(${name} SYSTEM INTERFACE ${folder})
endfunction()

# kexlib_add_component(NAME SOURCE...) makes a DLL with COM classes that are never registered: NAME.dll in the programs'
# folder "components", with the manifest NAME.manifest beside it. The sources include NAME.def, which exports what COM
# calls, and the resources with the type library.
function(kexlib_add_component name)
  add_library(${name} MODULE ${ARGN})
  target_link_libraries(${name} PRIVATE kexlib_settings)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/examples/components)
  kexlib_loaded_module(${name} components)
  configure_file(${name}.manifest ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/components/${name}.manifest COPYONLY)
endfunction()
