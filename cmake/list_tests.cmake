# Included by CTest, which lists the tests of a program so when it starts:
#   kexlib_list_tests(FAMILY PROGRAM LISTING RUNNER...)
# LISTING is where the program's own list is kept until the program changes.
#
# A suite is one entry, FAMILY.SUITE, and its tests run in one process, shuffled: that costs a tenth of a process for each
# test. With KEX_EACH_TEST in the environment each test is an entry, FAMILY.SUITE.TEST, and a process.
function(kexlib_list_tests family program listing)
  if(NOT EXISTS ${listing} OR ${program} IS_NEWER_THAN ${listing})
    execute_process(
      COMMAND ${ARGN} ${program} --gtest_list_tests
      OUTPUT_VARIABLE output
      RESULT_VARIABLE result
      TIMEOUT 60)
    if(NOT result EQUAL 0)
      message(FATAL_ERROR "${program} does not list its tests (${result}): ${output}")
    endif()
    file(WRITE ${listing} "${output}")
  endif()

  file(STRINGS ${listing} lines)
  foreach(line IN LISTS lines)
    string(REGEX REPLACE " *#.*" "" line "${line}") # the parameter of a test
    if(line MATCHES "^  (.*)")
      set(filter ${suite}.${CMAKE_MATCH_1})
      set(options)
    else()
      string(REGEX REPLACE "\\.$" "" suite "${line}")
      set(filter "${suite}.*")
      set(options --gtest_shuffle)
    endif()
    if(line MATCHES "^  " AND NOT DEFINED ENV{KEX_EACH_TEST} OR NOT line MATCHES "^  " AND DEFINED ENV{KEX_EACH_TEST})
      continue()
    endif()
    string(REGEX REPLACE "\\.\\*$" "" name ${family}.${filter})
    set(labels ${family})
    if(suite MATCHES "OnScreen$")
      list(APPEND labels display)
    elseif(suite MATCHES "InChildProcess$")
      list(APPEND labels host)
    endif()
    add_test(${name} ${ARGN} ${program} --gtest_filter=${filter} ${options})
    set_tests_properties(${name} PROPERTIES LABELS "${labels}" RESOURCE_GROUPS sessions:1 TIMEOUT 300)
  endforeach()
endfunction()
