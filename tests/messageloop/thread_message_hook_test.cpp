#include <kexlib/messageloop/thread_message_hook.h>

#include <gtest/gtest.h>

#include <afxdisp.h>
#include <afxmt.h>

#include <support/import_override.h>
#include <support/message_pump.h>

#include <algorithm>
#include <functional>
#include <new>
#include <numeric>
#include <thread>
#include <vector>

namespace {

constexpr UINT listed = WM_APP + 1;
constexpr UINT listed_too = WM_APP + 2;
constexpr UINT not_listed = WM_APP + 3;
constexpr DWORD ages = 20000;

class RecordingHook : public CThreadMessageHook {
 public:
  using CThreadMessageHook::CThreadMessageHook;

  const UINT* GetHookedMessages() override { return list; }
  void OnHookedMessage(MSG* msg) override {
    handled.push_back(*msg);
    threads.push_back(GetCurrentThreadId());
    if (on_message) on_message(*msg);
  }

  const UINT both[3] = {listed, listed_too, 0};
  const UINT* list = both;
  std::vector<MSG> handled;
  std::vector<DWORD> threads;
  std::function<void(const MSG&)> on_message;
};

void post_to_this_thread(UINT message, WPARAM w = 0, LPARAM l = 0) {
  ASSERT_TRUE(PostThreadMessageA(GetCurrentThreadId(), message, w, l));
}

// Whether a message of this number lies in this thread's queue; takes it.
bool take(UINT message) {
  MSG taken;
  return PeekMessageA(&taken, nullptr, message, message, PM_REMOVE);
}

class ThreadMessageHook : public testing::Test {
 protected:
  ThreadMessageHook() { pump_waiting(); }
  ~ThreadMessageHook() override { pump_waiting(); }

  RecordingHook hook_;
};

// ---- hooking and unhooking -----------------------------------------------------------------------------------------

TEST_F(ThreadMessageHook, IsNotHookedUnlessItIsAsked) {
  EXPECT_EQ(hook_.IsHooked(), 0);
  const RecordingHook unasked(0);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 0u);
  EXPECT_EQ(unasked.handled.size(), 0u);
}

TEST_F(ThreadMessageHook, IsHookedAtOnceWhereTheConstructorIsAsked) {
  RecordingHook hook(1);
  EXPECT_EQ(hook.IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook.handled.size(), 1u);
}

TEST_F(ThreadMessageHook, CannotBeHookedTwice) {
  EXPECT_EQ(hook_.SetHook(), S_OK);
  EXPECT_EQ(hook_.SetHook(), static_cast<long>(0x80004005));
  EXPECT_EQ(hook_.IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 1u);
}

TEST_F(ThreadMessageHook, CanBeUnhookedWheneverAndHookedAgain) {
  EXPECT_EQ(hook_.RemoveHook(), S_OK);
  hook_.SetHook();
  EXPECT_EQ(hook_.RemoveHook(), S_OK);
  EXPECT_EQ(hook_.IsHooked(), 0);
  EXPECT_EQ(hook_.RemoveHook(), S_OK);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 0u);
  EXPECT_EQ(hook_.SetHook(), S_OK);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 1u);
}

TEST_F(ThreadMessageHook, TellsWhyAThreadCannotBeHooked) {
  constexpr DWORD no_thread = 0xFFFFFFF0;
  SetLastError(0);
  ASSERT_EQ(SetWindowsHookExA(
                WH_GETMESSAGE, [](int, WPARAM, LPARAM) -> LRESULT { return 0; }, nullptr, no_thread),
            nullptr);
  const DWORD systems_error = GetLastError();
  ASSERT_NE(systems_error, 0u);
  RecordingHook nobody(1, no_thread);
  EXPECT_EQ(nobody.IsHooked(), 0);
  EXPECT_EQ(nobody.SetHook(), HRESULT_FROM_WIN32(systems_error));
  EXPECT_EQ(nobody.IsHooked(), 0);
}

