// Where Windows enters a DLL.
#include <windows.h>

#include "runtime.h"

extern "C" {

// A DLL without a DllMain of its own has this one.
BOOL WINAPI default_dll_main(HINSTANCE, DWORD, void*) { return TRUE; }
#pragma comment(linker, "/alternatename:DllMain=default_dll_main")
BOOL WINAPI DllMain(HINSTANCE, DWORD, void*);

BOOL WINAPI _DllMainCRTStartup(HINSTANCE instance, DWORD reason, void* reserved) {
  if (reason == DLL_PROCESS_ATTACH && !construct_objects()) return FALSE;
  const BOOL done = DllMain(instance, reason, reserved);
  if (reason == DLL_PROCESS_ATTACH && !done) {
    DllMain(instance, DLL_PROCESS_DETACH, reserved);
    destroy_objects();
  }
  if (reason == DLL_PROCESS_DETACH) destroy_objects();
  return done;
}
}
