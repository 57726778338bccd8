#include <gtest/gtest.h>

#include <messageloop/windowless_timer_fixture.h>
#include <support/message_pump.h>

#include <chrono>
#include <vector>

namespace {

TEST_F(WindowlessTimer, TicksAgainAndAgain) {
  const auto timer = make_timer();
  const auto start = std::chrono::steady_clock::now();
  timer->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*timer, 3));
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
  EXPECT_EQ(timer->enabled_in_tick, 1);
  EXPECT_EQ(calls.started, 1);
  timer->SetEnabled(0);
  const int ticks = timer->ticks;  // more than 3 on a busy machine
  const auto other = make_timer();
  other->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*other, 2));
  EXPECT_EQ(timer->ticks, ticks);
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
  const int ticks = timer->ticks;  // more than 1 on a busy machine
  timer->SetRepeatable(0);
  EXPECT_EQ(timer->GetEnabled(), 1);
  EXPECT_TRUE(pump_ticks(*timer, ticks + 1));
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
    pump_timer_messages(6);  // about three rounds of both
    EXPECT_EQ(timer->ticks, 1);
    ticks_of_the_other = other->ticks - before;
  };
  timer->SetEnabled(1);
  other->SetEnabled(1);
  EXPECT_TRUE(pump_ticks(*timer, 2));
  EXPECT_GE(ticks_of_the_other, 1);
}

// KillTimer does not revoke a message that was removed from the queue.
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

}  // namespace
