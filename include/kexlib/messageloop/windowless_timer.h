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
// The timer is one of the thread that starts it (SetTimer without a window), and ticks while that thread dispatches
// messages, in whatever loop. Use an object on one thread only.
//
// One lock for all. While a tick runs, a lock is held that all windowless timers of the process share. The ticks of
// other threads wait for it, and so does whoever starts or stops a timer there: keep ticks short, and never let one
// wait for another thread that has timers. On the tick's own thread a nested loop may run: other timers tick in it, the
// one that is in its tick does not.
//
// Stop before the end. The destructor does not stop the timer: FinalRelease or SetEnabled(0) has to come first. The
// object has to live until its tick returns; a tick that may lose the last reference holds one of its own.
//
// Errors. A timer that the system refuses (SetTimer) stays stopped, which GetEnabled tells; such an object is
// remembered and looked at by later ticks, so it must not be destroyed while other timers run. An exception that leaves
// a tick ends the program.
#ifndef KEXLIB_MESSAGELOOP_WINDOWLESS_TIMER_H
#define KEXLIB_MESSAGELOOP_WINDOWLESS_TIMER_H

#include <windows.h>

#include <kexlib/export.h>

namespace kexlib {
class TimerRegistry;
}

/// The base of objects that have a timer. Stopped at first, with an interval of a second, repeating, not suspended.
class KEXLIB_API KEXLIB_NO_VTABLE CATLWindowLessTimer {
 public:
  /// As described above.
  CATLWindowLessTimer();
  /// Copies what the object knows, its running timer too, of which there is still one: the copy says that it is
  /// enabled, but the ticks go to the original, and stopping either ends them. Copy stopped timers only.
  CATLWindowLessTimer(const CATLWindowLessTimer&);
  /// As the copy constructor.
  CATLWindowLessTimer& operator=(const CATLWindowLessTimer&);
  /// Nothing: a running timer has to be stopped before.
  virtual ~CATLWindowLessTimer();

  /// The tick. May change every property, stop the timer, and run a loop of its own.
  virtual void OnTimerTick() = 0;

  /// 1 while the timer runs, else 0.
  short GetEnabled() const;
  /// Starts the timer (not 0) or stops it (0). One that runs goes on as it does.
  void SetEnabled(short enable);

  /// The interval in milliseconds, 50 or more.
  long GetInterval() const;
  /// Below 50 it becomes 50. On a running timer a change begins a new interval; the present value changes nothing. What
  /// counts as a change is the argument as it is: 10 begins a new interval of 50 each time.
  void SetInterval(long ms);

  /// 1 if the timer goes on after a tick, else 0.
  int GetRepeatable() const;
  /// Not 0: goes on after a tick; 0: stops at its next tick, before OnTimerTick is called.
  void SetRepeatable(int repeat);

  /// The value that was set last; 0 at first.
  short GetSuspended() const;
  /// Not 0: the timer runs on, but holds its ticks back. 0: if any was held back, calls OnTimerTick once, on the
  /// caller's thread and without the lock, however many there were. A timer that does not repeat and was held back
  /// still runs then, and ticks once more.
  void SetSuspended(short suspend);

  /// Stops the timer. To be called when the COM object loses its last reference.
  void FinalRelease();

 private:
  friend class kexlib::TimerRegistry;

  void _Start();  // NOLINT(bugprone-reserved-identifier): ATL's way with such members
  void _Stop();   // NOLINT(bugprone-reserved-identifier)
  void TimerProc(HWND window, UINT message, UINT_PTR id, DWORD time);

  short suspended_ = 0;
  short repeatable_ = 1;
  short tick_pending_ = 0;
  long interval_ = 1000;
  UINT_PTR timer_id_ = 0;  // 0 while stopped
  int in_tick_ = 0;
};

/// What counts the references of a COM object that is used on one thread only, as ATL's object roots do.
class KEXLIB_API CComObjectRootExSTM {
 public:
  /// No reference.
  CComObjectRootExSTM();
  /// Copies the count.
  CComObjectRootExSTM(const CComObjectRootExSTM&);
  /// Copies the count.
  CComObjectRootExSTM& operator=(const CComObjectRootExSTM&);
  /// Nothing.
  ~CComObjectRootExSTM() = default;

  /// One more; returns the new count.
  ULONG InternalAddRef();
  /// One less; returns the new count.
  ULONG InternalRelease();
  /// Nothing: there is one thread.
  void Lock();
  /// Nothing.
  void Unlock();
  /// S_OK: there is nothing to make.
  HRESULT _AtlInitialConstruct();  // NOLINT(bugprone-reserved-identifier): ATL's name

 private:
  ULONG references_ = 0;
};

/// Does nothing. Calling it makes a program need kexlib.dll, so that it is loaded with the program.
KEXLIB_API void link();

#endif
