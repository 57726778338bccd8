// Load and unload of kexlib.dll.
//
// The objects below are made from top to bottom when the library is loaded and released from bottom to top when it is
// unloaded: at FreeLibrary, and at the end of the process however it comes, but for TerminateProcess. Static
// constructors of modules that are linked to this one may use them all; those of this one may use what is constinit.
#include <kexlib/diagnostics/trace_file.h>
#include <kexlib/messageloop/thread_message_hook.h>
#include <module/process_state.h>

namespace kexlib::module {
namespace {

bool ending = false;

}  // namespace

constinit ProfilerState profiler;  // unloaded while on: writes "profiler.js"
constinit NumberTexts tip_numbers;
constinit const char digit_font_name[] = "Tahoma";

constinit HwndTableState hwnd_table;  // unloaded: removes the hook
constinit OwnManifest own_manifest;

const DialogMessages dialog_messages{RegisterWindowMessageA("MSG_QZ_GetDialogTemplateID"),
                                     RegisterWindowMessageA("MSG_QZ_GetDialogResLibrary")};

TimerRegistry timers;  // the windowless timers, with the lock that they share

}  // namespace kexlib::module

constinit CTraceToFile g_traceToFile;  // unloaded while open: writes its footer

constinit CThreadMessageHook* CThreadMessageHook::s_hooked_instance = nullptr;

bool kexlib::module::process_is_ending() { return ending; }

// Runs before the objects are released.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID process_ends) {
  if (reason == DLL_PROCESS_DETACH) kexlib::module::ending = process_ends != nullptr;
  if (kexlib::module::ending) kexlib::module::tip_numbers.abandon();
  return TRUE;
}
