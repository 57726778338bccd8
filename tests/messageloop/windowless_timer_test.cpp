#include <kexlib/messageloop/windowless_timer.h>

#include <gtest/gtest.h>

#include <afxmt.h>
#include <atlbase.h>

#include <support/child_process.h>
#include <support/expect_flat.h>
#include <support/import_override.h>
#include <support/message_pump.h>

#include <chrono>
#include <climits>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <vector>

// COM objects are deleted by Release alone.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// An object as users write them.
class TimerObject final : public IUnknown, public CComObjectRootExSTM, public CATLWindowLessTimer {
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

#pragma GCC diagnostic pop

namespace {

constexpr DWORD ages = 20000;

CComPtr<TimerObject> make_timer(long interval = 50) {
  CComPtr<TimerObject> timer(new TimerObject);
  timer->SetInterval(interval);
  return timer;
}

// Dispatches messages until so many timers without a window have called.
void pump_timer_messages(int count) {
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

bool pump_ticks(const TimerObject& timer, int count) {
  return pump_until([&] { return timer.ticks >= count; });
}

// What the library asks of the system.
struct TimerCalls {
  int started = 0;
  std::vector<UINT> intervals;
  std::vector<UINT_PTR> ids;
  std::vector<UINT_PTR> killed;
  bool refuse = false;
} calls;

UINT_PTR WINAPI recorded_set_timer(HWND window, UINT_PTR id, UINT interval, TIMERPROC procedure) {
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

BOOL WINAPI recorded_kill_timer(HWND window, UINT_PTR id) {
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

  // Objects that were refused a timer stay known to the process, so they have to stay.
  void keep(const CComPtr<TimerObject>& timer) {
    static std::vector<CComPtr<TimerObject>> kept;
    kept.push_back(timer);
    ++alive_after_;
  }

  int alive_after_ = TimerObject::alive;

  ImportOverride set_{"kexlib.dll", "USER32.dll", "SetTimer", &recorded_set_timer};
  ImportOverride kill_{"kexlib.dll", "USER32.dll", "KillTimer", &recorded_kill_timer};
};

// ---- properties ----------------------------------------------------------------------------------------------------

static_assert(std::is_abstract_v<CATLWindowLessTimer> && std::has_virtual_destructor_v<CATLWindowLessTimer>);

TEST_F(WindowlessTimer, IsStoppedAtFirst) {
  const CComPtr<TimerObject> timer(new TimerObject);
  EXPECT_EQ(timer->GetEnabled(), 0);
  EXPECT_EQ(timer->GetInterval(), 1000);
  EXPECT_EQ(timer->GetRepeatable(), 1);
  EXPECT_EQ(timer->GetSuspended(), 0);
  timer->SetEnabled(0);
  timer->FinalRelease();
  EXPECT_EQ(calls.killed.size(), 0u);
}

TEST_F(WindowlessTimer, HasAnIntervalOfFiftyMillisecondsOrMore) {
  const CComPtr<TimerObject> timer(new TimerObject);
  const auto stored = [&](long ms) {
    timer->SetInterval(ms);
    return timer->GetInterval();
  };
  EXPECT_EQ(stored(10), 50);
  EXPECT_EQ(stored(-5), 50);
  EXPECT_EQ(stored(LONG_MIN), 50);
  EXPECT_EQ(stored(0), 50);
  EXPECT_EQ(stored(49), 50);
  EXPECT_EQ(stored(51), 51);
  EXPECT_EQ(stored(LONG_MAX), LONG_MAX);
  EXPECT_EQ(calls.started, 0);
}

TEST_F(WindowlessTimer, TellsRepeatingAsOneAndSuspensionAsItWasSet) {
  const CComPtr<TimerObject> timer(new TimerObject);
  timer->SetRepeatable(0);
  EXPECT_EQ(timer->GetRepeatable(), 0);
  timer->SetRepeatable(2);
  EXPECT_EQ(timer->GetRepeatable(), 1);
  timer->SetRepeatable(0x10000);
  EXPECT_EQ(timer->GetRepeatable(), 1);
  timer->SetSuspended(7);
  EXPECT_EQ(timer->GetSuspended(), 7);
  timer->SetSuspended(-1);
  EXPECT_EQ(timer->GetSuspended(), -1);
}

TEST_F(WindowlessTimer, StartsOnceAndStopsOnce) {
  const auto timer = make_timer(60);
  timer->SetEnabled(-1);
  EXPECT_EQ(timer->GetEnabled(), 1);
  timer->SetEnabled(1);
  EXPECT_EQ(calls.intervals, std::vector<UINT>{60});
  timer->SetEnabled(0);
  EXPECT_EQ(timer->GetEnabled(), 0);
  timer->SetEnabled(0);
  EXPECT_EQ(calls.killed, calls.ids);
}

TEST_F(WindowlessTimer, BeginsANewIntervalOnAChangeOnly) {
  const auto timer = make_timer(60);
  timer->SetEnabled(1);
  timer->SetInterval(60);
  EXPECT_EQ(calls.started, 1);
  timer->SetInterval(70);
  EXPECT_EQ(calls.intervals, (std::vector<UINT>{60, 70}));
  EXPECT_EQ(timer->GetEnabled(), 1);
  timer->SetEnabled(0);
  timer->SetInterval(80);
  EXPECT_EQ(calls.started, 2);
  EXPECT_EQ(calls.killed, calls.ids);
}

// What is compared is the argument as it came, not what it becomes.
TEST_F(WindowlessTimer, BeginsANewIntervalForEachOneThatIsTooShort) {
  const auto timer = make_timer(50);
  timer->SetEnabled(1);
  timer->SetInterval(50);
  EXPECT_EQ(calls.started, 1);
  timer->SetInterval(10);
  timer->SetInterval(10);
  EXPECT_EQ(calls.intervals, (std::vector<UINT>{50, 50, 50}));
}

// ---- ticks ---------------------------------------------------------------------------------------------------------

TEST_F(WindowlessTimer, TicksAgainAndAgain) {
  const auto timer = make_timer();
  const auto start = std::chrono::steady_clock::now();
  timer->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*timer, 3));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
  EXPECT_EQ(timer->enabled_in_tick, 1);
  EXPECT_EQ(calls.started, 1);
  timer->SetEnabled(0);
  const auto other = make_timer();
  other->SetEnabled(1);
  pump_ticks(*other, 2);
  EXPECT_EQ(timer->ticks, 3);
}

TEST_F(WindowlessTimer, IsStoppedInItsTickWhereItDoesNotRepeat) {
  const auto timer = make_timer();
  timer->SetRepeatable(0);
  timer->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*timer, 1));
  EXPECT_EQ(timer->enabled_in_tick, 0);
  EXPECT_EQ(timer->GetEnabled(), 0);
  EXPECT_EQ(calls.killed, calls.ids);
  const auto other = make_timer();
  other->SetEnabled(1);
  pump_ticks(*other, 2);
  EXPECT_EQ(timer->ticks, 1);
}

