#ifndef TESTS_SUPPORT_CRASH_REPORT_H
#define TESTS_SUPPORT_CRASH_REPORT_H

// The exit code of a program that crashed.
constexpr unsigned crash_exit_code = 98;

// From here on a crash ends the process at once, with a backtrace on the error output and crash_exit_code. By default a
// crashed process with several threads may end with status 0, and the system handles a fault inside a window procedure,
// hook or timer callback itself and goes on. So a fault is reported when it is raised, before any handler has seen it,
// if the instruction lies in the program, kexlib.dll, kexframework.dll or in no module at all.
void report_crashes();

#endif