TEST_F(ThreadMessageHook, AFailedHookLeavesNobodyWhoseHandlerIsCalled) {
  hook_.SetHook();
  RecordingHook nobody(1, 0xFFFFFFF0);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.IsHooked(), 1);
  EXPECT_EQ(hook_.handled.size(), 0u);
  EXPECT_EQ(nobody.handled.size(), 0u);
}

BOOL WINAPI refuse_to_unhook(HHOOK) {
  SetLastError(ERROR_INVALID_HOOK_HANDLE);
  return FALSE;
}

TEST_F(ThreadMessageHook, StaysHookedWhereTheSystemDoesNotUnhookIt) {
  hook_.SetHook();
  {
    const ImportOverride refusal("kexlib.dll", "USER32.dll", "UnhookWindowsHookEx", &refuse_to_unhook);
    ASSERT_TRUE(refusal.made());
    EXPECT_EQ(hook_.RemoveHook(), HRESULT_FROM_WIN32(ERROR_INVALID_HOOK_HANDLE));
  }
  EXPECT_EQ(hook_.IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 1u);
  EXPECT_EQ(hook_.RemoveHook(), S_OK);
}

std::vector<HHOOK> unhooked;

BOOL WINAPI record_unhooking(HHOOK hook) {
  unhooked.push_back(hook);
  return UnhookWindowsHookEx(hook);
}

TEST_F(ThreadMessageHook, IsUnhookedByItsDestructor) {
  const ImportOverride recorded("kexlib.dll", "USER32.dll", "UnhookWindowsHookEx", &record_unhooking);
  unhooked.clear();
  { const RecordingHook hook(1); }
  EXPECT_EQ(unhooked.size(), 1u);
  { const RecordingHook hook(0); }
  EXPECT_EQ(unhooked.size(), 1u);
  post_to_this_thread(listed);
  pump_waiting();
}

DWORD section_error;

BOOL WINAPI refuse_section(LPCRITICAL_SECTION, DWORD, DWORD) {
  SetLastError(section_error);
  return FALSE;
}

TEST_F(ThreadMessageHook, ThrowsWhereItsLockCannotBeMade) {
  const ImportOverride refusal("kexlib.dll", "KERNEL32.dll", "InitializeCriticalSectionEx", &refuse_section);
  ASSERT_TRUE(refusal.made());
  section_error = ERROR_NOT_ENOUGH_MEMORY;
  SCODE code = S_OK;
  try {
    const RecordingHook hook;
  } catch (COleException* exception) {
    code = exception->m_sc;
    exception->Delete();
  }
  EXPECT_EQ(code, HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY));

  section_error = ERROR_OUTOFMEMORY;
  bool out_of_memory = false;
  try {
    const RecordingHook hook;
  } catch (CMemoryException* exception) {
    out_of_memory = true;
    exception->Delete();
  }
  EXPECT_TRUE(out_of_memory);
}

// Copies share the hook and, byte for byte, the lock; the copy is not destroyed, since the lock is not its own.
TEST_F(ThreadMessageHook, IsCopiedWithoutASecondHook) {
  hook_.SetHook();
  alignas(RecordingHook) char memory[sizeof(RecordingHook)];
  auto* copy = new (memory) RecordingHook(hook_);
  EXPECT_EQ(copy->IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 1u);
  EXPECT_EQ(copy->handled.size(), 0u);
}

// ---- what is handled -----------------------------------------------------------------------------------------------

TEST_F(ThreadMessageHook, HandlesListedMessagesThatGetMessageTakesAndLeavesThemToTheLoop) {
  hook_.SetHook();
  post_to_this_thread(listed, 1, 2);
  MSG taken;
  ASSERT_TRUE(GetMessageA(&taken, nullptr, 0, 0));
  EXPECT_EQ(taken.message, listed);
  EXPECT_EQ(taken.wParam, 1u);
  EXPECT_EQ(taken.lParam, 2);
  ASSERT_EQ(hook_.handled.size(), 1u);
  EXPECT_EQ(hook_.handled[0].hwnd, nullptr);
  EXPECT_EQ(hook_.handled[0].message, listed);
  EXPECT_EQ(hook_.handled[0].wParam, 1u);
  EXPECT_EQ(hook_.handled[0].lParam, 2);
}

