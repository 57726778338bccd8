# Installs the package into an empty folder, builds the consumer's programs against it and runs them.
#   BUILD      the build tree        WORK       an empty folder's name
#   TOOLCHAIN  its toolchain file    EMULATOR   what runs a program of it
#   NODE       runs the viewer's program; empty where the viewer is not built
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})

function(run)
  execute_process(COMMAND ${ARGN} WORKING_DIRECTORY ${WORK} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${WORK}/installed)
execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../../scripts/every_member ${WORK}/installed/include
                OUTPUT_FILE ${WORK}/every_member.cpp COMMAND_ERROR_IS_FATAL ANY)
run(
  ${CMAKE_COMMAND} -G Ninja -S ${CMAKE_CURRENT_LIST_DIR}/consumer -B ${WORK}/build --toolchain ${TOOLCHAIN}
  -Dkexlib_DIR=${WORK}/installed/lib/cmake/kexlib
  -DEVERY_MEMBER=${WORK}/every_member.cpp)
run(${CMAKE_COMMAND} --build ${WORK}/build)

# A program finds its libraries beside it.
file(GLOB libraries ${WORK}/installed/bin/*.dll ${BUILD}/bin/lib*.dll)
file(COPY ${libraries} DESTINATION ${WORK}/build)
run(${EMULATOR} ${WORK}/build/consumer.exe)
file(READ ${WORK}/consumer.js record)
if(NOT record MATCHES "name: 'consumer'")
  message(FATAL_ERROR "the consumer wrote: ${record}")
endif()
foreach(program every_member every_member_optimized)
  run(${EMULATOR} ${WORK}/build/${program}.exe)
endforeach()

# The viewer's parts read what the library wrote.
if(NODE)
  file(READ ${WORK}/installed/share/kexlib/profile_viewer.html page LIMIT 1000)
  if(NOT page MATCHES "Content-Security-Policy")
    message(FATAL_ERROR "the installed page begins with: ${page}")
  endif()
  run(${NODE} ${WORK}/installed/share/kexlib/profile_tool.mjs csv consumer.js -o consumer.csv)
  file(READ ${WORK}/consumer.csv figures)
  if(NOT figures MATCHES "\"consumer\",1,0,")
    message(FATAL_ERROR "the viewer's program read: ${figures}")
  endif()
endif()
