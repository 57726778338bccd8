// Memory that runs out on one thread: its n-th operator new fails, and each one after it.
#ifndef TESTS_SUPPORT_MEMORY_SHORTAGE_H
#define TESTS_SUPPORT_MEMORY_SHORTAGE_H

#include <windows.h>

#include <support/import_override.h>

// One at a time. operator new belongs to the C++ run-time library, which all modules of a test share; what the system
// and the C run-time library allocate does not fail.
class MemoryShortage {
 public:
  // The thread's next `successes` calls of operator new succeed.
  MemoryShortage(DWORD thread, int successes);

  // False where the run-time library is no DLL.
  bool made() const { return override_.made(); }
  // Whether a call has failed.
  static bool has_begun();

 private:
  ImportOverride override_;
};

#endif
