#ifndef TESTS_SUPPORT_CRASH_REPORT_H
#define TESTS_SUPPORT_CRASH_REPORT_H

// The exit code of a program that crashed.
constexpr unsigned crash_exit_code = 98;

// From here on a crash ends the process at once, with a backtrace on the error output and crash_exit_code. Left to the
// system, a crashed process with several threads may end with status 0.
void report_crashes();

#endif
