#include <gtest/gtest.h>

#include <messageloop/windowless_timer_fixture.h>
#include <support/c_library.h>
#include <support/expect_flat.h>
#include <support/message_pump.h>

#include <chrono>
#include <thread>
#include <vector>

namespace {

// ---- the end --------------------------------------------------------------------------------------------------------

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
  EXPECT_EQ(timer->ticks, 2);  // one tick for each call: the failed start adds none
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
  EXPECT_EQ(timer->GetEnabled(), 1);  // it does not detect that its timer was killed

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

// ---- threads --------------------------------------------------------------------------------------------------------

// Two new threads: the system may assign the same id on both.
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
      testing::ExitedWithCode(3), c_library::said_by_terminate);
}

}  // namespace
