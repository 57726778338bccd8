// kexTaskDialog: what reaches the system, caught on its way, and real dialogs on the screen.
#include <kexlib/dialogs/task_dialog.h>

#include <gtest/gtest.h>

#include <afxwin.h>
#include <atlbase.h>
#include <dialogs/dialog_driver.h>
#include <support/debugger_output.h>
#include <support/expect_flat.h>
#include <support/import_override.h>
#include <support/message_pump.h>
#include <support/picture.h>
#include <support/user_input.h>

#include <commctrl.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Context = kexTaskDialogActionContext;
using LinkContext = kexTaskDialogHyperlinkActionContext;

// Gives the library another TaskDialogIndirect, or none.
FARPROC replacement;
int asked = 0;
FARPROC WINAPI find_replacement(HMODULE module, LPCSTR name) {
  if (HIWORD(name) == 0 || std::string(name) != "TaskDialogIndirect") return GetProcAddress(module, name);
  ++asked;
  return replacement;
}

// The system's part, played by `play`, with the configuration as it arrived.
class TaskDialog : public testing::Test {
 protected:
  TaskDialog() {
    current = this;
    replacement = reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&stand_in));
    EXPECT_TRUE(override_.made());
  }

  static HRESULT WINAPI stand_in(const TASKDIALOGCONFIG* config, int* pressed, int* radio, BOOL* verified) {
    current->config = *config;
    current->buttons.clear();
    for (UINT i = 0; i < config->cButtons; ++i)
      current->buttons.emplace_back(config->pButtons[i].nButtonID, config->pButtons[i].pszButtonText);
    current->title = config->pszWindowTitle;
    current->message = config->pszContent;
    if (config->pszMainInstruction) current->main_instruction = config->pszMainInstruction;
    EXPECT_EQ(*pressed, 0);
    EXPECT_EQ(radio, nullptr);
    EXPECT_EQ(*verified, FALSE);
    *pressed = current->pressed;
    if (current->play) current->play();
    return current->result;
  }

  HRESULT notify(UINT notification, WPARAM wparam, LPARAM lparam = 0) {
    return config.pfCallback(nullptr, notification, wparam, lparam, config.lpCallbackData);
  }
  HRESULT press(int id) { return notify(TDN_BUTTON_CLICKED, static_cast<WPARAM>(id)); }
  HRESULT click_link(const wchar_t* target) {
    return notify(TDN_HYPERLINK_CLICKED, 0, reinterpret_cast<LPARAM>(target));
  }
  // Raises the dialog, and does this meanwhile.
  void raise_and(std::function<void()> what) {
    play = std::move(what);
    dialog.raise();
    play = nullptr;
  }

  static inline TaskDialog* current;
  TASKDIALOGCONFIG config;  // what it points to is gone, but for what the dialog holds
  std::vector<std::pair<int, std::wstring>> buttons;
  std::wstring title, message, main_instruction;
  std::function<void()> play;
  int pressed = 0;
  HRESULT result = S_OK;
  kexTaskDialog dialog;

 private:
  ImportOverride override_{"kexlib.dll", "KERNEL32.dll", "GetProcAddress", &find_replacement};
};

TEST_F(TaskDialog, HoldsNothingButItsState) { EXPECT_EQ(sizeof(kexTaskDialog), sizeof(void*)); }

