// CWinThread and AfxBeginThread: start, end and deletion.
#include <gtest/gtest.h>

#include <afxmt.h>
#include <afxwin.h>

#include <support/c_library.h>
#include <support/expect_flat.h>
#include <support/import_override.h>

#include <cstdlib>
#include <thread>

namespace {

// The observations of a thread.
struct Seen {
  CEvent begun;
  CWinThread* thread = nullptr;
  CWnd* main_window = nullptr;
  DWORD id = 0;
  int priority = -99;
  size_t stack = 0;
};

UINT look(LPVOID parameter) {
  auto* seen = static_cast<Seen*>(parameter);
  seen->thread = AfxGetThread();
  seen->main_window = AfxGetMainWnd();
  seen->id = GetCurrentThreadId();
  seen->priority = GetThreadPriority(GetCurrentThread());
  ULONG_PTR low, high;
  GetCurrentThreadStackLimits(&low, &high);
  seen->stack = high - low;
  seen->begun.SetEvent();
  return 42;
}

// Waits for the end of the thread and returns its exit code.
DWORD exit_code_of(HANDLE thread) {
  EXPECT_EQ(WaitForSingleObject(thread, 10000), WAIT_OBJECT_0);
  DWORD code = 0;
  EXPECT_TRUE(GetExitCodeThread(thread, &code));
  return code;
}

bool is_open(HANDLE handle) {
  DWORD flags;
  return GetHandleInformation(handle, &flags);
}

HANDLE copy_of(HANDLE handle) {
  HANDLE copy = nullptr;
  DuplicateHandle(GetCurrentProcess(), handle, GetCurrentProcess(), &copy, 0, FALSE, DUPLICATE_SAME_ACCESS);
  return copy;
}

TEST(Thread, OneThatIsSuspendedWaitsToBeResumedAndBelongsToItsOwner) {
  Seen seen;
  CWinThread* thread = AfxBeginThread(&look, &seen, THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED);
  ASSERT_NE(thread, nullptr);
  EXPECT_TRUE(thread->m_bAutoDelete);
  EXPECT_FALSE(seen.begun.Lock(50));
  thread->m_bAutoDelete = FALSE;
  EXPECT_EQ(thread->ResumeThread(), 1u);

  HANDLE handle = thread->m_hThread;
  EXPECT_EQ(exit_code_of(handle), 42u);
  EXPECT_EQ(seen.thread, thread);
  EXPECT_EQ(seen.id, thread->m_nThreadID);
  EXPECT_EQ(GetThreadId(handle), thread->m_nThreadID);
  EXPECT_TRUE(is_open(handle));
  delete thread;
  EXPECT_FALSE(is_open(handle));
}

TEST(Thread, ByItselfTheObjectEndsWithTheThread) {
  Seen seen;
  CWinThread* thread = AfxBeginThread(&look, &seen, THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED);
  HANDLE handle = thread->m_hThread;
  HANDLE copy = copy_of(handle);
  thread->ResumeThread();
  EXPECT_EQ(exit_code_of(copy), 42u);
  // No other code opens a handle meanwhile, which could get the same value.
  EXPECT_FALSE(is_open(handle));
  CloseHandle(copy);
}

TEST(Thread, OneThatIsNotSuspendedRunsAtOnce) {
  Seen seen;
  ASSERT_NE(AfxBeginThread(&look, &seen), nullptr);
  ASSERT_TRUE(seen.begun.Lock(10000));
  EXPECT_NE(seen.id, GetCurrentThreadId());
  EXPECT_EQ(seen.priority, THREAD_PRIORITY_NORMAL);
}

TEST(Thread, HasThePriorityAndTheStackThatItIsGiven) {
  Seen seen;
  CWinThread* thread = AfxBeginThread(&look, &seen, THREAD_PRIORITY_BELOW_NORMAL, 16 << 20, CREATE_SUSPENDED);
  thread->m_bAutoDelete = FALSE;
  EXPECT_EQ(GetThreadPriority(thread->m_hThread), THREAD_PRIORITY_BELOW_NORMAL);
  EXPECT_TRUE(thread->SetThreadPriority(THREAD_PRIORITY_ABOVE_NORMAL));
  thread->ResumeThread();
  exit_code_of(thread->m_hThread);
  EXPECT_EQ(seen.priority, THREAD_PRIORITY_ABOVE_NORMAL);
  EXPECT_GE(seen.stack, size_t{16} << 20);
  delete thread;
}

TEST(Thread, HasTheMainWindowOfTheThreadThatStartedIt) {
  CWinApp app;
  CWnd main_window;
  app.m_pMainWnd = &main_window;
  Seen seen;
  CWinThread* thread = AfxBeginThread(&look, &seen, THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED);
  thread->m_bAutoDelete = FALSE;
  thread->ResumeThread();
  exit_code_of(thread->m_hThread);
  EXPECT_EQ(seen.main_window, &main_window);
  EXPECT_EQ(seen.thread, thread);
  delete thread;
}

TEST(Thread, OneThatTheFrameworkDoesNotKnowHasNoObject) {
  EXPECT_EQ(AfxGetThread(), nullptr);
  EXPECT_EQ(AfxGetMainWnd(), nullptr);
  CWinApp app;
  Seen seen;
  std::thread(look, &seen).join();
  EXPECT_EQ(seen.thread, nullptr);
  EXPECT_EQ(seen.main_window, nullptr);
}

TEST(Thread, WithoutAFunctionNoneIsStarted) {
  EXPECT_EQ(AfxBeginThread(nullptr, nullptr), nullptr);
  CWinThread thread;
  EXPECT_FALSE(thread.CreateThread());
  EXPECT_EQ(thread.m_hThread, nullptr);
}

TEST(Thread, WhereTheSystemRefusesThereIsNone) {
  SECURITY_DESCRIPTOR wrong{};
  SECURITY_ATTRIBUTES security = {sizeof security, &wrong, FALSE};
  Seen seen;
  EXPECT_EQ(AfxBeginThread(&look, &seen, THREAD_PRIORITY_NORMAL, 0, 0, &security), nullptr);
  EXPECT_FALSE(seen.begun.Lock(0));
}

void* no_memory_for_threads(std::size_t bytes) { return bytes == sizeof(CWinThread) ? nullptr : std::malloc(bytes); }

TEST(Thread, WhereThereIsNoMemoryThereIsNone) {
  const ImportOverride refusal(c_library::allocator_of("kexframework.dll"), c_library::dll, "malloc",
                               &no_memory_for_threads);
  ASSERT_TRUE(refusal.made());
  Seen seen;
  EXPECT_EQ(AfxBeginThread(&look, &seen), nullptr);
  EXPECT_FALSE(seen.begun.Lock(0));
}

TEST(Thread, AnObjectStartsOneThreadOnly) {
  Seen seen;
  CWinThread thread(&look, &seen);
  thread.m_bAutoDelete = FALSE;
  EXPECT_TRUE(thread.CreateThread());
  HANDLE handle = thread.m_hThread;
  EXPECT_FALSE(thread.CreateThread());
  EXPECT_EQ(thread.m_hThread, handle);
  EXPECT_EQ(exit_code_of(handle), 42u);
}

TEST(Thread, AThousandLeaveNothingBehind) {
  const auto run = [](bool owned) {
    Seen seen;
    CWinThread* thread = AfxBeginThread(&look, &seen, THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED);
    thread->m_bAutoDelete = !owned;
    HANDLE copy = copy_of(thread->m_hThread);
    thread->ResumeThread();
    EXPECT_EQ(exit_code_of(copy), 42u);
    CloseHandle(copy);
    if (owned) delete thread;
  };
  expect_flat(500, [&] {
    run(false);
    run(true);
  });
}

UINT fail(LPVOID) { AfxThrowFileException(CFileException::diskFull, ERROR_DISK_FULL, "a.txt"); }

TEST(ThreadInChildProcess, AnExceptionThatLeavesTheFunctionEndsTheProgram) {
  EXPECT_EXIT(
      {
        AfxBeginThread(&fail, nullptr);
        Sleep(10000);
      },
      testing::ExitedWithCode(c_library::status_of_an_uncaught_exception), c_library::said_of_an_uncaught_exception);
}

}  // namespace
