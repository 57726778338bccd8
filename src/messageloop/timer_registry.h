#ifndef KEXLIB_MESSAGELOOP_TIMER_REGISTRY_H
#define KEXLIB_MESSAGELOOP_TIMER_REGISTRY_H

#include <kexlib/framework.h>

class CATLWindowLessTimer;

namespace kexlib {

// The process's windowless timers: maps the ids of the system's timers to objects.
class TimerRegistry {
 public:
  // Throws as AtlThrow does if the lock cannot be initialized.
  TimerRegistry();
  // Does nothing at the end of the process: an ended thread may own this lock or that of the heap.
  ~TimerRegistry();

  void add(CATLWindowLessTimer* timer);
  void remove(const CATLWindowLessTimer* timer);

  // The timer procedure of all of them.
  static void CALLBACK TimerRegistryProc(HWND window, UINT message, UINT_PTR id, DWORD time) noexcept;

 private:
  struct Node {
    CATLWindowLessTimer* timer;
    DWORD thread;
    Node* next;
  };

  void tick(HWND window, UINT message, UINT_PTR id, DWORD time);

  CComCriticalSection lock_;  // guards the list, and is held while a tick runs
  Node* newest_ = nullptr;
};

extern TimerRegistry timers;

}  // namespace kexlib

#endif