TEST_F(TaskDialog, BeginsEmptyWithTheWarning) {
  raise_and([&] {
    EXPECT_EQ(config.cbSize, 160u);
    EXPECT_EQ(config.hwndParent, nullptr);
    EXPECT_EQ(config.hInstance, nullptr);
    EXPECT_EQ(config.dwFlags, 0x01000001);
    EXPECT_EQ(config.dwCommonButtons, 0);
    ASSERT_NE(config.pszWindowTitle, nullptr);
    EXPECT_STREQ(config.pszWindowTitle, L"");
    EXPECT_EQ(config.pszMainIcon, MAKEINTRESOURCEW(0xFFFF));
    EXPECT_EQ(config.pszMainInstruction, nullptr);
    ASSERT_NE(config.pszContent, nullptr);
    EXPECT_STREQ(config.pszContent, L"");
    EXPECT_EQ(config.cButtons, 0u);
    EXPECT_EQ(config.pButtons, nullptr);
    EXPECT_EQ(config.nDefaultButton, 0);
    EXPECT_EQ(config.cRadioButtons, 0u);
    EXPECT_EQ(config.pRadioButtons, nullptr);
    EXPECT_EQ(config.nDefaultRadioButton, 0);
    EXPECT_EQ(config.pszVerificationText, nullptr);
    EXPECT_EQ(config.pszExpandedInformation, nullptr);
    EXPECT_EQ(config.pszExpandedControlText, nullptr);
    EXPECT_EQ(config.pszCollapsedControlText, nullptr);
    EXPECT_EQ(config.pszFooterIcon, nullptr);
    EXPECT_EQ(config.pszFooter, nullptr);
    EXPECT_NE(config.pfCallback, nullptr);
    EXPECT_NE(config.lpCallbackData, 0);
    EXPECT_EQ(config.cxWidth, 0u);
  });
}

TEST_F(TaskDialog, HandsOverWhatItWasGiven) {
  dialog.set_title("title");
  dialog.set_main_instruction("instruction");
  dialog.set_message("message");
  dialog.set_icon(kexTDIcon_Error);
  dialog.set_parent(GetDesktopWindow());
  EXPECT_EQ(dialog.add_button("one"), 101);
  EXPECT_EQ(dialog.add_button(""), 102);
  EXPECT_EQ(dialog.add_button("three"), 103);
  dialog.set_default_button(102);
  for (int round = 0; round < 2; ++round) {  // each time anew
    pressed = 100 + round;
    EXPECT_EQ(dialog.raise(), 100 + round);
    EXPECT_EQ(title, L"title");
    EXPECT_EQ(main_instruction, L"instruction");
    EXPECT_EQ(message, L"message");
    EXPECT_EQ(config.pszMainIcon, TD_ERROR_ICON);
    EXPECT_EQ(config.hwndParent, GetDesktopWindow());
    EXPECT_EQ(buttons, (decltype(buttons){{101, L"one"}, {102, L""}, {103, L"three"}}));
    EXPECT_EQ(config.nDefaultButton, 102);
    buttons.clear();
  }
}

TEST_F(TaskDialog, HasAnIconForEachValueAndTheWarningForAllOthers) {
  const std::pair<int, WORD> icons[] = {{0, 0xFFFE}, {1, 0xFFFF}, {2, 0xFFFD}, {3, 0xFFFC},
                                        {4, 0xFFFF}, {7, 0xFFFF}, {-1, 0xFFFF}};
  for (const auto& [value, ordinal] : icons) {
    dialog.set_icon(static_cast<kexTaskDialogIcon>(value));
    dialog.raise();
    EXPECT_EQ(config.pszMainIcon, MAKEINTRESOURCEW(ordinal)) << value;
  }
}

TEST_F(TaskDialog, PassesAnyDefaultButtonOn) {
  for (const int id : {7, -1, 0}) {
    dialog.set_default_button(id);
    dialog.raise();
    EXPECT_EQ(config.nDefaultButton, id);
  }
}

TEST_F(TaskDialog, BelongsToTheMainWindowWhereItHasNoParent) {
  CWinApp app;
  dialog.raise();
  EXPECT_EQ(config.hwndParent, nullptr);

  CWnd window;
  app.m_pMainWnd = &window;
  dialog.raise();
  EXPECT_EQ(config.hwndParent, nullptr);

  window.Attach(CreateWindowA("STATIC", "main", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr));
  dialog.raise();
  EXPECT_EQ(config.hwndParent, window.m_hWnd);
  dialog.set_parent(GetDesktopWindow());
  dialog.raise();
  EXPECT_EQ(config.hwndParent, GetDesktopWindow());
  dialog.set_parent(nullptr);
  dialog.raise();
  EXPECT_EQ(config.hwndParent, window.m_hWnd);
}

