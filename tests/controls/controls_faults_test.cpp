// Calls that fail while controls are made and numbers are shown, for each function of the family that can fail.
#include <gtest/gtest.h>

#include <kexlib/controls/bitmap_button.h>
#include <kexlib/controls/button_menu.h>
#include <kexlib/controls/numeric_edit_box.h>
#include <kexlib/controls/step_manager.h>

#include <controls/formatting.h>
#include <controls/resources.h>
#include <support/fault_sweep.h>
#include <support/window_text.h>

#include <memory>
#include <string>

namespace {

const Call calls[] = {
    memory_call(),
    Call("USER32.dll", "CreateWindowExA", &CreateWindowExA, nullptr),
    Call("USER32.dll", "LoadBitmapA", &LoadBitmapA, nullptr),
    Call("USER32.dll", "LoadMenuA", &LoadMenuA, nullptr),
    Call("GDI32.dll", "CreateFontIndirectA", &CreateFontIndirectA, nullptr),
    Call("GDI32.dll", "CreateDIBSection", &CreateDIBSection, nullptr),
    Call("GDI32.dll", "CreateCompatibleDC", &CreateCompatibleDC, nullptr),
    Call("COMCTL32.dll", "ImageList_Add", &ImageList_Add, -1),
    Call("KERNEL32.dll", "GetLocaleInfoA", &GetLocaleInfoA, 0),
};

HWND make_control(const char* name, HWND parent) {
  return CreateWindowA(name, "", parent ? WS_CHILD : WS_POPUP, 0, 0, 50, 20, parent, nullptr, nullptr, nullptr);
}

// A window with a child of this class.
struct Host {
  explicit Host(const char* name) : window(make_control("STATIC", nullptr)), child(make_control(name, window)) {}
  ~Host() { DestroyWindow(window); }
  const HWND window, child;
};

BOOL WINAPI no_menu(HMENU, UINT, int, int, int, HWND, const RECT*) { return TRUE; }

std::string memory_exception(const Attempt& attempt) { return attempt.failed("malloc") ? "CMemoryException" : ""; }

const Operation operations[] = {
    {"kexWTLBitmapButton",
     [](Attempt& attempt) {
       std::unique_ptr<kexWTLBitmapButton> button;
       const std::string thrown = attempt([&] { button = std::make_unique<kexWTLBitmapButton>(); });
       EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
     }},
    {"AddImage",
     [](Attempt& attempt) {
       WTL::CImageListT<false> images;
       images.Create(16, 16, ILC_COLOR32, 2, 2);
       kexWTLBitmapButton button(kexBtnTypePlain);
       int index = -2;
       EXPECT_EQ(attempt([&] { index = button.AddImage(&images, IDB_FRAME, GetModuleHandleA(nullptr)); }), "");
       if (!attempt.failed()) {
         EXPECT_EQ(index, 0);
         EXPECT_EQ(images.GetImageCount(), 2);
       }
       const int count = images.GetImageCount();
       EXPECT_EQ(button.AddImage(&images, IDB_FRAME, GetModuleHandleA(nullptr)), count);
       EXPECT_EQ(images.GetImageCount(), count + 2);
       images.Destroy();
     }},
    {"SetInfo",
     [](Attempt& attempt) {
       WTL::CImageListT<false> images;
       images.Create(16, 16, ILC_COLOR32, 2, 2);
       {
         const Host host("BUTTON");
         kexWTLBitmapButton button(kexBtnTypePlain);
         const std::string thrown = attempt(
             [&] { button.SetInfo(host.child, &images, IDB_FRAME, "a text for the tip", GetModuleHandleA(nullptr)); });
         EXPECT_TRUE(thrown.empty() || (attempt.failed("malloc") && thrown == "CMemoryException")) << thrown;
         if (!attempt.failed()) {
           EXPECT_EQ(button.m_hWnd, host.child);
         }
         button.SetInfo(host.child, &images, IDB_FRAME, "a text for the tip", GetModuleHandleA(nullptr));
         EXPECT_EQ(button.m_hWnd, host.child);
         char text[30] = "";
         EXPECT_TRUE(button.GetToolTipText(text, sizeof text));
         EXPECT_STREQ(text, "a text for the tip");
         SendMessageA(host.child, WM_PAINT, 0, 0);
         DestroyWindow(host.child);
       }
       images.Destroy();
     }},
    {"atlButtonMenu::SubclassWindow",
     [](Attempt& attempt) {
       const Host host("BUTTON");
       atlButtonMenu button;
       BOOL done = -1;
       EXPECT_EQ(attempt([&] { done = button.SubclassWindow(host.child); }), "");
       EXPECT_EQ(button.m_hWnd, done ? host.child : nullptr);
       if (!attempt.failed()) {
         EXPECT_TRUE(done);
       }
       if (done) {
         EXPECT_STREQ(window_text(host.child).c_str(), attempt.failed("CreateFontIndirectA") ? "v" : "6");
       }
       EXPECT_TRUE(button.SubclassWindow(host.child));
       EXPECT_STREQ(window_text(host.child).c_str(), "6");
       DestroyWindow(host.child);
     }},
    {"atlButtonMenu::OnClick",
     [](Attempt& attempt) {
       const ImportOverride at_once("kexlib.dll", "USER32.dll", "TrackPopupMenu", &no_menu);
       const Host host("BUTTON");
       atlButtonMenu button;
       button.SetMenu(GetModuleHandleA(nullptr), IDR_MENU);
       SetWindowLongA(host.child, GWL_STYLE, WS_CHILD | BS_CHECKBOX);
       button.SubclassWindow(host.child);
       BOOL handled = TRUE;
       EXPECT_EQ(attempt([&] { button.OnClick(BN_CLICKED, 0, host.child, handled); }), "");
       EXPECT_EQ(button.GetCheck(), attempt.failed() ? BST_CHECKED : BST_UNCHECKED);
       button.OnClick(BN_CLICKED, 0, host.child, handled);
       EXPECT_EQ(button.GetCheck(), BST_UNCHECKED);
       DestroyWindow(host.child);
     }},
    {"kexNumericEditBox",
     [](Attempt& attempt) {
       std::unique_ptr<kexNumericEditBox> box;
       const std::string thrown = attempt([&] { box = std::make_unique<kexNumericEditBox>(); });
       if (attempt.failed("malloc")) {
         EXPECT_TRUE(thrown == "std::bad_alloc" || thrown == "CMemoryException") << thrown;
       } else {
         EXPECT_EQ(thrown, "");
       }
     }},
    {"kexNumericEditBox::SubclassWindow",
     [](Attempt& attempt) {
       const Host host("EDIT");
       kexNumericEditBox box;
       BOOL done = -1;
       EXPECT_EQ(attempt([&] { done = box.SubclassWindow(host.child); }), "");
       EXPECT_EQ(box.m_hWnd, done ? host.child : nullptr);
       EXPECT_TRUE(box.SubclassWindow(host.child));
       box.set_value(2);
       EXPECT_STREQ(window_text(host.child).c_str(), "2.000");
       DestroyWindow(host.child);
     }},
    {"kexNumericEditBox::Create",
     [](Attempt& attempt) {
       Host host("EDIT");
       ATL::CWindow font(host.child);
       kexNumericEditBox box;
       box.Attach(host.window);
       const std::string thrown = attempt([&] { box.Create(font); });
       EXPECT_TRUE(thrown.empty() || (attempt.failed("malloc") && thrown == "CMemoryException")) << thrown;
       if (attempt.failed("CreateWindowExA")) {
         EXPECT_EQ(box.m_hWnd, nullptr);
       }
       if (!attempt.failed()) {
         EXPECT_STREQ(window_text(box.m_hWnd).c_str(), "0.000");
       }
       DestroyWindow(host.window);
     }},
    {"set_value and get_value",
     [](Attempt& attempt) {
       const Host host("EDIT");
       kexNumericEditBox box;
       box.SubclassWindow(host.child);
       double value = 0;
       const std::string thrown = attempt([&] {
         box.set_value(2.5);
         value = box.get_value();
       });
       EXPECT_EQ(thrown, memory_exception(attempt));
       EXPECT_EQ(value, thrown.empty() ? 2.5 : 0);
       box.set_value(1.5);
       EXPECT_EQ(box.get_value(), 1.5);
       DestroyWindow(host.child);
     }},
    {"get_decimal_seperator",
     [](Attempt& attempt) {
       CStringA separator;
       const std::string thrown = attempt([&] { separator = kexNumericFormatting::get_decimal_seperator(); });
       EXPECT_EQ(thrown, memory_exception(attempt));
       if (thrown.empty()) {
         EXPECT_STREQ(separator, ".");
       }
     }},
    {"format_double_with_units",
     [](Attempt& attempt) {
       Formatting formatting(2, 4, KRV_Inches, KRV_Millimetres);
       CStringA text;
       const std::string thrown = attempt([&] { text = formatting.with_units(1).c_str(); });
       EXPECT_EQ(thrown, memory_exception(attempt));
       EXPECT_STREQ(text, thrown.empty() ? "25.40" : "");
     }},
    {"add_control",
     [](Attempt& attempt) {
       atlControlGroup group(nullptr);
       const std::string thrown = attempt([&] { group.add_control(7); });
       EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
       EXPECT_EQ(group.contains(7), !attempt.failed());
       group.add_control(7);
       EXPECT_EQ(group.contains(7), 1);
     }},
    {"atlControlGroup, a copy",
     [](Attempt& attempt) {
       atlControlGroup group(nullptr);
       for (const unsigned id : {7u, 8u, 9u}) group.add_control(id);
       const std::string thrown = attempt([&] { const atlControlGroup copy(group); });
       EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
     }},
    {"create_step",
     [](Attempt& attempt) {
       atlStepManager steps(nullptr, true);
       const std::string thrown = attempt([&] { steps.create_step(); });
       EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
       EXPECT_EQ(steps.get_step_count(), !attempt.failed());
       EXPECT_EQ(steps.create_step()->step_number(), attempt.failed() ? 1 : 2);
     }},
};

TEST(ControlsFaults, NoCallThatFailsDoesHarm) { sweep_faults(calls, operations); }

TEST(ControlsFaults, RoundsWithoutOneLeaveNothingBehind) { repeat_rounds(operations); }

}  // namespace
