#ifndef TESTS_SUPPORT_CHILD_PROCESS_H
#define TESTS_SUPPORT_CHILD_PROCESS_H

#include <string>

// The result of run_program for a program that did not end in time and was terminated.
constexpr unsigned program_hangs = 0xDEAD;

// Runs a program that lies beside the test, in the current folder, and returns its exit code.
unsigned run_program(const std::string& name, const std::string& arguments);

#endif