TEST_F(TaskDialog, TakesTextsOfAnyLength) {
  for (const size_t length : {0u, 1u, 127u, 128u, 129u, 5000u}) {
    const std::string text(length, 'x');
    const std::wstring wide(length, L'x');
    dialog.set_title(text.c_str());
    dialog.set_main_instruction(text.c_str());
    dialog.set_message(text.c_str());
    dialog.add_button(text.c_str());
    main_instruction.clear();
    dialog.raise();
    EXPECT_EQ(title, wide);
    EXPECT_EQ(main_instruction, wide);
    EXPECT_EQ(config.pszMainInstruction == nullptr, length == 0);
    EXPECT_EQ(message, wide);
    EXPECT_EQ(buttons.back().second, wide);
  }
}

TEST_F(TaskDialog, TakesNullForTheEmptyText) {
  dialog.set_title("title");
  dialog.set_main_instruction("instruction");
  dialog.set_message("message");
  dialog.set_title(nullptr);
  dialog.set_main_instruction(nullptr);
  dialog.set_message(nullptr);
  EXPECT_EQ(dialog.add_button(nullptr), 101);
  dialog.raise();
  EXPECT_EQ(title, L"");
  EXPECT_EQ(config.pszMainInstruction, nullptr);
  EXPECT_EQ(message, L"");
  EXPECT_EQ(buttons, (decltype(buttons){{101, L""}}));
}

TEST_F(TaskDialog, ReadsTextsInTheCodePageOfTheThread) {
  const LCID before = GetThreadLocale();
  SetThreadLocale(0x0419);
  dialog.set_title("\xe4");
  dialog.set_main_instruction("\xe4");
  dialog.set_message("\xe4");
  dialog.add_button("\xe4");
  SetThreadLocale(0x0411);
  dialog.add_button("\x83\x5c");  // its second byte is a backslash elsewhere
  SetThreadLocale(before);
  dialog.raise();
  EXPECT_EQ(title, L"\u0434");
  EXPECT_EQ(main_instruction, L"\u0434");
  EXPECT_EQ(message, L"\u0434");
  EXPECT_EQ(buttons, (decltype(buttons){{101, L"\u0434"}, {102, L"\u30bd"}}));
}

TEST_F(TaskDialog, Returns0WhereItCannotBeShown) {
  result = E_OUTOFMEMORY;
  EXPECT_EQ(dialog.raise(), 0);
  replacement = nullptr;
  asked = 0;
  EXPECT_EQ(dialog.raise(), 0);
  EXPECT_EQ(asked, 1);
}

TEST_F(TaskDialog, DoesNotLookAtWhatTheSystemReturns) {
  result = E_FAIL;
  pressed = 4711;  // nor whether there is such a button
  EXPECT_EQ(dialog.raise(), 4711);
}

TEST_F(TaskDialog, AButtonWithActionsRunsThemInOrderAndStays) {
  std::vector<int> ran;
  const int acting = dialog.add_button("acts"), closing = dialog.add_button("closes");
  for (int i = 1; i <= 3; ++i)
    dialog.add_action(acting, [&, i](const Context& context) {
      ran.push_back(i);
      EXPECT_EQ(context.dialog, &dialog);
      EXPECT_EQ(context.button_id, acting);
    });
  raise_and([&] {
    EXPECT_EQ(press(acting), S_FALSE);
    EXPECT_EQ(press(closing), S_OK);
    EXPECT_EQ(press(acting), S_FALSE);
  });
  EXPECT_EQ(ran, (std::vector<int>{1, 2, 3, 1, 2, 3}));
}

TEST_F(TaskDialog, ActionsMayBeOfAButtonThatComesLaterOrNever) {
  int ran = 0;
  dialog.add_action(102, [&](const Context& context) { ran = context.button_id; });
  dialog.add_action(IDOK, [&](const Context& context) { ran = context.button_id; });
  dialog.add_button("one");
  raise_and([&] { EXPECT_EQ(press(101), S_OK); });
  EXPECT_EQ(ran, 0);
  dialog.add_button("two");
  raise_and([&] { EXPECT_EQ(press(102), S_FALSE); });
  EXPECT_EQ(ran, 102);
  raise_and([&] { EXPECT_EQ(press(IDOK), S_FALSE); });
  EXPECT_EQ(ran, IDOK);
}

