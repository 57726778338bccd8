// Memory that runs out on one thread: its n-th operator new fails, and each one after it.
#ifndef TESTS_SUPPORT_MEMORY_SHORTAGE_H
#define TESTS_SUPPORT_MEMORY_SHORTAGE_H

#include <windows.h>

#include <support/import_override.h>

// One at a time. operator new is that of kexlib.dll, kexframework.dll and the program; what the system and the C
// run-time library allocate does not fail.
class MemoryShortage {
 public:
  // The thread's next `successes` calls of operator new succeed.
  MemoryShortage(DWORD thread, int successes);

  // False where operator new calls no malloc of a DLL.
  bool made() const { return library_.made() && framework_.made() && program_.made(); }
  // Whether a call has failed.
  static bool has_begun();

 private:
  // Where one module allocates for all, the second and third replace the first, and put it back.
  ImportOverride library_, framework_, program_;
};

#endif