TEST_F(WindowlessTimer, MayBeStartedAgainByItsOnlyTick) {
  const auto timer = make_timer();
  timer->SetRepeatable(0);
  timer->on_tick = [&] {
    if (timer->ticks == 1) timer->SetEnabled(1);
  };
  timer->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*timer, 2));
  EXPECT_EQ(timer->GetEnabled(), 0);
}

TEST_F(WindowlessTimer, TakesAChangeOfRepeatingUpAtItsNextTick) {
  const auto timer = make_timer();
  timer->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*timer, 1));
  timer->SetRepeatable(0);
  EXPECT_EQ(timer->GetEnabled(), 1);
  EXPECT_TRUE(pump_ticks(*timer, 2));
  EXPECT_EQ(timer->GetEnabled(), 0);
}

TEST_F(WindowlessTimer, TicksInTheLoopOfAMessageBox) {
  const auto timer = make_timer();
  timer->on_tick = [] {
    if (const HWND box = FindWindowA("#32770", "windowless_timer_test")) PostMessageA(box, WM_COMMAND, IDOK, 0);
  };
  timer->SetEnabled(1);
  EXPECT_EQ(MessageBoxA(nullptr, "ticks here", "windowless_timer_test", MB_OK), IDOK);
  EXPECT_GE(timer->ticks, 1);
}