TEST_F(TaskDialog, AnActionMayAddToTheDialogThatItIsOf) {
  int ran = 0;
  const int id = dialog.add_button("adds");
  dialog.add_action(id, [&, text = std::string(100, 'x')](const Context& context) {
    for (int i = 0; i < 100; ++i) {
      context.dialog->add_action(context.button_id, [&](const Context&) { ++ran; });
      context.dialog->add_button("more");
    }
    EXPECT_EQ(text, std::string(100, 'x'));
  });
  raise_and([&] {
    const wchar_t* const shown = config.pButtons[0].pszButtonText;
    EXPECT_EQ(press(id), S_FALSE);
    EXPECT_EQ(ran, 0) << "what is added meanwhile waits for the next time";
    EXPECT_EQ(press(id), S_FALSE);
    EXPECT_EQ(ran, 100);
    EXPECT_STREQ(shown, L"adds");
  });
}

TEST_F(TaskDialog, AnEmptyActionThrowsAndThoseBehindItDoNotRun) {
  int ran = 0;
  dialog.add_button("acts");
  dialog.add_action(101, [&](const Context&) { ++ran; });
  dialog.add_action(101, nullptr);
  dialog.add_action(101, [&](const Context&) { ran += 100; });
  raise_and([&] { EXPECT_THROW(press(101), std::bad_function_call); });
  EXPECT_EQ(ran, 1);
}

TEST_F(TaskDialog, WhatAnActionThrowsLeavesTheHandler) {
  dialog.add_action(101, [](const Context&) { throw std::runtime_error("action"); });
  dialog.set_hyperlink_action([](const LinkContext&) { throw std::range_error("link"); });
  raise_and([&] {
    EXPECT_THROW(press(101), std::runtime_error);
    EXPECT_THROW(click_link(L"x"), std::range_error);
  });
  play = [&] { press(101); };
  EXPECT_THROW(dialog.raise(), std::runtime_error);
}

TEST_F(TaskDialog, AnswersEverythingElseWithOk) {
  int ran = 0;
  dialog.add_action(101, [&](const Context&) { ++ran; });
  dialog.set_hyperlink_action([&](const LinkContext&) { ++ran; });
  raise_and([&] {
    for (UINT notification = 0; notification < 20; ++notification) {
      if (notification == TDN_BUTTON_CLICKED || notification == TDN_HYPERLINK_CLICKED) continue;
      EXPECT_EQ(notify(notification, 101, 0), S_OK) << notification;
    }
  });
  EXPECT_EQ(ran, 0);
}

TEST_F(TaskDialog, SaysThatNothingClosesIt) {
  DebuggerOutput output;
  dialog.raise();  // the system's button does
  dialog.add_button("acts");
  dialog.add_action(101, [](const Context&) {});
  dialog.add_button("closes");
  dialog.raise();
  EXPECT_EQ(output.texts(), std::vector<std::string>{});
  dialog.add_action(102, [](const Context&) {});
  dialog.raise();
  EXPECT_EQ(output.texts(),
            std::vector<std::string>{"kexTaskDialog: no button closes this dialog, all have actions\n"});
}

// ---- links ----------------------------------------------------------------------------------------------------------

std::vector<std::wstring> opened;
HWND opened_for;
HINSTANCE WINAPI record_opening(HWND owner, LPCWSTR verb, LPCWSTR file, LPCWSTR parameters, LPCWSTR folder, int show) {
  EXPECT_STREQ(verb, L"open");
  EXPECT_EQ(parameters, nullptr);
  EXPECT_EQ(folder, nullptr);
  EXPECT_EQ(show, SW_SHOWNORMAL);
  opened.emplace_back(file);
  opened_for = owner;
  return nullptr;  // it failed, and nobody is told
}

