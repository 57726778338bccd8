// Windowless timer: a timer for COM objects that have no window, with the usual properties of timer controls.
//
//     class Clock : public CComObjectRootExSTM, public CATLWindowLessTimer, public IClock {
//      public:
//       void OnTimerTick() override { show_time(); }
//       STDMETHODIMP_(ULONG) AddRef() override { return InternalAddRef(); }
//       STDMETHODIMP_(ULONG) Release() override {
//         const ULONG left = InternalRelease();
//         if (left == 0) {
//           FinalRelease();      // stops the timer
//           delete this;
//         }
//         return left;
//       }
//       ...
//     };
//
//     clock->SetInterval(500);
//     clock->SetEnabled(1);
//
// The timer belongs to the thread that starts it (SetTimer without a window). It ticks while that thread dispatches
// messages, in any loop. Use an object on one thread only.
//
// One lock for all. While a tick runs, it holds a lock that all windowless timers of the process share. Ticks, starts
// and stops on other threads wait for it: keep ticks short, and never let one wait for another thread that has timers.
// A tick may run a nested loop: other timers of its thread tick in it, its own does not.
//
// Stop before destruction. The destructor does not stop the timer: call FinalRelease or SetEnabled(0) first. The object
// must exist until its tick returns; a tick that may release the last reference holds one itself.
//
// Errors. If SetTimer fails, the timer stays stopped: GetEnabled returns 0. The object stays in a list that later ticks
// search, so it must not be destroyed while other timers run. Starting a timer without memory throws std::bad_alloc,
// and the timer stays stopped. An exception that leaves a tick ends the program.
#ifndef KEXLIB_MESSAGELOOP_WINDOWLESS_TIMER_H
#define KEXLIB_MESSAGELOOP_WINDOWLESS_TIMER_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

namespace kexlib {
class TimerRegistry;
}

/// The base of objects that have a timer. Initially stopped, with an interval of a second, repeating, not suspended.
class KEXLIB_API KEXLIB_NO_VTABLE CATLWindowLessTimer {
 public:
  /// A stopped timer.
  CATLWindowLessTimer();
  /// Copies all properties and the id of a running timer, but starts no second one: the copy is enabled, the original
  /// gets the ticks, and stopping either ends them. Copy stopped timers only.
  CATLWindowLessTimer(const CATLWindowLessTimer&);
  /// As the copy constructor.
  CATLWindowLessTimer& operator=(const CATLWindowLessTimer&);
  /// Does nothing. Stop a running timer first.
  virtual ~CATLWindowLessTimer();

  /// The tick. May change every property, stop the timer, and run a nested loop.
  virtual void OnTimerTick() = 0;

  /// 1 while the timer runs, else 0. Setting it starts the timer (not 0) or stops it (0). Starting a running timer
  /// changes nothing.
  short GetEnabled() const;
  void SetEnabled(short enable);

  /// The interval in milliseconds. Values below 50 become 50. On a running timer a change begins a new interval, the
  /// current value does not. The argument is compared as given: 10 begins a new interval of 50 each time.
  long GetInterval() const;
  void SetInterval(long ms);

  /// 1 if the timer runs on after a tick, else 0: then it stops at its next tick, before OnTimerTick is called.
  int GetRepeatable() const;
  void SetRepeatable(int repeat);

  /// The value that was set last, initially 0. Not 0: the timer runs, but its ticks are held back. Setting 0 calls
  /// OnTimerTick once if ticks were held back, however many, on the calling thread and without the lock. A timer that
  /// does not repeat is not stopped by a tick that is held back, and ticks once more.
  short GetSuspended() const;
  void SetSuspended(short suspend);

  /// Stops the timer. Call it when the last reference to the COM object is released.
  void FinalRelease();

 private:
  friend class kexlib::TimerRegistry;

  void _Start();  // NOLINT(bugprone-reserved-identifier): ATL's names for such members
  void _Stop();   // NOLINT(bugprone-reserved-identifier)
  void TimerProc(HWND window, UINT message, UINT_PTR id, DWORD time);

  short suspended_ = 0;
  short repeatable_ = 1;
  short tick_pending_ = 0;
  long interval_ = 1000;
  UINT_PTR timer_id_ = 0;  // 0 while stopped
  int in_tick_ = 0;
};

/// Counts the references of a COM object that is used on one thread only, as the object roots of ATL do.
class KEXLIB_API CComObjectRootExSTM {
 public:
  /// A count of 0.
  CComObjectRootExSTM();
  /// Copies the count.
  CComObjectRootExSTM(const CComObjectRootExSTM&);
  /// As the copy constructor.
  CComObjectRootExSTM& operator=(const CComObjectRootExSTM&);
  /// Does nothing.
  ~CComObjectRootExSTM() = default;

  /// Increments the count; returns the new one.
  ULONG InternalAddRef();
  /// Decrements the count; returns the new one.
  ULONG InternalRelease();
  /// Does nothing: there is one thread.
  void Lock();
  /// Does nothing.
  void Unlock();
  /// Returns S_OK.
  HRESULT _AtlInitialConstruct();  // NOLINT(bugprone-reserved-identifier): ATL's name

 private:
  ULONG references_ = 0;
};

/// Does nothing. A call makes the program import kexlib.dll, so that it is loaded with the program.
KEXLIB_API void link();

#endif