TEST_F(ThreadMessageHook, HandlesAMessageOnceHoweverOftenItIsLookedAt) {
  hook_.SetHook();
  post_to_this_thread(listed_too);
  MSG seen;
  EXPECT_TRUE(PeekMessageA(&seen, nullptr, 0, 0, PM_NOREMOVE));
  EXPECT_TRUE(PeekMessageA(&seen, nullptr, 0, 0, PM_NOREMOVE));
  EXPECT_EQ(hook_.handled.size(), 0u);
  EXPECT_TRUE(PeekMessageA(&seen, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(hook_.handled.size(), 1u);
}

WPARAM told;

LRESULT CALLBACK tell(int code, WPARAM w, LPARAM l) {
  told = w;
  return CallNextHookEx(nullptr, code, w, l);
}

// Removal is PM_REMOVE and nothing else. What the system tells of a look with PM_NOYIELD differs: Wine leaves the flag
// out.
TEST_F(ThreadMessageHook, HandlesAMessageTakenWithoutYieldingWhereTheSystemTellsPlainRemoval) {
  const HHOOK telling = SetWindowsHookExA(WH_GETMESSAGE, &tell, nullptr, GetCurrentThreadId());
  hook_.SetHook();
  post_to_this_thread(listed);
  MSG taken;
  EXPECT_TRUE(PeekMessageA(&taken, nullptr, 0, 0, PM_REMOVE | PM_NOYIELD));
  EXPECT_TRUE(told == PM_REMOVE || told == (PM_REMOVE | PM_NOYIELD)) << told;
  EXPECT_EQ(hook_.handled.size(), told == PM_REMOVE ? 1u : 0u);
  UnhookWindowsHookEx(telling);
}

class Window {
 public:
  Window() : handle(CreateWindowA("STATIC", "", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr)) {}
  ~Window() { DestroyWindow(handle); }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  HWND handle;
};

TEST_F(ThreadMessageHook, HandlesNeitherMessagesOfWindowsNorThoseThatAreNotListed) {
  const Window window;
  hook_.SetHook();
  EXPECT_TRUE(PostMessageA(window.handle, listed, 0, 0));
  post_to_this_thread(not_listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 0u);
}

TEST_F(ThreadMessageHook, HandlesNothingWithoutAList) {
  const UINT empty[] = {0};
  for (const UINT* list : {static_cast<const UINT*>(nullptr), static_cast<const UINT*>(empty)}) {
    hook_.list = list;
    hook_.SetHook();
    post_to_this_thread(listed);
    post_to_this_thread(0);
    pump_waiting();
    EXPECT_EQ(hook_.PostHookMessage(listed, 0, 0), 0);
    EXPECT_EQ(hook_.PostHookMessage(0, 0, 0), 0);
    EXPECT_EQ(hook_.handled.size(), 0u);
    EXPECT_EQ(hook_.RemoveHook(), S_OK);
  }
}

TEST_F(ThreadMessageHook, AsksForTheListAnew) {
  const UINT other[] = {not_listed, 0};
  hook_.SetHook();
  hook_.list = other;
  post_to_this_thread(listed);
  post_to_this_thread(not_listed);
  pump_waiting();
  ASSERT_EQ(hook_.handled.size(), 1u);
  EXPECT_EQ(hook_.handled[0].message, not_listed);
}

// Which would throw the message away otherwise.
TEST_F(ThreadMessageHook, HandlesMessagesThatAMessageBoxTakes) {
  const auto close_box = [] {
    const HWND box = FindWindowA("#32770", "thread_message_hook_test");
    if (box) PostMessageA(box, WM_COMMAND, IDOK, 0);
    return box != nullptr;
  };
  bool box_was_open = false;
  hook_.on_message = [&](const MSG&) {
    box_was_open = close_box();
    if (!box_was_open) hook_.PostHookMessage(listed, 0, 0);  // not yet: once more
  };
  hook_.SetHook();
  hook_.PostHookMessage(listed, 0, 0);
  MessageBoxA(nullptr, "taken here", "thread_message_hook_test", MB_OK);
  EXPECT_TRUE(box_was_open);
}

struct MenuOwner {
  MenuOwner() {
    WNDCLASSA description{};
    description.lpfnWndProc = &procedure;
    description.hInstance = GetModuleHandleA(nullptr);
    description.lpszClassName = "thread_message_hook_test";
    RegisterClassA(&description);
    handle = CreateWindowA("thread_message_hook_test", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 50, 50, 200, 100, nullptr,
                           nullptr, description.hInstance, nullptr);
  }
  ~MenuOwner() { DestroyWindow(handle); }
  MenuOwner(const MenuOwner&) = delete;
  MenuOwner& operator=(const MenuOwner&) = delete;

  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
    if (message == WM_ENTERIDLE) {  // the loop of the menu waits for messages
      idle = true;
      PostThreadMessageA(GetCurrentThreadId(), listed, 0, 0);
    }
    return DefWindowProcA(window, message, w, l);
  }

  HWND handle;
  inline static bool idle = false;
};

TEST(ThreadMessageHookOnScreen, HandlesMessagesThatAMenuTakes) {
  RecordingHook hook(1);
  const MenuOwner owner;
  SetForegroundWindow(owner.handle);
  pump_until([&] { return GetForegroundWindow() == owner.handle; });
  const HMENU menu = CreatePopupMenu();
  AppendMenuA(menu, MF_STRING, 1, "one");
  bool in_the_menu = false;
  hook.on_message = [&](const MSG&) {
    in_the_menu = MenuOwner::idle;
    EndMenu();
  };
  EXPECT_EQ(TrackPopupMenu(menu, TPM_RETURNCMD, 60, 60, 0, owner.handle, nullptr), 0);
  EXPECT_TRUE(in_the_menu);
  EXPECT_GE(hook.handled.size(), 1u);
  DestroyMenu(menu);
}

TEST_F(ThreadMessageHook, MayBeUnhookedByItsHandler) {
  hook_.on_message = [&](const MSG&) { EXPECT_EQ(hook_.RemoveHook(), S_OK); };
  hook_.SetHook();
  post_to_this_thread(listed, 1);
  post_to_this_thread(listed, 2);
  MSG taken;
  EXPECT_TRUE(PeekMessageA(&taken, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(taken.wParam, 1u);
  EXPECT_EQ(hook_.IsHooked(), 0);
  EXPECT_TRUE(PeekMessageA(&taken, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(taken.wParam, 2u);
  EXPECT_EQ(hook_.handled.size(), 1u);
}

// ---- two objects ---------------------------------------------------------------------------------------------------

// Both hooks lead to the object that came last: it gets each message twice, the first one none.
TEST_F(ThreadMessageHook, IsTakenOverByASecondObject) {
  hook_.SetHook();
  RecordingHook second;
  EXPECT_EQ(second.SetHook(), S_OK);
  EXPECT_EQ(hook_.IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 0u);
  EXPECT_EQ(second.handled.size(), 2u);

  EXPECT_EQ(second.RemoveHook(), S_OK);
  EXPECT_EQ(hook_.IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 0u);  // nobody is the hooked one now
  EXPECT_EQ(second.handled.size(), 2u);

  EXPECT_EQ(hook_.RemoveHook(), S_OK);
  EXPECT_EQ(hook_.SetHook(), S_OK);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 1u);
}

TEST_F(ThreadMessageHook, RemovingTheFirstOfTwoStopsTheSecondToo) {
  hook_.SetHook();
  RecordingHook second(1);
  EXPECT_EQ(hook_.RemoveHook(), S_OK);
  EXPECT_EQ(second.IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(second.handled.size(), 0u);
}

// ---- posting -------------------------------------------------------------------------------------------------------

TEST_F(ThreadMessageHook, PostsWhatIsListedToItsThread) {
  hook_.SetHook();
  EXPECT_NE(hook_.PostHookMessage(listed_too, 3, 4), 0);
  MSG taken;
  ASSERT_TRUE(PeekMessageA(&taken, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(taken.hwnd, nullptr);
  EXPECT_EQ(taken.message, listed_too);
  EXPECT_EQ(taken.wParam, 3u);
  EXPECT_EQ(taken.lParam, 4);
}

TEST_F(ThreadMessageHook, PostsNothingThatIsNotListedAndNothingUnhooked) {
  EXPECT_EQ(hook_.PostHookMessage(listed, 0, 0), 0);
  hook_.SetHook();
  EXPECT_EQ(hook_.PostHookMessage(not_listed, 0, 0), 0);
  EXPECT_EQ(hook_.PostHookMessage(0, 0, 0), 0);
  hook_.RemoveHook();
  EXPECT_EQ(hook_.PostHookMessage(listed, 0, 0), 0);
  EXPECT_FALSE(take(listed));
  EXPECT_FALSE(take(not_listed));
  EXPECT_FALSE(take(0));
}

int posts, failing_posts;
std::vector<DWORD> naps;

BOOL WINAPI fail_at_first(DWORD thread, UINT message, WPARAM w, LPARAM l) {
  return ++posts > failing_posts && PostThreadMessageA(thread, message, w, l);
}

void WINAPI record_nap(DWORD time) { naps.push_back(time); }

TEST_F(ThreadMessageHook, PostsOnceMoreAfterAMillisecondWhereTheSystemRefuses) {
  const ImportOverride post("kexlib.dll", "USER32.dll", "PostThreadMessageA", &fail_at_first);
  const ImportOverride nap("kexlib.dll", "KERNEL32.dll", "Sleep", &record_nap);
  ASSERT_TRUE(post.made());
  ASSERT_TRUE(nap.made());
  hook_.SetHook();
  const auto posted = [&](int failing) {
    posts = 0;
    failing_posts = failing;
    naps.clear();
    return hook_.PostHookMessage(listed, 0, 0) != 0;
  };
  EXPECT_TRUE(posted(0));
  EXPECT_EQ(posts, 1);
  EXPECT_EQ(naps, std::vector<DWORD>{});
  EXPECT_TRUE(take(listed));

  EXPECT_TRUE(posted(1));
  EXPECT_EQ(posts, 2);
  EXPECT_EQ(naps, std::vector<DWORD>{1});
  EXPECT_TRUE(take(listed));

  EXPECT_FALSE(posted(2));
  EXPECT_EQ(posts, 2);
  EXPECT_EQ(naps, std::vector<DWORD>{1});
  EXPECT_FALSE(take(listed));
}

// ---- threads -------------------------------------------------------------------------------------------------------

TEST_F(ThreadMessageHook, HandlesTheMessagesOfAnotherThreadThere) {
  CEvent ready, handled;
  DWORD id = 0;
  std::thread other([&] {
    pump_waiting();  // makes its queue
    id = GetCurrentThreadId();
    ready.SetEvent();
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0)) DispatchMessageA(&message);
  });
  ASSERT_TRUE(ready.Lock(ages));
  RecordingHook hook(1, id);
  hook.on_message = [&](const MSG&) { handled.SetEvent(); };
  EXPECT_NE(hook.PostHookMessage(listed, 0, 0), 0);
  EXPECT_TRUE(handled.Lock(ages));
  EXPECT_EQ(hook.RemoveHook(), S_OK);
  EXPECT_EQ(hook.threads, std::vector<DWORD>{id});
  PostThreadMessageA(id, WM_QUIT, 0, 0);
  other.join();
}

// Its hook has gone with the thread, which the object does not know.
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
      testing::ExitedWithCode(3), "terminate called");
}

}  // namespace
