#include <gtest/gtest.h>

#include <kexlib/diagnostics/problem_alert.h>

#include <afxwin.h>
#include <process.h>

#include <support/c_library.h>
#include <support/expect_flat.h>
#include <support/import_override.h>
#include <support/message_pump.h>
#include <support/picture.h>
#include <support/user_input.h>
#include <support/window_text.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

// The message boxes of this process.
std::vector<HWND> boxes() {
  std::vector<HWND> found;
  EnumWindows(
      [](HWND window, LPARAM result) -> BOOL {
        char name[16];
        DWORD process;
        GetWindowThreadProcessId(window, &process);
        if (process == GetCurrentProcessId() && IsWindowVisible(window) && GetClassNameA(window, name, sizeof name) &&
            std::string(name) == "#32770")
          reinterpret_cast<std::vector<HWND>*>(result)->push_back(window);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&found));
  return found;
}

bool box_comes() {
  return pump_until([] { return boxes().size() == 1; });
}

// A second one would appear much sooner.
bool none_comes() {
  return !pump_until([] { return !boxes().empty(); }, std::chrono::milliseconds(400));
}

std::vector<HWND> children(HWND parent, const char* class_name) {
  std::vector<HWND> found;
  for (HWND child = nullptr; (child = FindWindowExA(parent, child, class_name, nullptr));) found.push_back(child);
  return found;
}

void close_box() {
  const std::vector<HWND> open = boxes();
  ASSERT_EQ(open.size(), 1u);
  const std::vector<HWND> buttons = children(open[0], "Button");
  ASSERT_EQ(buttons.size(), 1u);
  // Clicks as a user does: again if the box was not ready.
  for (int clicks = 0; clicks < 5 && !boxes().empty(); ++clicks) {
    click(buttons[0]);
    pump_until([] { return boxes().empty(); }, std::chrono::seconds(3));
  }
  EXPECT_EQ(boxes().size(), 0u);
}

class ProblemAlertOnScreen : public testing::Test {
 protected:
  ~ProblemAlertOnScreen() override { park_mouse(); }

  // If a test fails before its end, the alert's destructor would wait for the user.
  struct Closing {
    ~Closing() {
      for (const HWND box : boxes()) PostMessageA(box, WM_COMMAND, IDOK, 0);
    }
  };
};

TEST_F(ProblemAlertOnScreen, ShowsItsBoxAboveAllAndStaysUntilTheUserClosesIt) {
  CProblemAlert alert;
  const Closing closing;
  EXPECT_TRUE(none_comes());
  alert.RaiseProblemMessage();
  ASSERT_TRUE(box_comes());
  const HWND box = boxes()[0];
  EXPECT_NE(GetWindowThreadProcessId(box, nullptr), GetCurrentThreadId());
  EXPECT_TRUE(GetWindowLongA(box, GWL_EXSTYLE) & WS_EX_TOPMOST);
  EXPECT_EQ(window_text(box), "Error");  // the system's own
  EXPECT_EQ(GetWindow(box, GW_OWNER), nullptr);

  const std::vector<HWND> buttons = children(box, "Button");
  ASSERT_EQ(buttons.size(), 1u);
  EXPECT_EQ(window_text(buttons[0]), "OK");
  bool text_found = false, icon_found = false;
  for (const HWND child : children(box, "Static")) {
    if (window_text(child) == "The problem has occurred") text_found = true;
    if (SendMessageA(child, STM_GETICON, 0, 0) == reinterpret_cast<LRESULT>(LoadIconA(nullptr, IDI_EXCLAMATION)))
      icon_found = true;
  }
  EXPECT_TRUE(text_found);
  EXPECT_TRUE(icon_found);
  close_box();
}

// The whole box with frame and title, as it is on the screen.
TEST_F(ProblemAlertOnScreen, CanBeLookedAt) {
  CProblemAlert alert;
  const Closing closing;
  alert.RaiseProblemMessage();
  ASSERT_TRUE(box_comes());
  park_mouse();
  RECT place;
  GetWindowRect(boxes()[0], &place);
  const int width = place.right - place.left, height = place.bottom - place.top;
  const HDC screen = GetDC(nullptr);
  // Waits until the icon, the text and the button are drawn: each adds many colours.
  std::vector<HWND> parts = children(boxes()[0], "Static");
  parts.push_back(children(boxes()[0], "Button")[0]);
  const auto shows = [&](const Picture& picture, HWND part) {
    RECT rect;
    GetWindowRect(part, &rect);
    OffsetRect(&rect, -place.left, -place.top);
    int changes = 0;
    for (int y = rect.top; y < rect.bottom; ++y)
      for (int x = rect.left + 1; x < rect.right; ++x) changes += picture.at(x, y) != picture.at(x - 1, y);
    return changes > 30;
  };
  const auto is_painted = [&](const Picture& picture) {
    return std::all_of(parts.begin(), parts.end(), [&](HWND part) { return shows(picture, part); });
  };
  EXPECT_TRUE(pump_until([&] {
    Picture picture(width, height, 0);
    BitBlt(picture.dc(), 0, 0, width, height, screen, place.left, place.top, SRCCOPY);
    return is_painted(picture) && picture.save("problem_alert");
  }));
  ReleaseDC(nullptr, screen);
  close_box();
}

