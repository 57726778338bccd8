#include <gtest/gtest.h>

#include <windows.h>

#include <messageloop/message_wait_fixture.h>

#include <string>
#include <thread>
#include <vector>

namespace {

TEST_F(MessageWait, GivesTheLowestSignalledIndexAndTakesThatObjectOnly) {
  const Event first, second(true), third(true);
  const HANDLE handles[] = {first, second, third};
  EXPECT_EQ(SafeWaitWithMessageLoop(3, handles, ages, FALSE, nullptr), WAIT_OBJECT_0 + 1);
  EXPECT_FALSE(second.take());
  EXPECT_TRUE(third.take());
}

TEST_F(MessageWait, EndsWhenAnObjectIsSignalledDuringTheSleep) {
  const Event first, second;
  const HANDLE handles[] = {first, second};
  const SleepObserver observer;
  sleeps.before_sleep = [&] { second.set(); };  // after the last poll
  EXPECT_EQ(SafeWaitWithMessageLoop(2, handles, INFINITE, FALSE, nullptr), WAIT_OBJECT_0 + 1);
  EXPECT_EQ(sleeps.polls, 1);
  EXPECT_EQ(sleeps.sleeps.size(), 1u);
}

TEST_F(MessageWait, TakesAMutexAndSaysWhenItWasAbandoned) {
  const HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
  const Event never;
  const HANDLE handles[] = {never, mutex};
  EXPECT_EQ(SafeWaitWithMessageLoop(2, handles, ages, FALSE, nullptr), WAIT_OBJECT_0 + 1);
  EXPECT_TRUE(ReleaseMutex(mutex));

  std::thread([&] { WaitForSingleObject(mutex, INFINITE); }).join();
  EXPECT_EQ(SafeWaitWithMessageLoop(2, handles, ages, FALSE, nullptr), WAIT_ABANDONED_0 + 1);
  EXPECT_TRUE(ReleaseMutex(mutex));  // this thread owns it now
  CloseHandle(mutex);
}

TEST_F(MessageWait, SaysThatAMutexWasAbandonedDuringTheSleep) {
  const HANDLE mutex = CreateMutexA(nullptr, FALSE, nullptr);
  const Event held, end;
  std::thread owner([&] {
    WaitForSingleObject(mutex, INFINITE);
    held.set();
    WaitForSingleObject(end, INFINITE);
  });
  ASSERT_EQ(WaitForSingleObject(held, ages), WAIT_OBJECT_0);
  const SleepObserver observer;
  sleeps.before_sleep = [&] {
    end.set();
    owner.join();
  };
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &mutex, ages, FALSE, nullptr), WAIT_ABANDONED_0);
  EXPECT_EQ(sleeps.polls, 1);
  EXPECT_TRUE(ReleaseMutex(mutex));
  CloseHandle(mutex);
}

TEST_F(MessageWait, WaitsForAThread) {
  const Event started, end;
  DWORD id = 0;
  std::thread thread([&] {
    id = GetCurrentThreadId();
    started.set();
    WaitForSingleObject(end, INFINITE);
  });
  ASSERT_EQ(WaitForSingleObject(started, ages), WAIT_OBJECT_0);
  const HANDLE handle = OpenThread(SYNCHRONIZE, FALSE, id);
  ASSERT_NE(handle, nullptr);
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, 20, FALSE, nullptr), static_cast<DWORD>(WAIT_TIMEOUT));
  end.set();
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &handle, ages, FALSE, nullptr), WAIT_OBJECT_0);
  thread.join();
  CloseHandle(handle);
}

TEST(MessageWaitInChildProcess, WaitsForAProcess) {
  std::string command = "cmd.exe /c exit 7";
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process;
  ASSERT_TRUE(
      CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
  EXPECT_EQ(SafeWaitWithMessageLoop(1, &process.hProcess, ages, FALSE, nullptr), WAIT_OBJECT_0);
  DWORD code = 0;
  GetExitCodeProcess(process.hProcess, &code);
  EXPECT_EQ(code, 7u);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

// The requested number of objects, none signalled.
struct Events {
  explicit Events(size_t count) : events(count), handles(events.begin(), events.end()) {}
  DWORD wait(DWORD timeout) const {
    return SafeWaitWithMessageLoop(static_cast<DWORD>(handles.size()), handles.data(), timeout, FALSE, nullptr);
  }
  std::vector<Event> events;
  std::vector<HANDLE> handles;
};

TEST_F(MessageWait, SleepsOnSixtyThreeObjects) {
  for (const size_t count : {size_t{1}, size_t{63}}) {
    const Events objects(count);
    EXPECT_EQ(objects.wait(20), static_cast<DWORD>(WAIT_TIMEOUT));
    objects.events.back().set();
    EXPECT_EQ(objects.wait(ages), WAIT_OBJECT_0 + count - 1);
    const SleepObserver observer;
    sleeps.before_sleep = [&] { objects.events.back().set(); };
    EXPECT_EQ(objects.wait(ages), WAIT_OBJECT_0 + count - 1);
    EXPECT_EQ(sleeps.polls, 1);
  }
}

TEST_F(MessageWait, AsksSixtyFourObjectsButCannotSleepOnThem) {
  const Events objects(64);
  objects.events.back().set();
  EXPECT_EQ(objects.wait(ages), WAIT_OBJECT_0 + 63);
  EXPECT_EQ(objects.wait(0), static_cast<DWORD>(WAIT_TIMEOUT));

  window_.post(WM_APP);
  EXPECT_EQ(objects.wait(ages), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(window_.count(WM_APP), 1);  // the wait fails only after the queue is empty
}

TEST_F(MessageWait, CannotAskMoreThanSixtyFourObjects) {
  const Events objects(65);
  objects.events.front().set();
  window_.post(WM_APP);
  EXPECT_EQ(objects.wait(ages), WAIT_FAILED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(window_.count(WM_APP), 0);
}

TEST_F(MessageWait, TellsABadHandleAsTheSystemDoes) {
  const Event good;
  const HANDLE closed = CreateEventA(nullptr, FALSE, FALSE, nullptr);
  CloseHandle(closed);
  for (const HANDLE bad : {HANDLE{nullptr}, closed}) {
    const HANDLE handles[] = {good, bad};
    for (const DWORD timeout : {DWORD{0}, ages}) {
      SetLastError(0);
      EXPECT_EQ(SafeWaitWithMessageLoop(2, handles, timeout, FALSE, nullptr), WAIT_FAILED);
      EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
    }
  }
}

}  // namespace
