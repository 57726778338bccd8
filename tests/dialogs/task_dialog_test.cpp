// kexTaskDialog: the calls to the system, intercepted.
#include <gtest/gtest.h>

#include <kexlib/dialogs/task_dialog.h>

#include <afxwin.h>
#include <commctrl.h>

#include <dialogs/task_dialog_fixture.h>
#include <support/debugger_output.h>
#include <support/import_override.h>
#include <support/user_input.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

// Replaces TaskDialogIndirect for the library. Null: the system does not export it.
FARPROC replacement;
int asked = 0;
FARPROC WINAPI find_replacement(HMODULE module, LPCSTR name) {
  if (HIWORD(name) == 0 || std::string(name) != "TaskDialogIndirect") return GetProcAddress(module, name);
  ++asked;
  return replacement;
}

// Replaces the system's function with `play` and stores the configuration that it receives.
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
  // Raises the dialog and runs this function meanwhile.
  void raise_and(std::function<void()> what) {
    play = std::move(what);
    dialog.raise();
    play = nullptr;
  }

  static inline TaskDialog* current;
  TASKDIALOGCONFIG config;  // its pointers are invalid, except those to memory of the dialog
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
  for (int round = 0; round < 2; ++round) {  // each raise builds the structures again
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
  dialog.add_button("\x83\x5c");  // the second byte is a backslash in other code pages
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
  pressed = 4711;  // no such button exists
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
  dialog.raise();  // the system's button closes it
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

}  // namespace
