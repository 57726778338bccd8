#include <gtest/gtest.h>

#include <afxdisp.h>
#include <afxmt.h>

#include <messageloop/thread_message_hook_fixture.h>
#include <support/c_library.h>
#include <support/import_override.h>
#include <support/message_pump.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

// A thread with a message queue and a message loop.
class PumpingThread {
 public:
  PumpingThread() {
    CEvent ready;
    thread_ = std::thread([&] {
      pump_waiting();  // creates the queue
      id = GetCurrentThreadId();
      ready.SetEvent();
      MSG message;
      while (GetMessageA(&message, nullptr, 0, 0)) {
        DispatchMessageA(&message);
        ++taken;
      }
    });
    EXPECT_TRUE(ready.Lock(ages));
  }
  PumpingThread(const PumpingThread&) = delete;
  PumpingThread& operator=(const PumpingThread&) = delete;
  ~PumpingThread() { end(); }

  void end() {
    if (!thread_.joinable()) return;
    PostThreadMessageA(id, WM_QUIT, 0, 0);
    thread_.join();
  }

  DWORD id = 0;
  std::atomic<int> posted{0}, taken{0};  // messages of a flood

 private:
  std::thread thread_;
};

TEST_F(ThreadMessageHook, HandlesTheMessagesOfAnotherThreadThere) {
  PumpingThread other;
  CEvent handled;
  RecordingHook hook(1, other.id);
  hook.on_message = [&](const MSG&) { handled.SetEvent(); };
  EXPECT_NE(hook.PostHookMessage(listed, 0, 0), 0);
  EXPECT_TRUE(handled.Lock(ages));
  EXPECT_EQ(hook.RemoveHook(), S_OK);
  EXPECT_EQ(hook.threads, std::vector<DWORD>{other.id});
}

// The system has removed the hook with its thread; the object still counts as hooked.
TEST_F(ThreadMessageHook, CannotBeUnhookedAfterTheEndOfItsThread) {
  RecordingHook* hook = nullptr;
  std::thread([&] { hook = new RecordingHook(1); }).join();
  EXPECT_EQ(hook->RemoveHook(), HRESULT_FROM_WIN32(ERROR_INVALID_HOOK_HANDLE));
  EXPECT_EQ(hook->IsHooked(), 1);
  EXPECT_EQ(hook->PostHookMessage(listed, 0, 0), 0);
  delete hook;
  hook_.SetHook();
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 1u);
}

TEST_F(ThreadMessageHook, GetsTenThousandMessagesOfFourThreadsOnceEach) {
  constexpr int senders = 4;
  constexpr int each = 2500;
  std::vector<int> arrived(senders * each, 0);
  int count = 0;
  hook_.on_message = [&](const MSG& message) {
    ++arrived[message.wParam];
    ++count;
  };
  hook_.SetHook();
  std::vector<std::thread> threads;
  for (int sender = 0; sender < senders; ++sender)
    threads.emplace_back([&, sender] {
      for (int i = 0; i < each; ++i)
        EXPECT_NE(hook_.PostHookMessage(listed, static_cast<WPARAM>(sender * each + i), 0), 0);
    });
  EXPECT_TRUE(pump_until([&] { return count == senders * each; }, std::chrono::seconds(60)));
  for (std::thread& thread : threads) thread.join();
  pump_waiting();
  EXPECT_EQ(arrived, std::vector<int>(senders * each, 1));
}

TEST_F(ThreadMessageHook, KeepsOtherThreadsWaitingWhileItsHandlerRuns) {
  CEvent in_handler, answered;
  bool answered_early = true;
  int hooked = 0;
  hook_.on_message = [&](const MSG&) {
    in_handler.SetEvent();
    answered_early = answered.Lock(200);
  };
  hook_.SetHook();
  std::thread other([&] {
    in_handler.Lock(ages);
    hooked = hook_.IsHooked();
    answered.SetEvent();
  });
  post_to_this_thread(listed);
  pump_waiting();
  other.join();
  EXPECT_FALSE(answered_early);
  EXPECT_EQ(hooked, 1);
  EXPECT_TRUE(answered.Lock(0));
}

