// Diagnostics: profiling, tracing and warnings.
//
//   problem_alert.h   a warning box that any thread raises without waiting
//   profiler.h        times named blocks of work on each thread, and writes a record for a viewer page
//   trace_file.h      printf-style lines to a file on the desktop, to the debugger, or to both
#ifndef KEXLIB_DIAGNOSTICS_H
#define KEXLIB_DIAGNOSTICS_H

#include <kexlib/diagnostics/problem_alert.h>
#include <kexlib/diagnostics/profiler.h>
#include <kexlib/diagnostics/trace_file.h>

#endif
