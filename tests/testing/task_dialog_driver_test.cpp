#include <gtest/gtest.h>

#include <kexlib/dialogs/task_dialog.h>
#include <kexlib/testing/task_dialog_driver.h>

#include <commctrl.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace {

using kexlib::testing::ShownTaskDialog;
using kexlib::testing::TaskDialogDriver;
using std::chrono::milliseconds;
using Texts = std::vector<std::wstring>;

constexpr const wchar_t* links = L"See <a href=\"first\">one</a> and <A HREF=\"second\">two</A>, a<b.";

// ---- the library's --------------------------------------------------------------------------------------------------

TEST(TestingTaskDialogDriver, ReadsAndPressesTheLibrarys) {
  kexTaskDialog dialog;
  dialog.set_title("Export");
  dialog.set_main_instruction("The file already exists.");
  dialog.set_message("Its contents would be lost.");
  dialog.add_button("Replace");
  dialog.add_button("Compare");
  dialog.add_button("Leave && forget");
  bool compared = false;
  dialog.add_action(102, [&](const kexTaskDialogActionContext&) { compared = true; });

  TaskDialogDriver user;
  user.look([](const ShownTaskDialog& shown) {
    EXPECT_EQ(shown.title(), L"Export");
    EXPECT_EQ(shown.texts(), (Texts{L"The file already exists.", L"Its contents would be lost."}));
    EXPECT_EQ(shown.buttons(), (Texts{L"Replace", L"Compare", L"Leave & forget"}));
    EXPECT_TRUE(shown.is_enabled(L"Compare"));
    EXPECT_FALSE(shown.is_enabled(L"Print"));
    EXPECT_EQ(shown.find_button(L"Print"), nullptr);
    EXPECT_FALSE(shown.press(L"Print"));
    EXPECT_FALSE(shown.click_link());
  });
  user.press(L"Compare");
  user.wait_for("the comparison", [&] { return compared; });
  user.press(L"Leave & forget");
  EXPECT_EQ(dialog.raise(), 103);
  EXPECT_EQ(user.problem(), "");
  EXPECT_TRUE(compared);
}

TEST(TestingTaskDialogDriver, CancelsAsTheCloseBoxDoes) {
  kexTaskDialog dialog;  // which does not close so
  dialog.add_button("Act");
  dialog.add_button("Close");
  TaskDialogDriver user;
  user.cancel();
  user.press(101);
  EXPECT_EQ(dialog.raise(), 101);
  EXPECT_EQ(user.problem(), "");
}

TEST(TestingTaskDialogDriver, ClicksLinks) {
  std::vector<std::wstring> targets;
  kexTaskDialog dialog;
  dialog.set_message("See <a href=\"first\">one</a> and <a href=\"second\">two</a>.");
  dialog.set_hyperlink_action([&](const kexTaskDialogHyperlinkActionContext& link) { targets.emplace_back(link.url); });
  dialog.add_button("Close");
  TaskDialogDriver user;
  user.click_link(1);
  user.click_link();
  user.look([](const ShownTaskDialog& shown) {
    EXPECT_EQ(shown.texts(), Texts{L"See one and two."});
    EXPECT_FALSE(shown.click_link(2));
  });
  user.press(L"Close");
  EXPECT_EQ(dialog.raise(), 101);
  EXPECT_EQ(user.problem(), "");
  EXPECT_EQ(targets, (std::vector<std::wstring>{L"second", L"first"}));
}

TEST(TestingTaskDialogDriver, GoesOnInAnotherDialog) {
  kexTaskDialog outer, inner;
  outer.set_title("Outer");
  inner.set_title("Inner");
  outer.add_button("Open");
  outer.add_button("Close");
  inner.add_button("Done");
  outer.add_action(101, [&](const kexTaskDialogActionContext&) { EXPECT_EQ(inner.raise(), 101); });
  TaskDialogDriver user;
  user.press(L"Open");
  user.wait_for_title(L"Inner");
  user.press(L"Done");
  user.wait_for_title(L"Outer");
  user.press(L"Close");
  EXPECT_EQ(outer.raise(), 102);
  EXPECT_EQ(user.problem(), "");
}

TEST(TestingTaskDialogDriver, SaysWhichButtonIsMissing) {
  kexTaskDialog dialog;
  dialog.add_button("Act");
  dialog.add_action(101, [](const kexTaskDialogActionContext&) {});
  TaskDialogDriver user(milliseconds(200));
  user.press(L"Print");
  dialog.raise();  // which no button closes
  EXPECT_EQ(user.problem(), "step 1 of 1, press \"Print\": it took too long");
}

// ---- the system's ---------------------------------------------------------------------------------------------------

