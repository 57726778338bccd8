// CWnd, and the exchange of a check box with a variable.
#include <gtest/gtest.h>

#include <afxwin.h>

#include <support/resource_counts.h>
#include <support/window_text.h>

#include <memory>

namespace {

HWND make_window(const char* class_name = "STATIC", HWND parent = nullptr, int id = 0, DWORD style = 0) {
  return CreateWindowExA(0, class_name, "", style | (parent ? WS_CHILD : WS_POPUP), 0, 0, 50, 20, parent,
                         reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
}

// A class as applications derive it: created by run-time class, with its own Create.
class Label : public CWnd {
  DECLARE_DYNCREATE(Label)

 public:
  BOOL Create(LPCTSTR, LPCTSTR windowName, DWORD style, const RECT& rect, CWnd* parent, UINT id,
              CCreateContext* context = nullptr) override {
    return CWnd::Create("STATIC", windowName, style, rect, parent, id, context);
  }
};

IMPLEMENT_DYNCREATE(Label, CWnd)

TEST(Window, IsMadeByItsRuntimeClass) {
  std::unique_ptr<CObject> object(RUNTIME_CLASS(Label)->CreateObject());
  auto* label = dynamic_cast<Label*>(object.get());
  ASSERT_NE(label, nullptr);
  EXPECT_EQ(label->GetSafeHwnd(), nullptr);
  EXPECT_STREQ(label->GetRuntimeClass()->m_lpszClassName, "Label");
  EXPECT_EQ(label->GetRuntimeClass()->m_wSchema, 0xFFFFu);
  EXPECT_EQ(label->GetRuntimeClass()->m_pfnGetBaseClass(), RUNTIME_CLASS(CWnd));
  EXPECT_EQ(RUNTIME_CLASS(CWnd)->m_pfnGetBaseClass(), RUNTIME_CLASS(CObject));
}

TEST(Window, CreatesAChildWhereAndAsItIsTold) {
  CWnd parent;
  ASSERT_TRUE(parent.Attach(make_window()));
  Label label;
  CWnd& base = label;
  ASSERT_TRUE(base.Create(nullptr, "text", WS_VISIBLE, RECT{1, 2, 31, 12}, &parent, 77));
  EXPECT_EQ(window_text(label.m_hWnd), "text");
  EXPECT_EQ(GetDlgItem(parent.m_hWnd, 77), label.m_hWnd);
  RECT rect;
  GetWindowRect(label.m_hWnd, &rect);
  MapWindowPoints(nullptr, parent.m_hWnd, reinterpret_cast<POINT*>(&rect), 2);
  EXPECT_TRUE(rect.left == 1 && rect.top == 2 && rect.right == 31 && rect.bottom == 12);
  EXPECT_FALSE(base.Create(nullptr, "second", 0, RECT{}, &parent, 78));
  EXPECT_EQ(GetDlgItem(parent.m_hWnd, 78), nullptr);
}

TEST(Window, CreateFailsForAnUnknownClassAndWithoutAParent) {
  CWnd parent, window;
  parent.Attach(make_window());
  EXPECT_FALSE(window.Create("no such class", "", 0, RECT{}, &parent, 1));
  EXPECT_FALSE(window.Create("STATIC", "", 0, RECT{}, nullptr, 1));
  EXPECT_EQ(window.m_hWnd, nullptr);
}

TEST(Window, EndsWithItsOwnerUnlessItIsDetached) {
  HWND attached = make_window(), detached = make_window();
  {
    CWnd first, second;
    EXPECT_TRUE(first.Attach(attached));
    EXPECT_TRUE(second.Attach(detached));
    EXPECT_EQ(second.GetSafeHwnd(), detached);
    EXPECT_EQ(second.Detach(), detached);
    EXPECT_EQ(second.Detach(), nullptr);
  }
  EXPECT_FALSE(IsWindow(attached));
  EXPECT_TRUE(IsWindow(detached));
  DestroyWindow(detached);
}

TEST(Window, LearnsThatSomebodyElseDestroyedIt) {
  CWnd parent, child;
  parent.Attach(make_window());
  child.Create("STATIC", "", 0, RECT{}, &parent, 1);
  HWND gone = parent.m_hWnd;
  DestroyWindow(gone);
  EXPECT_EQ(parent.m_hWnd, nullptr);
  EXPECT_EQ(child.m_hWnd, nullptr);
  EXPECT_FALSE(child.DestroyWindow());
  // The object can be used for another window.
  EXPECT_TRUE(child.Attach(make_window()));
}

TEST(Window, DetachedIsNoLongerWatched) {
  HWND window = make_window();
  CWnd first, second;
  first.Attach(window);
  first.Detach();
  second.Attach(window);
  DestroyWindow(window);
  EXPECT_EQ(second.m_hWnd, nullptr);
}

TEST(Window, AttachTakesOneWindowAndNotNull) {
  HWND other = make_window();
  CWnd window;
  EXPECT_FALSE(window.Attach(nullptr));
  HWND first = make_window();
  EXPECT_TRUE(window.Attach(first));
  EXPECT_FALSE(window.Attach(other));
  EXPECT_EQ(window.m_hWnd, first);
  DestroyWindow(other);
}

TEST(Window, DestroyWindowLetsGoOfIt) {
  HWND handle = make_window();
  CWnd window;
  EXPECT_FALSE(window.DestroyWindow());
  window.Attach(handle);
  EXPECT_TRUE(window.DestroyWindow());
  EXPECT_FALSE(IsWindow(handle));
  EXPECT_EQ(window.m_hWnd, nullptr);
  EXPECT_FALSE(window.DestroyWindow());
}

TEST(Window, AThousandLeaveNothingBehind) {
  const auto make = [] {
    CWnd parent;
    parent.Attach(make_window());
    Label label;
    EXPECT_TRUE(label.Create(nullptr, "text", 0, RECT{}, &parent, 1));
  };
  make();
  const ResourceCounts before;
  for (int round = 0; round < 1000; ++round) make();
  EXPECT_EQ(ResourceCounts(), before);
}

class CheckExchange : public testing::Test {
 protected:
  CheckExchange() {
    dialog.Attach(make_window());
    box = make_window("BUTTON", dialog.m_hWnd, 5, BS_AUTO3STATE);
  }
  LRESULT state() const { return SendMessageA(box, BM_GETCHECK, 0, 0); }
  void set(WPARAM state) { SendMessageA(box, BM_SETCHECK, state, 0); }

  CWnd dialog;
  HWND box;
};

TEST_F(CheckExchange, ShowsTheVariableInTheBox) {
  CDataExchange show(&dialog, FALSE);
  EXPECT_FALSE(show.m_bSaveAndValidate);
  EXPECT_EQ(show.m_pDlgWnd, &dialog);
  for (int value : {1, 0, 2}) {
    DDX_Check(&show, 5, value);
    EXPECT_EQ(state(), value);
  }
}

TEST_F(CheckExchange, SavesTheBoxInTheVariable) {
  CDataExchange save(&dialog, TRUE);
  int value = -1;
  for (WPARAM expected : {1u, 0u, 2u}) {
    set(expected);
    DDX_Check(&save, 5, value);
    EXPECT_EQ(value, static_cast<int>(expected));
    EXPECT_EQ(state(), static_cast<LRESULT>(expected));
  }
}

TEST_F(CheckExchange, AValueThatNoBoxHasBecomesUnchecked) {
  CDataExchange show(&dialog, FALSE);
  for (int wrong : {3, -1}) {
    set(BST_CHECKED);
    int value = wrong;
    DDX_Check(&show, 5, value);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(state(), 0);
  }
}

TEST_F(CheckExchange, AControlThatIsNotThereIsNotSupported) {
  CWnd none;
  int value = 1;
  int caught = 0;
  for (CWnd* asked : {&dialog, &none, static_cast<CWnd*>(nullptr)})
    for (BOOL save : {TRUE, FALSE}) {
      CDataExchange exchange(asked, save);
      try {
        DDX_Check(&exchange, 6, value);
      } catch (CNotSupportedException* exception) {
        ++caught;
        exception->Delete();
      }
    }
  EXPECT_EQ(caught, 6);
  EXPECT_EQ(value, 1);
}

}  // namespace
