// CWindowImpl: creation, styles and the end of a window.
#include <gtest/gtest.h>

#include <framework/recorder.h>

#include <thread>
#include <type_traits>
#include <vector>

namespace {

TEST(WindowImpl, KnowsItsHandleFromTheVeryFirstMessageOn) {
  Recorder window;
  window.handles_seen_at = {{WM_GETMINMAXINFO, nullptr}, {WM_NCCREATE, nullptr}, {WM_CREATE, nullptr}};
  HWND created = window.Create(nullptr, CWindow::rcDefault, "title");
  ASSERT_TRUE(created);
  EXPECT_EQ(window.m_hWnd, created);
  EXPECT_EQ(window.seen.front(), UINT{WM_GETMINMAXINFO});
  for (auto [message, handle] : window.handles_seen_at) EXPECT_EQ(handle, created) << message;
  char title[10];
  EXPECT_EQ(window.GetWindowText(title, sizeof title), 5);
  EXPECT_STREQ(title, "title");
  EXPECT_TRUE(window.DestroyWindow());
}

TEST(WindowImpl, GetsTheStylesOfItsTraitsUnlessToldOthers) {
  Recorder window;
  window.Create(nullptr);
  EXPECT_EQ(window.GetStyle() & WS_OVERLAPPEDWINDOW, DWORD{WS_OVERLAPPEDWINDOW});
  EXPECT_EQ(window.GetExStyle() & WS_EX_APPWINDOW, DWORD{WS_EX_APPWINDOW});
  window.DestroyWindow();
  window.Create(nullptr, nullptr, nullptr, WS_POPUP, WS_EX_TOOLWINDOW);
  EXPECT_EQ(window.GetStyle() & (WS_POPUP | WS_OVERLAPPEDWINDOW), DWORD{WS_POPUP});
  EXPECT_EQ(window.GetExStyle() & (WS_EX_APPWINDOW | WS_EX_TOOLWINDOW), DWORD{WS_EX_TOOLWINDOW});
  window.DestroyWindow();
}

TEST(WindowImpl, HasAnArrowAPlainBackgroundAndDoubleClicksByItsClass) {
  Recorder window;
  window.Create(nullptr);
  EXPECT_EQ(GetClassLongPtr(window, GCLP_HCURSOR), reinterpret_cast<ULONG_PTR>(LoadCursor(nullptr, IDC_ARROW)));
  EXPECT_EQ(GetClassLongPtr(window, GCLP_HBRBACKGROUND), ULONG_PTR{COLOR_WINDOW + 1});
  EXPECT_EQ(GetClassLongPtr(window, GCL_STYLE), ULONG_PTR{CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS});
  window.DestroyWindow();
}

TEST(WindowImpl, ARefusedCreationGivesNullAndTheObjectMayTryAgain) {
  Recorder window;
  window.create_result = -1;
  // The result of a handler counts only if it handles the message.
  EXPECT_TRUE(window.Create(nullptr));
  window.DestroyWindow();

  class Refusing : public CWindowImpl<Refusing, CWindow, CFrameWinTraits> {
   public:
    BEGIN_MSG_MAP(Refusing)
      MESSAGE_HANDLER(WM_CREATE, OnCreate)
    END_MSG_MAP()
    LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL&) { return answer; }
    void OnFinalMessage(HWND) override { ++final_messages; }
    LRESULT answer = -1;
    int final_messages = 0;
  } refusing;
  EXPECT_FALSE(refusing.Create(nullptr));
  EXPECT_FALSE(refusing.m_hWnd);
  EXPECT_EQ(refusing.final_messages, 1);
  refusing.answer = 0;
  EXPECT_TRUE(refusing.Create(nullptr));
  refusing.DestroyWindow();
  EXPECT_EQ(refusing.final_messages, 2);
}

TEST(WindowImpl, CreatesWindowsInsideTheCreationOfOthers) {
  Recorder outer, inner;
  outer.on_create = [&] { inner.Create(outer.m_hWnd, nullptr, "inner", WS_CHILD, 0, 7U); };
  ASSERT_TRUE(outer.Create(nullptr));
  ASSERT_TRUE(inner.m_hWnd);
  EXPECT_NE(outer.m_hWnd, inner.m_hWnd);
  EXPECT_EQ(inner.GetParent().m_hWnd, outer.m_hWnd);
  EXPECT_EQ(inner.GetDlgCtrlID(), 7);
  EXPECT_EQ(outer.GetDlgItem(7).m_hWnd, inner.m_hWnd);
  outer.DestroyWindow();
  EXPECT_FALSE(inner.m_hWnd);
  EXPECT_EQ(inner.final_messages.size(), 1U);
}

