// Windows that host ActiveX controls.
#include <gtest/gtest.h>

#include <atlhost.h>

#include <support/expect_flat.h>
#include <support/test_control.h>

namespace {

TEST(AxWindow, WithoutAControlHostsNothing) {
  CAxWindow window;
  ASSERT_TRUE(window.Create(HWND_MESSAGE, nullptr, "", WS_POPUP));
  char name[20];
  GetClassName(window, name, sizeof name);
  EXPECT_STREQ(name, "AtlAxWin140");
  CComPtr<IUnknown> control;
  EXPECT_EQ(window.QueryControl(&control), E_FAIL);
  EXPECT_FALSE(control);
  EXPECT_EQ(AtlAxGetControl(window, nullptr), E_POINTER);
  window.DestroyWindow();
}

TEST(AxWindow, OfAControlThatThereIsNotIsNotMade) {
  OleInitialize(nullptr);
  CAxWindow window;
  EXPECT_FALSE(window.Create(HWND_MESSAGE, nullptr, "{00000000-1111-2222-3333-444444444444}", WS_POPUP));
  OleUninitialize();
}

// An object without IOleObject: the host holds it and shows nothing.
class PlainObjectInAxWindow : public testing::Test {
 protected:
  PlainObjectInAxWindow() {
    class_.prepare = [](TestControl* made) { made->is_ole_object = false; };
  }
  ~PlainObjectInAxWindow() override { EXPECT_EQ(RecordingDispatch::alive, 0); }

  HWND create(const char* name = "{9F4F3A70-6B1D-4C5E-8A11-520E773C0102}") {
    return window_.Create(HWND_MESSAGE, nullptr, name, WS_POPUP);
  }

  TestControlClass class_;
  CAxWindow window_;
};

TEST_F(PlainObjectInAxWindow, IsKeptUntilTheWindowGoes) {
  ASSERT_TRUE(create());
  EXPECT_EQ(class_.made->references(), 1u);
  EXPECT_EQ(class_.made->window, nullptr);
  window_.DestroyWindow();
  EXPECT_EQ(RecordingDispatch::alive, 0);
}

TEST_F(PlainObjectInAxWindow, IsGivenWithAReferenceToWhoeverAsks) {
  ASSERT_TRUE(create());
  {
    CComPtr<IUnknown> object;
    EXPECT_EQ(window_.QueryControl(&object), S_OK);
    EXPECT_EQ(object.p, static_cast<IOleObject*>(class_.made));
    EXPECT_EQ(class_.made->references(), 2u);
    window_.DestroyWindow();
    EXPECT_EQ(class_.made->references(), 1u);
  }
  EXPECT_EQ(RecordingDispatch::alive, 0);
}

TEST_F(PlainObjectInAxWindow, IsNamedByItsClass) {
  EXPECT_FALSE(create("{9F4F3A70-6B1D-4C5E-8A11-520E773C0102"));
  EXPECT_FALSE(create("no class"));
  EXPECT_EQ(class_.made, nullptr);
}

TEST_F(PlainObjectInAxWindow, LeavesNothingBehind) {
  expect_flat(100, [&] {
    ASSERT_TRUE(create());
    window_.DestroyWindow();
  });
}

}  // namespace