TEST_F(WindowlessTimer, MayChangeItsIntervalInItsTick) {
  const auto timer = make_timer(50);
  timer->on_tick = [&] { timer->SetInterval(60); };
  timer->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*timer, 3));
  EXPECT_EQ(calls.intervals, (std::vector<UINT>{50, 60}));
  EXPECT_EQ(calls.killed, std::vector<UINT_PTR>{calls.ids[0]});
  EXPECT_EQ(timer->GetEnabled(), 1);
}

TEST_F(WindowlessTimer, StaysStoppedWhereTheIntervalIsChangedInItsOnlyTick) {
  const auto timer = make_timer(50);
  timer->SetRepeatable(0);
  timer->on_tick = [&] { timer->SetInterval(60); };
  timer->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*timer, 1));
  EXPECT_EQ(timer->GetEnabled(), 0);
  EXPECT_EQ(timer->GetInterval(), 60);
  EXPECT_EQ(calls.started, 1);
}

TEST_F(WindowlessTimer, DropsItsOwnTicksDuringATickButNotThoseOfOthers) {
  const auto timer = make_timer(), other = make_timer();
  int ticks_of_the_other = 0;
  timer->on_tick = [&] {
    if (timer->ticks > 1) return;
    const int before = other->ticks;
    pump_timer_messages(6);  // three rounds or so of both
    EXPECT_EQ(timer->ticks, 1);
    ticks_of_the_other = other->ticks - before;
  };
  timer->SetEnabled(1);
  other->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*timer, 2));
  EXPECT_GE(ticks_of_the_other, 1);
}

// KillTimer does not take back a message that has left the queue.
TEST_F(WindowlessTimer, IgnoresATickOfTheTimeBeforeItWasStopped) {
  const auto timer = make_timer();
  timer->SetEnabled(1);
  MSG late;
  ASSERT_TRUE(GetMessageA(&late, nullptr, WM_TIMER, WM_TIMER));
  ASSERT_EQ(late.wParam, calls.ids[0]);
  timer->SetEnabled(0);
  DispatchMessageA(&late);
  EXPECT_EQ(timer->ticks, 0);
  timer->SetEnabled(1);
  DispatchMessageA(&late);
  EXPECT_EQ(timer->ticks, 0);
  EXPECT_TRUE(pump_ticks(*timer, 1));
}

// ---- suspension ----------------------------------------------------------------------------------------------------

TEST_F(WindowlessTimer, DeliversOneTickForAllThatWereHeldBack) {
  const auto timer = make_timer();
  timer->SetEnabled(1);
  timer->SetSuspended(-1);
  pump_timer_messages(3);
  EXPECT_EQ(timer->ticks, 0);
  EXPECT_EQ(timer->GetEnabled(), 1);
  timer->SetSuspended(0);
  EXPECT_EQ(timer->ticks, 1);
  timer->SetSuspended(0);
  EXPECT_EQ(timer->ticks, 1);
  EXPECT_TRUE(pump_ticks(*timer, 2));
}

TEST_F(WindowlessTimer, DeliversNothingWhereNothingWasHeldBack) {
  const auto timer = make_timer();
  timer->SetSuspended(0);
  timer->SetSuspended(-1);
  timer->SetSuspended(0);
  EXPECT_EQ(timer->ticks, 0);
}

TEST_F(WindowlessTimer, KeepsTheHeldTickWhileItStaysSuspended) {
  const auto timer = make_timer();
  timer->SetEnabled(1);
  timer->SetSuspended(-1);
  pump_timer_messages(1);
  timer->SetSuspended(1);
  EXPECT_EQ(timer->ticks, 0);
  timer->SetEnabled(0);
  timer->SetSuspended(0);  // stopped meanwhile, but it was held back
  EXPECT_EQ(timer->ticks, 1);
}

