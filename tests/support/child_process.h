#ifndef TESTS_SUPPORT_CHILD_PROCESS_H
#define TESTS_SUPPORT_CHILD_PROCESS_H

#include <string>

// What run_program returns for a program that did not end in time; it has been ended then.
constexpr unsigned program_hangs = 0xDEAD;

// Runs a program that lies beside the test, in the current folder, and returns its exit code.
unsigned run_program(const std::string& name, const std::string& arguments);

#endif