TEST(ThreadMessageHookInChildProcess, AnExceptionThatLeavesTheHandlerEndsTheProgram) {
  EXPECT_EXIT(
      {
        RecordingHook hook(1);
        hook.on_message = [](const MSG&) { throw 1; };
        post_to_this_thread(listed);
        pump_waiting();
      },
      testing::ExitedWithCode(3), c_library::said_by_terminate);
}

// ---- removal on another thread -------------------------------------------------------------------------------------

// Stops the hooked thread once, before it enters the lock of the object.
std::atomic<DWORD> thread_to_stop{0};
HANDLE stopped_at_the_lock, may_go_on;

void WINAPI stop_and_enter(CRITICAL_SECTION* section) {
  DWORD this_thread = GetCurrentThreadId();
  if (thread_to_stop.compare_exchange_strong(this_thread, 0)) {
    SetEvent(stopped_at_the_lock);
    WaitForSingleObject(may_go_on, ages);
  }
  EnterCriticalSection(section);
}

TEST_F(ThreadMessageHook, CallsNoHandlerAfterItsRemovalByAnotherThread) {
  const ImportOverride stopping("kexlib.dll", "KERNEL32.dll", "EnterCriticalSection", &stop_and_enter);
  ASSERT_TRUE(stopping.made());
  CEvent stopped, go_on;
  stopped_at_the_lock = stopped;
  may_go_on = go_on;
  PumpingThread other;
  RecordingHook hook(1, other.id);
  thread_to_stop = other.id;
  EXPECT_NE(hook.PostHookMessage(listed, 0, 0), 0);
  ASSERT_TRUE(stopped.Lock(ages));
  EXPECT_EQ(hook.RemoveHook(), S_OK);
  go_on.SetEvent();
  other.end();
  EXPECT_EQ(hook.handled.size(), 0u);
}

// Posts listed messages to a thread as fast as it removes them.
class Flood {
 public:
  explicit Flood(PumpingThread& target) : thread_([this, &target] { run(target); }) {}
  Flood(const Flood&) = delete;
  Flood& operator=(const Flood&) = delete;
  ~Flood() {
    ended_ = true;
    thread_.join();
  }

 private:
  void run(PumpingThread& target) {
    constexpr int room = 100;  // far below the capacity of the queue
    while (!ended_) {
      if (target.posted - target.taken < room && PostThreadMessageA(target.id, listed, 0, 0))
        ++target.posted;
      else
        std::this_thread::yield();
    }
  }

  std::atomic<bool> ended_{false};
  std::thread thread_;
};

// Waits until the thread has removed some more messages.
void wait_for_messages(const PumpingThread& thread, int count) {
  const int before = thread.taken;
  while (thread.taken - before < count) std::this_thread::yield();
}

TEST_F(ThreadMessageHook, CallsNoHandlerAfterItsRemovalInAFloodFromTwoThreads) {
  constexpr int rounds = 500, messages = 5;
  PumpingThread other;
  RecordingHook hook(0, other.id);
  std::atomic<bool> removed{true};
  std::atomic<int> in_time{0}, late{0};
  hook.on_message = [&](const MSG&) { ++(removed ? late : in_time); };
  {
    const Flood first(other), second(other);
    for (int round = 0; round < rounds; ++round) {
      removed = false;
      ASSERT_EQ(hook.SetHook(), S_OK);
      wait_for_messages(other, messages);
      ASSERT_EQ(hook.RemoveHook(), S_OK);
      removed = true;
      wait_for_messages(other, messages);
    }
  }
  other.end();
  EXPECT_EQ(late, 0);
  EXPECT_GE(in_time, rounds);
}

// The thread of the second object has ended, so its hook cannot be removed. The hook of the first one must not call it.
TEST_F(ThreadMessageHook, LeavesNothingToCallWhereItIsDestroyedAfterTheEndOfItsThread) {
  hook_.SetHook();
  auto second = std::make_unique<RecordingHook>();
  std::thread([&] { second = std::make_unique<RecordingHook>(1); }).join();
  second.reset();
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 0u);
}

}  // namespace