// Twice for a timer that does not repeat: what was held back, and the tick that stops it.
TEST_F(WindowlessTimer, TicksTwiceAfterASuspensionWhereItDoesNotRepeat) {
  const auto timer = make_timer();
  timer->SetRepeatable(0);
  timer->SetEnabled(1);
  timer->SetSuspended(-1);
  pump_timer_messages(2);
  timer->SetSuspended(0);
  EXPECT_EQ(timer->ticks, 1);
  EXPECT_EQ(timer->enabled_in_tick, 1);
  EXPECT_EQ(timer->GetEnabled(), 1);
  EXPECT_TRUE(pump_ticks(*timer, 2));
  EXPECT_EQ(timer->enabled_in_tick, 0);
  EXPECT_EQ(timer->GetEnabled(), 0);
}

// ---- the end -------------------------------------------------------------------------------------------------------

TEST_F(WindowlessTimer, IsStoppedByTheLastRelease) {
  auto timer = make_timer();
  const auto other = make_timer();
  timer->SetEnabled(1);
  other->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*timer, 1));
  timer.Release();
  EXPECT_EQ(TimerObject::alive, alive_after_ + 1);
  EXPECT_EQ(calls.killed, std::vector<UINT_PTR>{calls.ids[0]});
  EXPECT_TRUE(pump_ticks(*other, 3));
}

TEST_F(WindowlessTimer, MayBeGivenUpByItsOwnerInItsTick) {
  auto timer = make_timer();
  CComPtr<TimerObject> until_after_the_tick(timer);
  timer->on_tick = [&] { timer.Release(); };
  timer->SetRepeatable(0);
  timer->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*until_after_the_tick, 1));
  until_after_the_tick.Release();
  EXPECT_EQ(TimerObject::alive, alive_after_);
}

TEST_F(WindowlessTimer, StaysStoppedWhereTheSystemRefuses) {
  const auto timer = make_timer();
  calls.refuse = true;
  timer->SetEnabled(1);
  EXPECT_EQ(timer->GetEnabled(), 0);
  timer->SetEnabled(0);
  EXPECT_EQ(calls.killed.size(), 0u);

  calls.refuse = false;
  timer->SetEnabled(1);
  EXPECT_EQ(timer->GetEnabled(), 1);
  EXPECT_TRUE(pump_ticks(*timer, 1));
  pump_timer_messages(1);
  EXPECT_EQ(timer->ticks, 2);  // one tick for each call: what stayed behind of the failure has no part in it
  calls.refuse = true;
  timer->SetInterval(70);
  EXPECT_EQ(timer->GetEnabled(), 0);
  keep(timer);
}

TEST_F(WindowlessTimer, IsCopiedWithTheIdOfTheOriginal) {
  const auto timer = make_timer(60);
  timer->SetSuspended(3);
  timer->SetEnabled(1);
  pump_timer_messages(1);
  {
    TimerObject copy(*timer);
    EXPECT_EQ(copy.GetEnabled(), 1);
    EXPECT_EQ(copy.GetInterval(), 60);
    EXPECT_EQ(copy.GetSuspended(), 3);
    EXPECT_EQ(copy.GetRepeatable(), 1);
    copy.SetSuspended(0);
    EXPECT_EQ(copy.ticks, 1);  // the held tick was copied too
    copy.SetEnabled(0);
  }
  EXPECT_EQ(calls.killed, calls.ids);
  EXPECT_EQ(timer->GetEnabled(), 1);  // it does not know that its timer has gone

  TimerObject assigned;
  assigned = *timer;
  EXPECT_EQ(assigned.GetEnabled(), 1);
  EXPECT_EQ(assigned.GetSuspended(), 3);
}

TEST_F(WindowlessTimer, TenThousandRoundsLeaveNothingBehind) {
  expect_flat(10000, [] {
    const auto timer = make_timer();
    timer->SetEnabled(1);
    timer->SetInterval(60);
    calls = {};
  });
}

TEST_F(WindowlessTimer, TenThousandTickOnceEach) {
  std::vector<CComPtr<TimerObject>> timers;
  int ticks = 0;
  for (int i = 0; i < 10000; ++i) {
    timers.push_back(make_timer());
    timers.back()->SetRepeatable(0);
    timers.back()->on_tick = [&] { ++ticks; };
  }
  for (const auto& timer : timers) timer->SetEnabled(1);
  EXPECT_TRUE(pump_until([&] { return ticks == 10000; }, std::chrono::seconds(60)));
  for (const auto& timer : timers) {
    ASSERT_EQ(timer->ticks, 1);
    ASSERT_EQ(timer->GetEnabled(), 0);
  }
}