class TaskDialogLinks : public TaskDialog {
 protected:
  TaskDialogLinks() {
    EXPECT_TRUE(shell_.made());
    opened.clear();
  }
  ImportOverride shell_{"kexlib.dll", "SHELL32.dll", "ShellExecuteW", &record_opening};
};

TEST_F(TaskDialogLinks, OpenInTheShell) {
  raise_and([&] { EXPECT_EQ(click_link(L"https://example.com/"), S_OK); });
  EXPECT_EQ(opened, std::vector<std::wstring>{L"https://example.com/"});
  EXPECT_EQ(opened_for, nullptr);
}

TEST_F(TaskDialogLinks, OpenOnBehalfOfTheMainWindow) {
  CWinApp app;
  CWnd window;
  window.Attach(CreateWindowA("STATIC", "main", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr));
  app.m_pMainWnd = &window;
  dialog.set_parent(GetDesktopWindow());
  dialog.open_url_or_file(L"C:\\a file.txt");
  EXPECT_EQ(opened, std::vector<std::wstring>{L"C:\\a file.txt"});
  EXPECT_EQ(opened_for, window.m_hWnd);
}

TEST_F(TaskDialogLinks, AreTheHandlersWhereThereIsOne) {
  std::vector<std::wstring> targets;
  dialog.set_hyperlink_action([](const LinkContext&) { FAIL() << "it was replaced"; });
  dialog.set_hyperlink_action([&](const LinkContext& context) {
    EXPECT_EQ(context.dialog, &dialog);
    targets.emplace_back(context.url);
  });
  raise_and([&] { EXPECT_EQ(click_link(L"target"), S_OK); });
  EXPECT_EQ(targets, std::vector<std::wstring>{L"target"});
  EXPECT_TRUE(opened.empty());

  dialog.set_hyperlink_action(nullptr);
  raise_and([&] { EXPECT_EQ(click_link(L"again"), S_OK); });
  EXPECT_EQ(opened, std::vector<std::wstring>{L"again"});
}

TEST_F(TaskDialogLinks, AHandlerIsKeptOnceAndReleasedWhenItIsReplaced) {
  const auto held = std::make_shared<int>();
  dialog.set_hyperlink_action([held, clicks = 0](const LinkContext& context) mutable {
    if (++clicks < 3) return;
    context.dialog->set_hyperlink_action(nullptr);
    EXPECT_EQ(clicks, 3) << "the handler is there to its end";
  });
  EXPECT_EQ(held.use_count(), 2);
  raise_and([&] {
    for (int i = 0; i < 3; ++i) EXPECT_EQ(click_link(L"handled"), S_OK);
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(click_link(L"opened"), S_OK);
  });
  EXPECT_EQ(opened, std::vector<std::wstring>{L"opened"});
}

// ---- real dialogs ---------------------------------------------------------------------------------------------------

HWND button_named(HWND dialog, const std::string& text) {
  HWND found = nullptr;
  while ((found = FindWindowExA(dialog, found, "BUTTON", nullptr)))
    if (text_of(found) == text) return found;
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
// In the text that is all one link.
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

  // Meanwhile a person takes these steps.
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
                   EXPECT_EQ(text_of(shown), "Task dialog");
                   std::vector<std::pair<LONG, std::string>> buttons;
                   for (HWND button = nullptr; (button = FindWindowExA(shown, button, "BUTTON", nullptr));) {
                     RECT place;
                     GetWindowRect(button, &place);
                     buttons.emplace_back(place.left, text_of(button));
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
  EXPECT_EQ(raise_and({press_the_key(VK_RETURN)}), 101) << "the first one stands for one that is not there";
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

// The system tells of the press twice where the dialog stays. Documented: action buttons have no access keys.
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
      raise_and({press_button("Again"), press_button("Close"), wait_for([&] { return inner.size() == 1; }),
                 press_button("Again"), [](HWND shown) { return text_of(shown) == "Other"; }, press_button("Done"),
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

// What the system makes of it is its own affair; here it lets the exception pass.
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
