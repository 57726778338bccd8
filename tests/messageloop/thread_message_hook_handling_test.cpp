#include <gtest/gtest.h>

#include <windows.h>

#include <messageloop/thread_message_hook_fixture.h>
#include <support/import_override.h>
#include <support/message_pump.h>

#include <array>
#include <vector>

namespace {

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

// Only PM_REMOVE is a removal. Systems differ in how they report PM_REMOVE | PM_NOYIELD: Wine omits the second flag.
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

HOOKPROC installed;
std::vector<std::array<LONG_PTR, 4>> passed_on;  // hook, code, wParam, lParam

HHOOK WINAPI record_procedure(int what, HOOKPROC procedure, HINSTANCE module, DWORD thread) {
  installed = procedure;
  return SetWindowsHookExA(what, procedure, module, thread);
}

LRESULT WINAPI record_next(HHOOK hook, int code, WPARAM w, LPARAM l) {
  passed_on.push_back({reinterpret_cast<LONG_PTR>(hook), code, static_cast<LONG_PTR>(w), l});
  return 42;
}

// Hook procedures are expected to pass on codes below 0 unprocessed. This one checks the removal only.
TEST_F(ThreadMessageHook, HandlesAMessageWhateverTheHookCodeAndPassesItOn) {
  const ImportOverride set("kexlib.dll", "USER32.dll", "SetWindowsHookExA", &record_procedure);
  const ImportOverride next("kexlib.dll", "USER32.dll", "CallNextHookEx", &record_next);
  ASSERT_TRUE(set.made() && next.made());
  passed_on.clear();
  hook_.SetHook();
  MSG message{};
  message.message = listed;
  const auto address = reinterpret_cast<LPARAM>(&message);
  int handled = 0;
  for (const int code : {HC_ACTION, -1, 7}) {
    EXPECT_EQ(installed(code, PM_REMOVE, address), 42);
    EXPECT_EQ(hook_.handled.size(), static_cast<size_t>(++handled));
    ASSERT_EQ(passed_on.size(), static_cast<size_t>(handled));
    EXPECT_NE(passed_on.back()[0], 0);
    EXPECT_EQ(passed_on.back()[1], code);
    EXPECT_EQ(passed_on.back()[2], PM_REMOVE);
    EXPECT_EQ(passed_on.back()[3], address);
  }
  for (const WPARAM removal : {WPARAM{PM_NOREMOVE}, WPARAM{PM_REMOVE | PM_NOYIELD}}) {
    EXPECT_EQ(installed(HC_ACTION, removal, address), 42);
    EXPECT_EQ(hook_.handled.size(), 3u);
  }
  hook_.RemoveHook();
  passed_on.clear();
  EXPECT_EQ(installed(HC_ACTION, PM_REMOVE, address), 0);
  EXPECT_EQ(passed_on.size(), 0u);
  EXPECT_EQ(hook_.handled.size(), 3u);

  const RecordingHook nobody(1, 0xFFFFFFF0);  // there is no such thread
  EXPECT_EQ(installed(HC_ACTION, PM_REMOVE, address), 0);
  EXPECT_EQ(passed_on.size(), 0u);
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

// Without the hook, the message box would discard the message.
TEST_F(ThreadMessageHook, HandlesMessagesThatAMessageBoxTakes) {
  const auto close_box = [] {
    const HWND box = FindWindowA("#32770", "thread_message_hook_test");
    if (box) PostMessageA(box, WM_COMMAND, IDOK, 0);
    return box != nullptr;
  };
  bool box_was_open = false;
  hook_.on_message = [&](const MSG&) {
    box_was_open = close_box();
    if (!box_was_open) hook_.PostHookMessage(listed, 0, 0);  // not open yet: post again
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

}  // namespace