// ---- threads -------------------------------------------------------------------------------------------------------

// Two new threads: there the system may give both the same id.
TEST_F(WindowlessTimer, TicksOnTheThreadThatStartedIt) {
  std::vector<DWORD> ticked[2];
  DWORD ids[2];
  CEvent second_runs, first_is_done;
  const auto run = [&](int which, CEvent& wait_for, CEvent& tell, bool tell_at_once) {
    ids[which] = GetCurrentThreadId();
    const auto timer = make_timer();
    timer->SetEnabled(1);
    if (tell_at_once) tell.SetEvent();
    pump_until([&] { return timer->ticks >= 3 && wait_for.Lock(0); });
    tell.SetEvent();
    ticked[which] = timer->threads;
  };
  std::thread first([&] { run(0, second_runs, first_is_done, false); });
  std::thread second([&] { run(1, first_is_done, second_runs, true); });
  first.join();
  second.join();
  for (int which : {0, 1}) {
    EXPECT_GE(ticked[which].size(), 3u);
    EXPECT_EQ(ticked[which], std::vector<DWORD>(ticked[which].size(), ids[which]));
  }
}

// The lock of all timers is held during a tick.
TEST_F(WindowlessTimer, KeepsOtherThreadsFromStartingOnesWhileItTicks) {
  CEvent in_tick, started;
  bool started_early = true;
  const auto timer = make_timer();
  timer->SetRepeatable(0);
  timer->on_tick = [&] {
    in_tick.SetEvent();
    started_early = started.Lock(300);
  };
  std::thread other([&] {
    const auto second = make_timer();
    in_tick.Lock(ages);
    second->SetEnabled(1);
    started.SetEvent();
  });
  timer->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*timer, 1));
  other.join();
  EXPECT_FALSE(started_early);
  EXPECT_TRUE(started.Lock(0));
}

TEST_F(WindowlessTimer, LetsItsOwnThreadStartAndStopOthersWhileItTicks) {
  const auto timer = make_timer(), other = make_timer();
  timer->on_tick = [&] {
    other->SetEnabled(1);
    other->SetEnabled(0);
  };
  timer->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*timer, 2));
  EXPECT_EQ(other->ticks, 0);
}

TEST(WindowlessTimerInChildProcess, AnExceptionThatLeavesATickEndsTheProgram) {
  EXPECT_EXIT(
      {
        const auto timer = make_timer();
        timer->on_tick = [] { throw 1; };
        timer->SetEnabled(1);
        pump_ticks(*timer, 1);
      },
      testing::ExitedWithCode(3), "terminate called");
}

// A thread that is gone holds the lock of all timers then.
TEST(WindowlessTimerInChildProcess, AProgramMayEndWhileAnotherThreadIsInItsTick) {
  EXPECT_EQ(run_program("kexlib_host.exe", "in_tick"), 7u);
}

// ---- what comes with it --------------------------------------------------------------------------------------------

TEST(ObjectRoot, CountsReferences) {
  CComObjectRootExSTM root;
  EXPECT_EQ(root._AtlInitialConstruct(), S_OK);
  EXPECT_EQ(root.InternalAddRef(), 1u);
  EXPECT_EQ(root.InternalAddRef(), 2u);
  root.Lock();
  root.Unlock();
  EXPECT_EQ(root.InternalRelease(), 1u);

  CComObjectRootExSTM assigned;
  assigned = root;
  EXPECT_EQ(assigned.InternalAddRef(), 2u);
  EXPECT_EQ(CComObjectRootExSTM(assigned).InternalAddRef(), 3u);
  EXPECT_EQ(root.InternalRelease(), 0u);
  EXPECT_EQ(root.InternalRelease(), 0xFFFFFFFFu);  // plain arithmetic
}

TEST(Link, MakesTheProgramNeedTheLibrary) {
  link();
  EXPECT_NE(GetModuleHandleA("kexlib.dll"), nullptr);
}

}  // namespace
