// The hook that removes windows from the table when they are destroyed.
#include <gtest/gtest.h>

#include <kexlib/windowtools/hwnd_table.h>

#include <support/expect_flat.h>
#include <support/import_override.h>
#include <windowtools/hwnd_table_fixture.h>

#include <algorithm>
#include <future>
#include <thread>
#include <vector>

namespace {

struct Installed {
  HHOOK hook;
  int type;
  HOOKPROC procedure;
  HINSTANCE module;
  DWORD thread;
};
std::vector<Installed> installed;
std::vector<HHOOK> removed;
bool refuse;

HHOOK WINAPI record_hook(int type, HOOKPROC procedure, HINSTANCE module, DWORD thread) {
  HHOOK hook = refuse ? nullptr : SetWindowsHookExA(type, procedure, module, thread);
  installed.push_back({hook, type, procedure, module, thread});
  return hook;
}

BOOL WINAPI record_removal(HHOOK hook) {
  removed.push_back(hook);
  return !refuse && UnhookWindowsHookEx(hook);
}

class HwndTableHook : public HwndTable {
 protected:
  HwndTableHook() {
    installed.clear();
    removed.clear();
    refuse = false;
    EXPECT_TRUE(set_.made() && unset_.made());
  }

 private:
  ImportOverride set_{"kexlib.dll", "USER32.dll", "SetWindowsHookExA", &record_hook};
  ImportOverride unset_{"kexlib.dll", "USER32.dll", "UnhookWindowsHookEx", &record_removal};
};

TEST_F(HwndTableHook, IsInstalledOnceByTheFirstRegistrationOnItsThread) {
  HWND first = dialog();
  HWND second = dialog();
  table().get_handle("first");
  table().check_name("first", first);
  EXPECT_EQ(installed.size(), 0u);
  table().reg_window(first, "first", 1);
  ASSERT_EQ(installed.size(), 1u);
  EXPECT_NE(installed[0].hook, nullptr);
  EXPECT_EQ(installed[0].type, WH_CALLWNDPROC);
  EXPECT_EQ(installed[0].module, GetModuleHandleA("kexlib.dll"));
  EXPECT_EQ(installed[0].thread, GetCurrentThreadId());
  table().reg_window(second, "second", 1);
  std::thread([&] { table().reg_window(second, "third", 1); }).join();
  EXPECT_EQ(installed.size(), 1u);
}

TEST_F(HwndTableHook, IsRemovedWithTheTableAndInstalledAgainByTheNextRegistration) {
  HWND window = dialog();
  table().reg_window(window, "name", 1);
  kexHWNDTable::delete_singleton();
  EXPECT_EQ(removed, std::vector<HHOOK>{installed[0].hook});
  kexHWNDTable::delete_singleton();
  EXPECT_EQ(removed.size(), 1u);
  table().reg_window(window, "name", 1);
  EXPECT_EQ(installed.size(), 2u);
  DestroyWindow(window);
  EXPECT_EQ(table().get_name(window), nullptr);
}

TEST_F(HwndTableHook, IsTriedAgainWhereTheSystemRefusedItButNotForTheNameThatAWindowHas) {
  HWND window = dialog();
  HWND other = dialog();
  refuse = true;
  table().reg_window(window, "name", 1);
  EXPECT_EQ(installed.size(), 1u);
  EXPECT_EQ(table().get_handle("name"), window);
  refuse = false;
  table().reg_window(window, "name", 1);
  EXPECT_EQ(installed.size(), 1u);
  refuse = true;
  table().reg_window(window, "another name", 1);
  EXPECT_EQ(installed.size(), 2u);
  refuse = false;
  table().reg_window(other, "name", 1);  // the name is in use
  EXPECT_EQ(installed.size(), 3u);
  EXPECT_NE(installed[2].hook, nullptr);
  DestroyWindow(window);
  EXPECT_EQ(table().get_name(window), nullptr);
}

TEST_F(HwndTableHook, ForgetsWindowsThatAreDestroyedWithTheirChildren) {
  HWND window = dialog();
  HWND control = make_view(window);
  HWND other = dialog();
  table().reg_window(window, "window", 1);
  table().reg_window(control, "control", 2);
  table().reg_window(other, "other", 3);
  DestroyWindow(window);
  EXPECT_EQ(table().get_name(window), nullptr);
  EXPECT_EQ(table().get_name(control), nullptr);
  EXPECT_EQ(table().get_idd(control), 0);
  EXPECT_STREQ(table().get_name(other), "other");
  EXPECT_EQ(table().check_name("window", other), 0);
}

// Only the destruction of a window removes it; other hook calls do not.
TEST_F(HwndTableHook, LeavesCodesBelow0ToTheNextHook) {
  HWND window = dialog();
  table().reg_window(window, "name", 1);
  CWPSTRUCT destroyed{0, 0, WM_DESTROY, window};
  const auto parameter = reinterpret_cast<LPARAM>(&destroyed);
  installed[0].procedure(-1, 0, parameter);
  EXPECT_STREQ(table().get_name(window), "name");
  installed[0].procedure(HC_ACTION, 0, parameter);
  EXPECT_EQ(table().get_name(window), nullptr);
}

TEST_F(HwndTableHook, KeepsWindowsThatAreClosedByHiding) {
  HWND window = dialog();
  table().reg_window(window, "window", 1);
  ShowWindow(window, SW_HIDE);
  SendMessageA(window, WM_ENABLE, FALSE, 0);
  EXPECT_STREQ(table().get_name(window), "window");
}

std::vector<HWND> seen_destroyed;

LRESULT CALLBACK see_destroyed(int code, WPARAM w, LPARAM l) {
  const auto* const sent = reinterpret_cast<const CWPSTRUCT*>(l);
  if (sent->message == WM_DESTROY) seen_destroyed.push_back(sent->hwnd);
  return CallNextHookEx(nullptr, code, w, l);
}

TEST_F(HwndTableHook, PassesMessagesOnToOlderHooks) {
  const HHOOK older = SetWindowsHookExA(WH_CALLWNDPROC, &see_destroyed, nullptr, GetCurrentThreadId());
  HWND window = dialog();
  table().reg_window(window, "window", 1);
  seen_destroyed.clear();
  DestroyWindow(window);
  EXPECT_EQ(std::count(seen_destroyed.begin(), seen_destroyed.end(), window), 1);  // besides that of the system
  UnhookWindowsHookEx(older);
}

TEST_F(HwndTableHook, MakesTheTableAnewWhereItIsCalledWithoutOne) {
  HWND window = dialog();
  table().reg_window(window, "window", 1);
  refuse = true;
  kexHWNDTable::delete_singleton();  // the hook is not removed
  refuse = false;
  DestroyWindow(window);
  EXPECT_EQ(table().get_name(window), nullptr);
  EXPECT_TRUE(UnhookWindowsHookEx(installed[0].hook));
}

// The windows of a second thread while the hook belongs to the first one.
class OtherThread {
 public:
  OtherThread() : thread_([this] { run(); }) { made_.get_future().wait(); }
  OtherThread(const OtherThread&) = delete;
  OtherThread& operator=(const OtherThread&) = delete;
  ~OtherThread() { end(); }