TEST_F(ProblemAlertOnScreen, ShowsOneBoxForTenRaises) {
  CProblemAlert alert;
  const Closing closing;
  for (int i = 0; i < 10; ++i) alert.RaiseProblemMessage();
  ASSERT_TRUE(box_comes());
  EXPECT_EQ(boxes().size(), 1u);
  close_box();
  EXPECT_TRUE(none_comes());
}

TEST_F(ProblemAlertOnScreen, ShowsNoSecondBoxForARaiseDuringTheFirst) {
  CProblemAlert alert;
  const Closing closing;
  alert.RaiseProblemMessage();
  ASSERT_TRUE(box_comes());
  alert.RaiseProblemMessage();
  alert.RaiseProblemMessage();
  EXPECT_EQ(boxes().size(), 1u);
  close_box();
  EXPECT_TRUE(none_comes());

  alert.RaiseProblemMessage();
  EXPECT_TRUE(box_comes());
  close_box();
}

TEST_F(ProblemAlertOnScreen, EndsOnlyWhenTheUserHasClosedTheBox) {
  CProblemAlert alert;
  const Closing closing;
  alert.RaiseProblemMessage();
  ASSERT_TRUE(box_comes());
  CEvent ended;
  std::thread ending([&] {
    alert.EndThread();
    ended.SetEvent();
  });
  EXPECT_FALSE(ended.Lock(300));
  EXPECT_EQ(boxes().size(), 1u);
  close_box();
  EXPECT_TRUE(ended.Lock(10000));
  ending.join();
}

// The caller neither pumps messages nor releases its lock, and the call returns at once.
TEST_F(ProblemAlertOnScreen, IsRaisedByAThreadWithoutALoopThatHoldsALock) {
  CProblemAlert alert;
  const Closing closing;
  std::mutex lock;
  CEvent raised, end;
  std::thread raiser([&] {
    const std::scoped_lock held(lock);
    alert.RaiseProblemMessage();
    raised.SetEvent();
    end.Lock();
  });
  EXPECT_TRUE(raised.Lock(5000));
  EXPECT_TRUE(box_comes());
  EXPECT_FALSE(lock.try_lock());
  close_box();
  end.SetEvent();
  raiser.join();
}

TEST_F(ProblemAlertOnScreen, HasNoThreadUntilItIsStarted) {
  CProblemAlert alert(0);
  const Closing closing;
  alert.RaiseProblemMessage();
  EXPECT_TRUE(none_comes());
  EXPECT_EQ(alert.StartThread(), 1);
  EXPECT_TRUE(none_comes());  // earlier raises are discarded
  alert.RaiseProblemMessage();
  EXPECT_TRUE(box_comes());
  close_box();
}

TEST_F(ProblemAlertOnScreen, CanBeEndedTwiceAndStartedAgain) {
  CProblemAlert alert;
  const Closing closing;
  alert.EndThread();
  alert.EndThread();
  alert.RaiseProblemMessage();
  EXPECT_TRUE(none_comes());
  EXPECT_EQ(alert.StartThread(), 1);
  EXPECT_TRUE(none_comes());
  alert.RaiseProblemMessage();
  EXPECT_TRUE(box_comes());
  close_box();
}

// ---- calls of the system -------------------------------------------------------------------------------------------

struct Asked {
  HWND owner;
  std::string text;
  const char* caption;
  UINT style;
};
std::vector<Asked> asked;
HANDLE shown, closed;

int WINAPI record_box(HWND owner, LPCSTR text, LPCSTR caption, UINT style) {
  asked.push_back({owner, text, caption, style});
  SetEvent(shown);
  WaitForSingleObject(closed, INFINITE);
  return IDOK;
}

TEST(ProblemAlert, AsksForASystemModalWarningWithTheSystemsCaption) {
  CEvent shown_event, closed_event;
  shown = shown_event;
  closed = closed_event;
  asked.clear();
  const ImportOverride recorded("kexlib.dll", "USER32.dll", "MessageBoxA", &record_box);
  ASSERT_TRUE(recorded.made());
  {
    CProblemAlert alert;
    alert.RaiseProblemMessage();
    EXPECT_TRUE(shown_event.Lock(10000));
    closed_event.SetEvent();
  }
  ASSERT_EQ(asked.size(), 1u);
  EXPECT_EQ(asked[0].owner, nullptr);
  EXPECT_EQ(asked[0].text, "The problem has occurred");
  EXPECT_EQ(asked[0].caption, nullptr);
  EXPECT_EQ(asked[0].style, 0x1030u);
}