TEST(WindowImpl, WindowsOfTheSystemMadeMeanwhileAreNotTakenForOurs) {
  Recorder window;
  HWND system = nullptr;
  window.on_create = [&] {
    system = CreateWindow("STATIC", "", WS_CHILD, 0, 0, 1, 1, window.m_hWnd, nullptr, nullptr, nullptr);
  };
  HWND created = window.Create(nullptr);
  EXPECT_TRUE(system);
  EXPECT_EQ(window.m_hWnd, created);
  window.DestroyWindow();
}

TEST(WindowImpl, ACreationThatFailsBeforeAnyMessageLeavesNothingForTheNextWindow) {
  Recorder failed, next;
  EXPECT_FALSE(failed.Create(nullptr, nullptr, nullptr, WS_CHILD));  // a child needs a parent
  EXPECT_FALSE(failed.m_hWnd);
  EXPECT_TRUE(failed.seen.empty());
  HWND created = next.Create(nullptr);
  EXPECT_EQ(next.m_hWnd, created);
  EXPECT_FALSE(failed.m_hWnd);
  next.DestroyWindow();
  EXPECT_EQ(failed.final_messages.size(), 0U);
}

TEST(WindowImpl, AChildWithoutIdentifierGetsOneOfItsObject) {
  Recorder parent, child;
  parent.Create(nullptr);
  child.Create(parent, nullptr, nullptr, WS_CHILD);
  EXPECT_EQ(child.GetDlgCtrlID(), static_cast<int>(reinterpret_cast<INT_PTR>(&child)));
  parent.DestroyWindow();
}

TEST(WindowImpl, EachThreadFindsItsOwnWindows) {
  auto make = [] {
    for (int i = 0; i < 200; ++i) {
      Recorder window;
      HWND created = window.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP);
      ASSERT_TRUE(created);
      ASSERT_EQ(window.m_hWnd, created);
      ASSERT_EQ(window.SendMessage(WM_USER, 1), 11);
      window.DestroyWindow();
    }
  };
  std::thread other(make);
  make();
  other.join();
}

// The real ones copy the pointer to their procedure, and both objects free it.
static_assert(!std::is_copy_constructible_v<CWndProcThunk> && !std::is_copy_assignable_v<CWndProcThunk>);
static_assert(!std::is_copy_constructible_v<Recorder> && !std::is_copy_assignable_v<Recorder>);

// Destroys itself in its own handler, at the given depth, and deletes itself at the end.
class SelfDestroying : public CWindowImpl<SelfDestroying, CWindow, CFrameWinTraits> {
 public:
  explicit SelfDestroying(std::vector<std::string>& events) : events_(events) {}
  ~SelfDestroying() override { events_.push_back("deleted"); }

  BEGIN_MSG_MAP(SelfDestroying)
    MESSAGE_HANDLER(WM_USER, OnUser)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
  END_MSG_MAP()

  LRESULT OnUser(UINT, WPARAM depth, LPARAM, BOOL&) {
    HWND window = m_hWnd;
    if (depth) {
      SendMessage(WM_USER, depth - 1);
    } else {
      ::DestroyWindow(m_hWnd);
    }
    events_.push_back("after " + std::to_string(depth));
    EXPECT_EQ(m_hWnd, window);  // still set: the object is notified at the very end
    return 40 + static_cast<LRESULT>(depth);
  }
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL&) {
    events_.push_back("destroyed");
    return 0;
  }
  void OnFinalMessage(HWND) override {
    events_.push_back("final");
    EXPECT_FALSE(m_hWnd);
    delete this;
  }

 private:
  std::vector<std::string>& events_;
};

TEST(WindowImpl, DestroyedInItsOwnHandlerLearnsOfItWhenTheLastFrameIsLeft) {
  std::vector<std::string> events;
  auto* window = new SelfDestroying(events);
  HWND handle = window->Create(nullptr);
  EXPECT_EQ(SendMessage(handle, WM_USER, 2, 0), 42);
  EXPECT_EQ(events, (std::vector<std::string>{"destroyed", "after 0", "after 1", "after 2", "final", "deleted"}));
  EXPECT_FALSE(IsWindow(handle));
}

TEST(WindowImpl, MayDeleteItselfInItsOwnDestroyWindow) {
  std::vector<std::string> events;
  auto* window = new SelfDestroying(events);
  HWND handle = window->Create(nullptr);
  // The next object of this size gets the memory with its old contents.
  EXPECT_TRUE(window->DestroyWindow());
  EXPECT_EQ(events, (std::vector<std::string>{"destroyed", "final", "deleted"}));
  EXPECT_FALSE(IsWindow(handle));
}