  HWND window = nullptr;

  // Destroys the window and ends the thread.
  void end() {
    if (!thread_.joinable()) return;
    PostThreadMessageA(id_, WM_QUIT, 0, 0);
    thread_.join();
  }

 private:
  void run() {
    id_ = GetCurrentThreadId();
    window = make_dialog();
    made_.set_value();
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0)) DispatchMessageA(&message);
    DestroyWindow(window);
  }

  DWORD id_ = 0;
  std::promise<void> made_;
  std::thread thread_;
};

TEST_F(HwndTableHook, DoesNotSeeAnotherThreadsWindowsGo) {
  HWND own = dialog();
  OtherThread other;
  table().reg_window(own, "own", 1);
  table().reg_window(other.window, "other", 2);
  EXPECT_EQ(table().get_handle("other"), other.window);
  other.end();
  EXPECT_STREQ(table().get_name(other.window), "other");
  EXPECT_EQ(table().get_handle("other"), nullptr);
  EXPECT_EQ(table().check_name("other", own), 1);
  table().unreg_window(other.window);
  EXPECT_EQ(table().check_name("other", own), 0);
}

TEST_F(HwndTableHook, GoesWithItsThreadAndComesBackWithANewTable) {
  HWND first = dialog();
  HWND second = dialog();
  std::thread([&] { table().reg_window(first, "first", 1); }).join();
  table().reg_window(second, "second", 1);
  EXPECT_EQ(installed.size(), 1u);
  DestroyWindow(first);
  EXPECT_STREQ(table().get_name(first), "first");
  kexHWNDTable::delete_singleton();
  table().reg_window(second, "second", 1);
  DestroyWindow(second);
  EXPECT_EQ(table().get_name(second), nullptr);
}

TEST_F(HwndTableHook, LeavesNothingBehind) {
  HWND window = dialog();
  expect_flat(200, [window] {
    table().reg_window(window, "a name that is longer than a short text", 1);
    HWND other = make_dialog();
    table().reg_window(other, "other", 1);
    DestroyWindow(other);
    table().unreg_window(window);
    table().reg_window(window, "name", 1);
    kexHWNDTable::delete_singleton();
  });
}

}  // namespace
