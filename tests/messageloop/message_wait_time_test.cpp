#include <gtest/gtest.h>

#include <windows.h>

#include <messageloop/message_wait_fixture.h>
#include <support/import_override.h>

#include <thread>
#include <vector>

namespace {

// ---- time -----------------------------------------------------------------------------------------------------------

TEST_F(MessageWait, WithoutTimeAsksTheObjectsOnceAndLeavesTheQueueAlone) {
  window_.post(WM_APP);
  MSG quit{};
  quit.message = 4711;
  Event event;
  const HANDLE handle = event;
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, 0, FALSE, &quit), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 0, FALSE, &quit), static_cast<DWORD>(WAIT_TIMEOUT));
  event.set();
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, 0, FALSE, &quit), WAIT_OBJECT_0);
  EXPECT_EQ(window_.count(WM_APP), 0);
  EXPECT_EQ(quit.message, 4711u);
}

TEST_F(MessageWait, WithoutObjectsIsASleepThatKeepsMessagesGoing) {
  for (int i = 0; i < 10; ++i) window_.post(WM_APP);
  MSG quit{};
  quit.message = 4711;
  const GivenTicks given({1000});  // the time does not pass before the sleep, however slow the machine is
  const auto start = Clock::now();
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 150, FALSE, &quit), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_GE(milliseconds_since(start), 150 - grain);
  EXPECT_EQ(window_.count(WM_APP), 10);
  EXPECT_EQ(quit.message, 0u);
}

TEST_F(MessageWait, KeepsTheTimeInAFloodThatNeverEnds) {
  window_.on_message = [&](UINT message, WPARAM) {
    if (message == WM_APP) window_.post(WM_APP);
  };
  window_.post(WM_APP);
  const auto start = Clock::now();
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 100, FALSE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_GE(milliseconds_since(start), 100 - grain);
  EXPECT_LT(milliseconds_since(start), 5000);
  window_.on_message = {};
}

DWORD first_tick;
DWORD real_first_tick;

// The tick counter, shortly before it wraps.
DWORD WINAPI late_tick_count() { return first_tick + (GetTickCount() - real_first_tick); }

TEST_F(MessageWait, SurvivesTheEndOfTheTickCounter) {
  first_tick = 0xFFFFFFFF - 50;
  real_first_tick = GetTickCount();
  const ImportOverride late("kexlib.dll", "KERNEL32.dll", "GetTickCount", &late_tick_count);
  ASSERT_TRUE(late.made());
  const auto start = Clock::now();
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 200, FALSE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_GE(milliseconds_since(start), 200 - grain);
  EXPECT_LT(milliseconds_since(start), 5000);
  EXPECT_LT(late_tick_count(), first_tick);  // the counter has wrapped
}

// ---- the sleep ------------------------------------------------------------------------------------------------------

double processor_milliseconds() {
  FILETIME made, ended, kernel, user;
  GetThreadTimes(GetCurrentThread(), &made, &ended, &kernel, &user);
  return (static_cast<double>(kernel.dwLowDateTime) + static_cast<double>(user.dwLowDateTime)) / 1e4;
}

TEST_F(SleepOfMessageWait, CostsNothingWhileNothingHappens) {
  const Event event;
  const HANDLE handle = event;
  const double before = processor_milliseconds();
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, 500, FALSE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_LT(processor_milliseconds() - before, 50);
  EXPECT_EQ(sleeps.polls, 1);
  ASSERT_EQ(sleeps.sleeps.size(), 1u);
}

TEST_F(SleepOfMessageWait, IsForAnyObjectAndAnyKindOfMessage) {
  const Event event;
  const HANDLE handle = event;
  sleeps.before_sleep = [&] { event.set(); };
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
  ASSERT_EQ(sleeps.sleeps.size(), 1u);
  EXPECT_EQ(sleeps.sleeps[0][0], 1u);
  EXPECT_EQ(sleeps.sleeps[0][1], 0u);
  EXPECT_LE(sleeps.sleeps[0][2], ages);
  EXPECT_EQ(sleeps.sleeps[0][3], 0x04FFu);
}

TEST_F(SleepOfMessageWait, HasNoLimitWhereTheWaitHasNone) {
  std::thread other([&] { PostMessageA(window_.handle, WM_APP, 0, 0); });
  window_.on_message = [](UINT message, WPARAM) {
    if (message == WM_APP) PostQuitMessage(3);
  };
  MSG quit{};
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, INFINITE, FALSE, &quit), 0u);
  other.join();
  for (const auto& sleep : sleeps.sleeps) EXPECT_EQ(sleep[2], INFINITE);
  EXPECT_EQ(sleeps.polls, 0);  // there is no object to poll
}

TEST_F(SleepOfMessageWait, IsNoPollBetweenMessages) {
  const Event event;
  const HANDLE handle = event;
  window_.on_message = [&](UINT message, WPARAM) {
    if (message == WM_APP + 1) event.set();
  };
  window_.post(WM_APP);
  window_.post(WM_APP + 1);
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
  EXPECT_EQ(sleeps.polls, 3);
  EXPECT_EQ(sleeps.poll_time, 0u);
  EXPECT_EQ(sleeps.sleeps.size(), 0u);
}

TEST_F(SleepOfMessageWait, IsLeftOutWhereTheTimeEndsWhileTheQueueIsLookedAt) {
  const GivenTicks given({1000, 1000, 1100});  // the start, before the queue, after it
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 100, FALSE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  EXPECT_EQ(sleeps.sleeps.size(), 0u);
}

TEST_F(SleepOfMessageWait, HasTheRestOfTheTimeOnlyAfterAMessage) {
  const GivenTicks given({1000});
  window_.on_message = [](UINT message, WPARAM) {
    if (message == WM_APP) ticks = {1070};  // the work of a handler
  };
  window_.post(WM_APP);
  EXPECT_EQ(SafeWaitWithMessageLoop(0, nullptr, 100, FALSE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  ASSERT_EQ(sleeps.sleeps.size(), 1u);
  EXPECT_EQ(sleeps.sleeps[0][2], 30u);
}

}  // namespace