HANDLE suspended_thread;

DWORD WINAPI leave_suspended(HANDLE thread) {
  suspended_thread = thread;
  return 1;
}

DWORD WINAPI resume_and_wait(HANDLE object, DWORD time) {
  ResumeThread(suspended_thread);
  return WaitForSingleObject(object, time);
}

// The thread finds both events signalled: it starts to run only when EndThread waits for it.
TEST(ProblemAlert, ShowsNothingThatWasRaisedTooLate) {
  asked.clear();
  CEvent shown_event, closed_event(TRUE, TRUE);
  shown = shown_event;
  closed = closed_event;
  const ImportOverride recorded("kexlib.dll", "USER32.dll", "MessageBoxA", &record_box);
  const ImportOverride suspended("kexlib.dll", "KERNEL32.dll", "ResumeThread", &leave_suspended);
  const ImportOverride resumed("kexlib.dll", "KERNEL32.dll", "WaitForSingleObject", &resume_and_wait);
  ASSERT_TRUE(recorded.made() && suspended.made() && resumed.made());
  CProblemAlert alert;
  alert.RaiseProblemMessage();
  alert.EndThread();
  EXPECT_EQ(asked.size(), 0u);
}

int threads_begun;

uintptr_t __cdecl count_thread(void* security, unsigned stack, unsigned(__stdcall* entry)(void*), void* parameter,
                               unsigned flags, unsigned* id) {
  ++threads_begun;
  return _beginthreadex(security, stack, entry, parameter, flags, id);
}

TEST(ProblemAlert, StartsOneThreadOnly) {
  const ImportOverride counted("kexframework.dll", c_library::dll, "_beginthreadex", &count_thread);
  ASSERT_TRUE(counted.made());
  threads_begun = 0;
  CProblemAlert alert;
  EXPECT_EQ(threads_begun, 1);
  EXPECT_EQ(alert.StartThread(), 1);
  EXPECT_EQ(alert.StartThread(), 1);
  EXPECT_EQ(threads_begun, 1);
}

uintptr_t __cdecl refuse_thread(void*, unsigned, unsigned(__stdcall*)(void*), void*, unsigned, unsigned*) { return 0; }

TEST(ProblemAlert, HasNoThreadWhereNoneCanBeStarted) {
  CProblemAlert alert(0);
  {
    const ImportOverride refusal("kexframework.dll", c_library::dll, "_beginthreadex", &refuse_thread);
    ASSERT_TRUE(refusal.made());
    EXPECT_EQ(alert.StartThread(), 0);
    alert.RaiseProblemMessage();
    alert.EndThread();
    const CProblemAlert silent;
  }
  EXPECT_EQ(alert.StartThread(), 1);
}

void* no_memory_for_threads(std::size_t bytes) { return bytes == sizeof(CWinThread) ? nullptr : std::malloc(bytes); }

TEST(ProblemAlert, HasNoThreadWhereThereIsNoMemoryForOne) {
  CProblemAlert alert(0);
  {
    const ImportOverride refusal(c_library::allocator_of("kexframework.dll"), c_library::dll, "malloc",
                                 &no_memory_for_threads);
    ASSERT_TRUE(refusal.made());
    EXPECT_EQ(alert.StartThread(), 0);
    alert.EndThread();
    const CProblemAlert silent;
  }
  EXPECT_EQ(alert.StartThread(), 1);
}

CWinThread* throw_for_lack_of_memory(AFX_THREADPROC, LPVOID, int, UINT, DWORD, LPSECURITY_ATTRIBUTES) {
  AfxThrowMemoryException();
}

#ifdef _MSC_VER
constexpr char mangled_begin_thread[] = "?AfxBeginThread@@YAPEAVCWinThread@@P6AIPEAX@Z0HIKPEAU_SECURITY_ATTRIBUTES@@@Z";
#else
constexpr char mangled_begin_thread[] = "_Z14AfxBeginThreadPFjPvES_ijmP20_SECURITY_ATTRIBUTES";
#endif

TEST(ProblemAlert, HasNoThreadWhereTheFrameworkThrowsForLackOfMemory) {
  CProblemAlert alert(0);
  {
    const ImportOverride refusal("kexlib.dll", "kexframework.dll", mangled_begin_thread, &throw_for_lack_of_memory);
    ASSERT_TRUE(refusal.made());
    EXPECT_EQ(alert.StartThread(), 0);
  }
  EXPECT_EQ(alert.StartThread(), 1);
}

TEST(ProblemAlert, AThousandLeaveNothingBehind) {
  expect_flat(1000, [] {
    CProblemAlert alert;
    alert.EndThread();
    alert.StartThread();
  });
}

}  // namespace
