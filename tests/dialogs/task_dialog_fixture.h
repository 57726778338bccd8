// Records the targets that the library passes to the shell: for an ImportOverride of ShellExecuteW.
#ifndef TESTS_DIALOGS_TASK_DIALOG_FIXTURE_H
#define TESTS_DIALOGS_TASK_DIALOG_FIXTURE_H

#include <gtest/gtest.h>

#include <kexlib/dialogs/task_dialog.h>

#include <string>
#include <vector>

using Context = kexTaskDialogActionContext;
using LinkContext = kexTaskDialogHyperlinkActionContext;

inline std::vector<std::wstring> opened;
inline HWND opened_for;
inline HINSTANCE WINAPI record_opening(HWND owner, LPCWSTR verb, LPCWSTR file, LPCWSTR parameters, LPCWSTR folder,
                                       int show) {
  EXPECT_STREQ(verb, L"open");
  EXPECT_EQ(parameters, nullptr);
  EXPECT_EQ(folder, nullptr);
  EXPECT_EQ(show, SW_SHOWNORMAL);
  opened.emplace_back(file);
  opened_for = owner;
  return nullptr;  // a failure, which the library does not report
}

#endif
