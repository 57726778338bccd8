// Shared by the tests of the windowless timer: a COM object with a timer, and a record of the system's timers.
#ifndef TESTS_MESSAGELOOP_WINDOWLESS_TIMER_FIXTURE_H
#define TESTS_MESSAGELOOP_WINDOWLESS_TIMER_FIXTURE_H

#include <gtest/gtest.h>

#include <kexlib/messageloop/windowless_timer.h>

#include <afxmt.h>
#include <atlbase.h>

#include <support/import_override.h>
#include <support/message_pump.h>

#include <chrono>
#include <functional>
#include <mutex>
#include <vector>

// COM objects are deleted by Release alone.
// An object as applications write it.
class TimerObject : public IUnknown, public CComObjectRootExSTM, public CATLWindowLessTimer {
 public:
  TimerObject() { ++alive; }
  TimerObject(const TimerObject& other) : IUnknown(), CComObjectRootExSTM(other), CATLWindowLessTimer(other) {
    ++alive;
  }
  TimerObject& operator=(const TimerObject&) = default;
  ~TimerObject() override { --alive; }

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    *object = id == IID_IUnknown ? static_cast<IUnknown*>(this) : nullptr;
    if (*object) AddRef();
    return *object ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return InternalAddRef(); }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = InternalRelease();
    if (left == 0) {
      FinalRelease();
      delete this;
    }
    return left;
  }

  void OnTimerTick() override {
    ++ticks;
    threads.push_back(GetCurrentThreadId());
    enabled_in_tick = GetEnabled();
    if (on_tick) on_tick();
  }

  int ticks = 0;
  short enabled_in_tick = -1;
  std::vector<DWORD> threads;
  std::function<void()> on_tick;

  inline static int alive = 0;
};

inline constexpr DWORD ages = 20000;

inline CComPtr<TimerObject> make_timer(long interval = 50) {
  CComPtr<TimerObject> timer(new TimerObject);
  timer->SetInterval(interval);
  return timer;
}

// Dispatches messages until this number of windowless timers have ticked.
inline void pump_timer_messages(int count) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (count > 0) {
    ASSERT_LT(std::chrono::steady_clock::now(), deadline) << count << " ticks are missing";
    MSG message;
    if (!PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
      MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
      continue;
    }
    if (message.message == WM_TIMER && !message.hwnd) --count;
    DispatchMessageA(&message);
  }
}

inline bool pump_ticks(const TimerObject& timer, int count) {
  return pump_until([&] { return timer.ticks >= count; });
}

// The library's calls of SetTimer and KillTimer.
struct TimerCalls {
  int started = 0;
  std::vector<UINT> intervals;
  std::vector<UINT_PTR> ids;
  std::vector<UINT_PTR> killed;
  bool refuse = false;
};
inline TimerCalls calls;

inline UINT_PTR WINAPI recorded_set_timer(HWND window, UINT_PTR id, UINT interval, TIMERPROC procedure) {
  EXPECT_EQ(window, nullptr);
  EXPECT_EQ(id, 0u);
  EXPECT_NE(procedure, nullptr);
  static std::mutex lock;
  const std::scoped_lock locked(lock);
  ++calls.started;
  calls.intervals.push_back(interval);
  calls.ids.push_back(calls.refuse ? 0 : SetTimer(window, id, interval, procedure));
  return calls.ids.back();
}

inline BOOL WINAPI recorded_kill_timer(HWND window, UINT_PTR id) {
  EXPECT_EQ(window, nullptr);
  calls.killed.push_back(id);
  return KillTimer(window, id);
}

class WindowlessTimer : public testing::Test {
 protected:
  WindowlessTimer() {
    calls = {};
    EXPECT_TRUE(set_.made());
    EXPECT_TRUE(kill_.made());
  }
  ~WindowlessTimer() override { EXPECT_EQ(TimerObject::alive, alive_after_); }

  // Objects whose timer was refused stay registered in the process, so they must not be destroyed.
  void keep(const CComPtr<TimerObject>& timer) {
    static std::vector<CComPtr<TimerObject>> kept;
    kept.push_back(timer);
    ++alive_after_;
  }

  int alive_after_ = TimerObject::alive;

  ImportOverride set_{"kexlib.dll", "USER32.dll", "SetTimer", &recorded_set_timer};
  ImportOverride kill_{"kexlib.dll", "USER32.dll", "KillTimer", &recorded_kill_timer};
};

#endif