TEST(WindowImpl, DestroyedByItsOwnMethodInAHandlerIsToldWhichWindowItWas) {
  Recorder window;
  HWND during = nullptr;
  window.on_create = [&] {
    during = window.m_hWnd;
    EXPECT_TRUE(window.DestroyWindow());
  };
  EXPECT_FALSE(window.Create(nullptr));
  EXPECT_TRUE(during);
  EXPECT_EQ(window.final_messages, std::vector<HWND>{during});
  EXPECT_FALSE(window.m_hWnd);
}

TEST(WindowImpl, ThatOnlyNamesAWindowLosesItWhenItDestroysIt) {
  Recorder window;
  window.Attach(CreateWindow("STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr));
  EXPECT_TRUE(window.DestroyWindow());
  EXPECT_FALSE(window.m_hWnd);
  EXPECT_TRUE(window.final_messages.empty());
}

TEST(WindowImpl, AHandlerThatThrowsLeavesNoMessageTheCurrentOne) {
  class Throwing : public CWindowImpl<Throwing, CWindow, CFrameWinTraits> {
   public:
    BEGIN_MSG_MAP(Throwing)
      MESSAGE_HANDLER(WM_USER, OnUser)
    END_MSG_MAP()
    LRESULT OnUser(UINT, WPARAM, LPARAM, BOOL&) {
      EXPECT_EQ(m_pCurrentMsg->message, UINT{WM_USER});
      throw 5;
    }
    void OnFinalMessage(HWND) override { ++final_messages; }
    bool is_working() const { return m_pCurrentMsg != nullptr; }
    int final_messages = 0;
  } window;
  HWND handle = window.Create(nullptr);
  auto procedure = reinterpret_cast<WNDPROC>(window.GetWindowLongPtr(GWLP_WNDPROC));
  // Called directly: exceptions do not pass through the system.
  EXPECT_THROW(procedure(handle, WM_USER, 0, 0), int);
  EXPECT_FALSE(window.is_working());
  window.DestroyWindow();
  EXPECT_EQ(window.final_messages, 1);
}

TEST(WindowImpl, IsNotToldOfItsEndIfItHandlesTheLastMessageItself) {
  class Last : public CWindowImpl<Last, CWindow, CFrameWinTraits> {
   public:
    BEGIN_MSG_MAP(Last)
      MESSAGE_HANDLER(WM_NCDESTROY, OnLast)
    END_MSG_MAP()
    LRESULT OnLast(UINT, WPARAM, LPARAM, BOOL&) { return 0; }
    void OnFinalMessage(HWND) override { ++final_messages; }
    int final_messages = 0;
  } window;
  HWND created = window.Create(nullptr);
  window.DestroyWindow();
  EXPECT_FALSE(::IsWindow(created));
  EXPECT_EQ(window.final_messages, 0);
  EXPECT_EQ(window.m_hWnd, created);
}

TEST(WindowImpl, AWindowOfItsClassThatNobodyAnnouncedIsNotMade) {
  Recorder window;
  HWND stranger = nullptr;
  window.on_create = [&] {
    window.on_create = nullptr;
    stranger = CreateWindow(MAKEINTATOM(Recorder::GetWndClassInfo().m_atom), "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                            GetModuleHandle(nullptr), nullptr);
  };
  HWND created = window.Create(nullptr);
  EXPECT_FALSE(stranger);
  EXPECT_EQ(window.m_hWnd, created);
  window.DestroyWindow();
}

TEST(WindowImpl, DestroyedFromOutsideIsToldOnce) {
  Recorder window;
  HWND handle = window.Create(nullptr);
  DestroyWindow(handle);
  EXPECT_EQ(window.final_messages, std::vector<HWND>{handle});
}

TEST(WindowImpl, ItsProcedureOutlivesTheWindowUntilTheObjectGoes) {
  WNDPROC procedure;
  Recorder window;
  window.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP);
  procedure = reinterpret_cast<WNDPROC>(window.GetWindowLongPtr(GWLP_WNDPROC));
  window.DestroyWindow();
  window.seen.clear();
  // The subclassing code keeps the procedure, which still calls the object.
  CallWindowProc(procedure, nullptr, WM_NULL, 0, 0);
  EXPECT_EQ(window.seen, Messages{WM_NULL});
}

// The size of executable memory outside of modules.
size_t code_made_at_run_time() {
  size_t bytes = 0;
  MEMORY_BASIC_INFORMATION region;
  for (char* at = nullptr; VirtualQuery(at, &region, sizeof region); at += region.RegionSize)
    if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE && (region.Protect & 0xF0)) bytes += region.RegionSize;
  return bytes;
}

TEST(WindowImpl, ItsProcedureIsGivenBackWithTheObject) {
  size_t before = code_made_at_run_time();
  for (int i = 0; i < 20000; ++i) {
    CWndProcThunk thunk;
    ASSERT_TRUE(thunk.Init(nullptr, nullptr));
  }
  EXPECT_LT(code_made_at_run_time() - before, 65536U);
}

}  // namespace
