// Real task dialogs on the screen, operated as a user operates them.
#include <gtest/gtest.h>

#include <kexlib/dialogs/task_dialog.h>

#include <commctrl.h>

#include <dialogs/dialog_driver.h>
#include <dialogs/task_dialog_fixture.h>
#include <support/expect_flat.h>
#include <support/import_override.h>
#include <support/picture.h>
#include <support/user_input.h>
#include <support/window_text.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

HWND button_named(HWND dialog, const std::string& text) {
  HWND found = nullptr;
  while ((found = FindWindowExA(dialog, found, "BUTTON", nullptr)))
    if (window_text(found) == text) return found;
  return nullptr;
}

using Step = DialogDriver::Step;

Step then(std::function<void(HWND)> what) {
  return [what = std::move(what)](HWND dialog) { return what(dialog), true; };
}
// With the mouse.
Step press_button(const std::string& text) {
  return click_on([text](HWND dialog) { return button_named(dialog, text); });
}
Step press_the_key(WORD code, WORD held = 0) {
  return [code, held](HWND dialog) {
    if (GetForegroundWindow() != dialog || !GetFocus()) return false;
    press_key(code, held);
    return true;
  };
}
Step wait_for(std::function<bool()> happened) {
  return [happened = std::move(happened)](HWND) { return happened(); };
}
Step take_picture(const std::string& name) {
  return then([name](HWND dialog) {
    RedrawWindow(dialog, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    EXPECT_TRUE(Picture(dialog).save(name));
  });
}
// Clicks in the text, all of which is one link.
Step click_the_link() {
  return then([](HWND dialog) {
    const HWND text = FindWindowExA(dialog, nullptr, "SysLink", nullptr);
    ASSERT_TRUE(text);
    LITEM link{};
    link.mask = LIF_ITEMINDEX | LIF_STATE;
    link.state = link.stateMask = LIS_FOCUSED;
    SetFocus(text);
    SendMessageW(text, LM_SETITEM, 0, reinterpret_cast<LPARAM>(&link));
    press_key(VK_RETURN);
  });
}

class TaskDialogOnScreen : public testing::Test {
 protected:
  TaskDialogOnScreen() { dialog.set_title("Task dialog"); }
  ~TaskDialogOnScreen() override { EXPECT_EQ(dialog_in_front(), nullptr); }

  // Runs these steps of a user meanwhile.
  int raise_and(std::vector<Step> steps) {
    DialogDriver person(std::move(steps));
    return dialog.raise();
  }

  kexTaskDialog dialog;
};

TEST_F(TaskDialogOnScreen, ShowsItsTextsAndItsButtonsInOrder) {
  dialog.set_main_instruction("The file is there already.");
  dialog.set_message("Its contents would be lost.");
  dialog.add_button("Replace");
  dialog.add_button("Compare");
  dialog.add_button("Leave it");
  const int pressed =
      raise_and({then([](HWND shown) {
                   EXPECT_EQ(window_text(shown), "Task dialog");
                   std::vector<std::pair<LONG, std::string>> buttons;
                   for (HWND button = nullptr; (button = FindWindowExA(shown, button, "BUTTON", nullptr));) {
                     RECT place;
                     GetWindowRect(button, &place);
                     buttons.emplace_back(place.left, window_text(button));
                   }
                   std::sort(buttons.begin(), buttons.end());
                   ASSERT_EQ(buttons.size(), 3u);
                   EXPECT_EQ(buttons[0].second, "Replace");
                   EXPECT_EQ(buttons[1].second, "Compare");
                   EXPECT_EQ(buttons[2].second, "Leave it");
                 }),
                 take_picture("task_dialog_three_buttons"), press_button("Compare")});
  EXPECT_EQ(pressed, 102);
}

TEST_F(TaskDialogOnScreen, ReturnsEachButtonThatClosesIt) {
  dialog.add_button("One");
  dialog.add_button("Two");
  dialog.add_button("Three");
  EXPECT_EQ(raise_and({press_button("Three")}), 103);
  EXPECT_EQ(raise_and({press_button("One")}), 101);
}

TEST_F(TaskDialogOnScreen, EnterPressesTheDefaultButton) {
  dialog.add_button("One");
  dialog.add_button("Two");
  EXPECT_EQ(raise_and({press_the_key(VK_RETURN)}), 101);
  dialog.set_default_button(102);
  EXPECT_EQ(raise_and({press_the_key(VK_RETURN)}), 102);
  dialog.set_default_button(4711);
  EXPECT_EQ(raise_and({press_the_key(VK_RETURN)}), 101) << "the system uses the first button for an unknown one";
}

TEST_F(TaskDialogOnScreen, HasTheSystemsOkWithoutButtons) {
  dialog.set_message("That was all.");
  EXPECT_EQ(raise_and({take_picture("task_dialog_ok"), press_the_key(VK_RETURN)}), IDOK);
}

TEST_F(TaskDialogOnScreen, ShowsEachIcon) {
  dialog.set_message("The icon stands to the left.");
  dialog.add_button("Close");
  const auto icon_of = [&](int value, const std::string& name) {
    std::optional<Picture> icon;
    dialog.set_icon(static_cast<kexTaskDialogIcon>(value));
    raise_and({take_picture("task_dialog_" + name), then([&](HWND shown) {
                 for (HWND child = nullptr; (child = FindWindowExA(shown, child, "STATIC", nullptr));)
                   if ((GetWindowLongA(child, GWL_STYLE) & SS_TYPEMASK) == SS_ICON) icon.emplace(child);
               }),
               press_button("Close")});
    EXPECT_TRUE(icon.has_value()) << name;
    return std::move(*icon);
  };
  const Picture error = icon_of(0, "error"), warning = icon_of(1, "warning"), information = icon_of(2, "information"),
                shield = icon_of(3, "shield"), seven = icon_of(7, "icon_7");
  EXPECT_TRUE(seven == warning);
  EXPECT_FALSE(error == warning);
  EXPECT_FALSE(information == warning);
  EXPECT_FALSE(shield == warning);
  EXPECT_FALSE(information == error);
}

TEST_F(TaskDialogOnScreen, StaysWhileActionsRun) {
  std::string ran;
  dialog.add_button("Act");
  dialog.add_button("Close");
  dialog.add_action(101, [&](const Context&) { ran += "a"; });
  dialog.add_action(101, [&](const Context&) { ran += "b"; });
  dialog.add_action(103, [&](const Context&) { ran += "never"; });
  const int pressed = raise_and({press_button("Act"), wait_for([&] { return ran == "ab"; }), press_button("Act"),
                                 wait_for([&] { return ran == "abab"; }), press_button("Close")});
  EXPECT_EQ(pressed, 102);
  EXPECT_EQ(ran, "abab");
}

// The system reports the press twice if the dialog stays. The header says so: no access keys on buttons with actions.
TEST_F(TaskDialogOnScreen, AnAccessKeyPressesTheButton) {
  int ran = 0;
  dialog.add_button("&Act");
  dialog.add_button("&Close");
  dialog.add_action(101, [&](const Context&) { ++ran; });
  EXPECT_EQ(raise_and({press_the_key('A', VK_MENU), wait_for([&] { return ran > 0; }), press_the_key('C', VK_MENU)}),
            102);
  EXPECT_GE(ran, 1);
}

TEST_F(TaskDialogOnScreen, NeitherEscapeNorTheCaptionClosesIt) {
  int ran = 0;
  dialog.add_button("Act");
  dialog.add_action(101, [&](const Context&) { ++ran; });
  dialog.add_button("Close");
  EXPECT_EQ(raise_and({press_the_key(VK_ESCAPE), then([](HWND shown) { SendMessageA(shown, WM_CLOSE, 0, 0); }),
                       then([](HWND shown) { SendMessageA(shown, WM_SYSCOMMAND, SC_CLOSE, 0); }), press_button("Act"),
                       wait_for([&] { return ran == 1; }), press_button("Close")}),
            102);
}

TEST_F(TaskDialogOnScreen, AnActionMayRaiseItAgainAndAnother) {
  std::vector<int> inner;
  kexTaskDialog other;
  other.set_title("Other");
  other.add_button("Done");
  dialog.add_button("Again");
  dialog.add_button("Close");
  dialog.add_action(
      101, [&](const Context& context) { inner.push_back(inner.empty() ? context.dialog->raise() : other.raise()); });
  const int pressed =
      raise_and({press_button("Again"), wait_for([] { return dialogs_of_this_thread() == 2; }), press_button("Close"),
                 wait_for([&] { return inner.size() == 1; }), press_button("Again"),
                 [](HWND shown) { return window_text(shown) == "Other"; }, press_button("Done"),
                 wait_for([&] { return inner.size() == 2; }), press_button("Close")});
  EXPECT_EQ(pressed, 102);
  EXPECT_EQ(inner, (std::vector<int>{102, 101}));
}

TEST_F(TaskDialogOnScreen, ALinkIsTheHandlers) {
  std::wstring target;
  dialog.set_message("<a href=\"https://example.com/more\">More</a>");
  dialog.set_hyperlink_action([&](const LinkContext& context) { target = context.url; });
  dialog.add_button("Close");
  raise_and({click_the_link(), wait_for([&] { return !target.empty(); }), take_picture("task_dialog_link"),
             press_button("Close")});
  EXPECT_EQ(target, L"https://example.com/more");
}

TEST_F(TaskDialogOnScreen, ALinkWithoutAHandlerIsOpened) {
  const ImportOverride shell("kexlib.dll", "SHELL32.dll", "ShellExecuteW", &record_opening);
  ASSERT_TRUE(shell.made());
  opened.clear();
  dialog.set_message("<a href=\"https://example.com/more\">More</a>");
  dialog.add_button("Close");
  raise_and({click_the_link(), wait_for([] { return !opened.empty(); }), press_button("Close")});
  EXPECT_EQ(opened, std::vector<std::wstring>{L"https://example.com/more"});
}

TEST_F(TaskDialogOnScreen, DisablesItsParentMeanwhile) {
  const HWND parent =
      CreateWindowA("STATIC", "parent", WS_POPUP | WS_VISIBLE, 0, 0, 99, 99, nullptr, nullptr, nullptr, nullptr);
  dialog.set_parent(parent);
  dialog.add_button("Close");
  raise_and({then([parent](HWND shown) {
               EXPECT_EQ(GetWindow(shown, GW_OWNER), parent);
               EXPECT_FALSE(IsWindowEnabled(parent));
             }),
             press_button("Close")});
  EXPECT_TRUE(IsWindowEnabled(parent));
  DestroyWindow(parent);
}

// Whether the system passes the exception on is unspecified; this system does.
TEST_F(TaskDialogOnScreen, IsGoneWhenAnActionThrows) {
  const HWND parent =
      CreateWindowA("STATIC", "parent", WS_POPUP | WS_VISIBLE, 0, 0, 99, 99, nullptr, nullptr, nullptr, nullptr);
  dialog.set_parent(parent);
  dialog.add_button("Throw");
  dialog.add_button("Empty");
  dialog.add_button("Close");
  dialog.add_action(101, [](const Context&) { throw std::runtime_error("action"); });
  dialog.add_action(102, nullptr);
  EXPECT_THROW(raise_and({press_button("Throw")}), std::runtime_error);
  EXPECT_EQ(dialog_in_front(), nullptr);
  EXPECT_TRUE(IsWindowEnabled(parent));
  EXPECT_THROW(raise_and({press_button("Empty")}), std::bad_function_call);
  EXPECT_EQ(dialog_in_front(), nullptr);
  EXPECT_EQ(raise_and({press_button("Close")}), 103);
  DestroyWindow(parent);
}

TEST_F(TaskDialogOnScreen, RoundsLeaveNothingBehind) {
  expect_flat(40, [] {
    kexTaskDialog shown;
    shown.add_button("Act");
    shown.add_button("Close");
    shown.add_action(101, [](const Context&) {});
    shown.set_hyperlink_action([](const LinkContext&) {});
    DialogDriver person({then([](HWND window) { SendMessageA(button_named(window, "Act"), BM_CLICK, 0, 0); }),
                         then([](HWND window) { SendMessageA(button_named(window, "Close"), BM_CLICK, 0, 0); })});
    EXPECT_EQ(shown.raise(), 102);
  });
}

}  // namespace