// A dialog with all that the driver can press.
class TestingTaskDialogDriverOfTheSystem : public testing::Test {
 protected:
  TestingTaskDialogDriverOfTheSystem() {
    config.cbSize = sizeof config;
    config.dwFlags = TDF_ENABLE_HYPERLINKS | TDF_ALLOW_DIALOG_CANCELLATION;
    config.pszWindowTitle = L"System";
    config.pszMainInstruction = L"Instruction";
    config.pszContent = L"Content";
    config.pszFooter = links;
    config.pszVerificationText = L"Do not &ask again";
    config.cButtons = 2;
    config.pButtons = buttons;
    config.cRadioButtons = 2;
    config.pRadioButtons = radio_buttons;
    config.lpCallbackData = reinterpret_cast<LONG_PTR>(this);
    config.pfCallback = [](HWND, UINT notification, WPARAM, LPARAM lparam, LONG_PTR self) -> HRESULT {
      if (notification == TDN_HYPERLINK_CLICKED)
        reinterpret_cast<TestingTaskDialogDriverOfTheSystem*>(self)->targets.emplace_back(
            reinterpret_cast<const wchar_t*>(lparam));
      return S_OK;
    };
  }

  void show() {
    const auto function = reinterpret_cast<decltype(&TaskDialogIndirect)>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryA("comctl32.dll"), "TaskDialogIndirect")));
    ASSERT_TRUE(function);
    EXPECT_EQ(function(&config, &pressed, &radio, &verified), S_OK);
  }

  const TASKDIALOG_BUTTON buttons[2] = {{11, L"&First"}, {12, L"&Second\nwith a note"}};
  const TASKDIALOG_BUTTON radio_buttons[2] = {{21, L"Metric"}, {22, L"Imperial"}};
  TASKDIALOGCONFIG config{};
  std::vector<std::wstring> targets;
  int pressed = 0, radio = 0;
  BOOL verified = FALSE;
};

TEST_F(TestingTaskDialogDriverOfTheSystem, IsReadAndPressed) {
  TaskDialogDriver user;
  user.look([](const ShownTaskDialog& shown) {
    EXPECT_EQ(shown.title(), L"System");
    EXPECT_EQ(shown.texts(), (Texts{L"Instruction", L"Content", L"See one and two, a<b."}));
    Texts labels = shown.buttons();
    std::sort(labels.begin(), labels.end());
    EXPECT_EQ(labels, (Texts{L"Do not ask again", L"First", L"Imperial", L"Metric", L"Second"}));
    EXPECT_TRUE(shown.is_checked(L"Metric"));
    EXPECT_FALSE(shown.is_checked(L"Do not ask again"));
  });
  user.press(L"Do not ask again");
  user.press(L"Imperial");
  user.click_link(1);
  user.look([](const ShownTaskDialog& shown) {
    EXPECT_FALSE(shown.is_checked(L"Metric"));
    EXPECT_TRUE(shown.is_checked(L"Imperial"));
    EXPECT_TRUE(shown.is_checked(L"Do not ask again"));
    EXPECT_FALSE(shown.is_checked(L"Print"));
  });
  user.press(L"Second");
  show();
  EXPECT_EQ(user.problem(), "");
  EXPECT_EQ(pressed, 12);
  EXPECT_EQ(radio, 22);
  EXPECT_TRUE(verified);
  EXPECT_EQ(targets, std::vector<std::wstring>{L"second"});
}

TEST_F(TestingTaskDialogDriverOfTheSystem, IsPressedByIdentifiers) {
  TaskDialogDriver user;
  user.choose(22);
  user.choose(21);
  user.press(11);
  show();
  EXPECT_EQ(user.problem(), "");
  EXPECT_EQ(pressed, 11);
  EXPECT_EQ(radio, 21);
  EXPECT_FALSE(verified);

  TaskDialogDriver other;
  other.choose(22);
  other.press(11);
  show();
  EXPECT_EQ(radio, 22);
}

TEST_F(TestingTaskDialogDriverOfTheSystem, MayHaveCommandLinks) {
  config.dwFlags |= TDF_USE_COMMAND_LINKS;
  TaskDialogDriver user;
  user.press(L"Second");
  show();
  EXPECT_EQ(user.problem(), "");
  EXPECT_EQ(pressed, 12);
}

TEST_F(TestingTaskDialogDriverOfTheSystem, IsCancelled) {
  TaskDialogDriver user;
  user.cancel();
  show();
  EXPECT_EQ(user.problem(), "");
  EXPECT_EQ(pressed, IDCANCEL);
}

TEST_F(TestingTaskDialogDriverOfTheSystem, WaitsForADisabledButton) {
  TaskDialogDriver user;
  int looks = 0;
  user.look([](const ShownTaskDialog& shown) {
    SendMessageA(shown.window(), TDM_ENABLE_BUTTON, 11, FALSE);
    EXPECT_FALSE(shown.is_enabled(L"First"));
    EXPECT_FALSE(shown.press(L"First"));
  });
  user.add("enable it", [&](HWND dialog) {
    if (++looks < 3) return false;
    SendMessageA(dialog, TDM_ENABLE_BUTTON, 11, TRUE);
    return true;
  });
  user.press(L"First");
  show();
  EXPECT_EQ(user.problem(), "");
  EXPECT_EQ(pressed, 11);
}

}  // namespace
