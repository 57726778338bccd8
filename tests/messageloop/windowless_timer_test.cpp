#include <gtest/gtest.h>

#include <messageloop/windowless_timer_fixture.h>

#include <climits>
#include <type_traits>
#include <vector>

namespace {

// ---- properties -----------------------------------------------------------------------------------------------------

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

TEST_F(WindowlessTimer, TakesEveryIntervalAlsoWhileItRuns) {
  const CComPtr<TimerObject> timer = make_timer();
  timer->SetEnabled(1);
  for (const long interval : {LONG_MIN, -1L, 0L, LONG_MAX}) {
    timer->SetInterval(interval);
    EXPECT_EQ(timer->GetInterval(), interval < 50 ? 50 : interval);
    EXPECT_EQ(timer->GetEnabled(), 1) << interval;
  }
  timer->SetEnabled(SHRT_MIN);
  EXPECT_EQ(timer->GetEnabled(), 1);
  timer->SetEnabled(0);
  timer->SetInterval(LONG_MIN);
  EXPECT_EQ(timer->GetInterval(), 50);
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

// The argument is compared as given, not after it is raised to the minimum.
TEST_F(WindowlessTimer, BeginsANewIntervalForEachOneThatIsTooShort) {
  const auto timer = make_timer(50);
  timer->SetEnabled(1);
  timer->SetInterval(50);
  EXPECT_EQ(calls.started, 1);
  timer->SetInterval(10);
  timer->SetInterval(10);
  EXPECT_EQ(calls.intervals, (std::vector<UINT>{50, 50, 50}));
}

// ---- suspension -----------------------------------------------------------------------------------------------------

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

// Twice for a timer that does not repeat: the tick that was held back, and the tick that stops it.
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

// ---- the object root and the import ---------------------------------------------------------------------------------

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
