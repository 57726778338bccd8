#ifndef KEXLIB_MESSAGELOOP_TIMER_REGISTRY_H
#define KEXLIB_MESSAGELOOP_TIMER_REGISTRY_H

#include <atlbase.h>

class CATLWindowLessTimer;

namespace kexlib {

// The process's windowless timers: which object has the timer that the system calls for.
class TimerRegistry {
 public:
  // Throws where the lock cannot be made, as AtlThrow does.
  TimerRegistry();
  // Leaves everything as it is where the process ends: a thread that is gone may hold the lock, or the heap's.
  ~TimerRegistry();

  void add(CATLWindowLessTimer* timer);
  void remove(const CATLWindowLessTimer* timer);

  // What the system calls for each of them.
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

}  // namespace kexlib

#endif
