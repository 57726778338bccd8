// Load and unload of kexlib.dll: the objects that are created when the library is loaded and whose order matters.
//
// They are created from top to bottom and released from bottom to top, at FreeLibrary and at the end of the process
// (except by TerminateProcess). An object that only one unit uses, and that needs no order, is defined in that unit's
// source.
#include <kexlib/diagnostics/trace_file.h>
#include <kexlib/framework.h>

#include <afxdllx.h>

#include <diagnostics/profiler_state.h>
#include <messageloop/timer_registry.h>
#include <module/process_end.h>
#include <windowtools/hwnd_table_state.h>

namespace kexlib {

// Created first and released last, so that the release of everything else may still be profiled. Constinit: static
// constructors of modules that link to this one may profile, in whatever order the loader runs them. If profiling is on
// at the end, "profiler.js" is written; the memory is freed unless the process ends.
constinit ProfilerState profiler;

}  // namespace kexlib

// Next, for the same reasons: static constructors may trace. Writes the footer of a trace file that is open.
constinit CTraceToFile g_traceToFile;

namespace kexlib {

// Before the timers, whose construction can fail: when it does, this has nothing to undo. Removes the hook from its
// thread, which would otherwise call into the freed library; at the end of the process the system does that.
constinit HwndTableState hwnd_table;

// Last, because it alone runs code at load: it initializes the lock that all timers share, and throws if it cannot. At
// the end of the process lock and list are not accessed, since an ended thread may own the lock.
TimerRegistry timers;

namespace {

bool ending = false;

// What MFC knows of this library. It is an extension DLL, since objects of MFC's classes go between it and the program.
// There is no CDynLinkLibrary: it has neither resources for others nor classes that are found by name.
AFX_EXTENSION_MODULE extension{};

}  // namespace

bool process_is_ending() { return ending; }

}  // namespace kexlib

// Called after the objects above are created, and before they are released.
BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID process_ends) {
  if (reason == DLL_PROCESS_ATTACH) return AfxInitExtensionModule(kexlib::extension, module);
  if (reason == DLL_PROCESS_DETACH) {
    kexlib::ending = process_ends != nullptr;
    // At the end of the process MFC's lists are not accessed: an ended thread may have left them inconsistent.
    if (!kexlib::ending) AfxTermExtensionModule(kexlib::extension);
  }
  return TRUE;
}
