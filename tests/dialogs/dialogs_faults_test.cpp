// Calls that fail while dialogs are made, for each function of the family that can fail.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/dialogs/task_dialog.h>
#include <kexlib/dialogs/wizard_dialog.h>

#include <commctrl.h>

#include <dialogs/resources.h>
#include <dialogs/wizard_dialog_fixture.h>
#include <support/fault_sweep.h>

#include <memory>
#include <string>

namespace {

const Call calls[] = {
    memory_call(),
    Call("OLEAUT32.dll", "SysAllocStringLen", &SysAllocStringLen, nullptr),
    Call("KERNEL32.dll", "MultiByteToWideChar", &MultiByteToWideChar, 0),
    Call("KERNEL32.dll", "LoadLibraryExW", &LoadLibraryExW, nullptr),
    Call("KERNEL32.dll", "ActivateActCtx", &ActivateActCtx, FALSE),
    Call("COMCTL32.dll", "CreatePropertySheetPageA", &CreatePropertySheetPageA, nullptr),
    Call("USER32.dll", "LoadStringW", &LoadStringW, 0),
};

constexpr char long_text[] = "a text that is too long to be stored in place";

HRESULT WINAPI press_first(const TASKDIALOGCONFIG* config, int* pressed, int*, BOOL*) {
  *pressed = config->cButtons ? config->pButtons[0].nButtonID : IDOK;
  return S_OK;
}

FARPROC WINAPI find_stand_in(HMODULE module, const char* name) {
  if (HIWORD(name) == 0 || std::string_view(name) != "TaskDialogIndirect") return GetProcAddress(module, name);
  return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&press_first));
}

// Nothing, or for lack of memory what the header names.
void expect_thrown(const Attempt& attempt, const std::string& thrown) {
  EXPECT_EQ(thrown.empty(), !attempt.failed());
  if (!thrown.empty()) {
    EXPECT_TRUE(thrown == "CMemoryException" || thrown == "std::bad_alloc") << thrown;
  }
}

template <typename Change>
void change(Attempt& attempt, Change change_dialog) {
  const ImportOverride stand_in("kexlib.dll", "KERNEL32.dll", "GetProcAddress", &find_stand_in);
  kexTaskDialog dialog;
  expect_thrown(attempt, attempt([&] { change_dialog(dialog); }));
  change_dialog(dialog);
  EXPECT_NE(dialog.raise(), 0);
}

const Operation operations[] = {
    {"kexTaskDialog", [](Attempt& attempt) { expect_thrown(attempt, attempt([] { const kexTaskDialog dialog; })); }},
    {"set_title",
     [](Attempt& attempt) { change(attempt, [](kexTaskDialog& dialog) { dialog.set_title(long_text); }); }},
    {"set_main_instruction",
     [](Attempt& attempt) { change(attempt, [](kexTaskDialog& dialog) { dialog.set_main_instruction(long_text); }); }},
    {"set_message",
     [](Attempt& attempt) { change(attempt, [](kexTaskDialog& dialog) { dialog.set_message(long_text); }); }},
    {"add_button",
     [](Attempt& attempt) { change(attempt, [](kexTaskDialog& dialog) { dialog.add_button(long_text); }); }},
    {"add_action",
     [](Attempt& attempt) {
       change(attempt, [](kexTaskDialog& dialog) { dialog.add_action(101, [](const auto&) {}); });
     }},
    {"set_hyperlink_action",
     [](Attempt& attempt) {
       change(attempt, [](kexTaskDialog& dialog) { dialog.set_hyperlink_action([](const auto&) {}); });
     }},
    {"raise",
     [](Attempt& attempt) {
       const ImportOverride stand_in("kexlib.dll", "KERNEL32.dll", "GetProcAddress", &find_stand_in);
       kexTaskDialog dialog;
       dialog.add_button("one");
       int pressed = -1;
       const std::string thrown = attempt([&] { pressed = dialog.raise(); });
       EXPECT_EQ(thrown, attempt.failed("malloc") ? "std::bad_alloc" : "");
       if (thrown.empty()) {
         EXPECT_EQ(pressed, attempt.failed("LoadLibraryExW") ? 0 : 101);
       }
       EXPECT_EQ(dialog.raise(), 101);
     }},
    {"kexWizardDialog",
     [](Attempt& attempt) {
       const std::string thrown = attempt([] { const kexWizardDialog wizard(UINT{IDS_TITLE}, 0, nullptr); });
       EXPECT_EQ(thrown.empty(), !attempt.failed("malloc"));
     }},
    {"add_page",
     [](Attempt& attempt) {
       Page<IDD_NAME_PAGE> page;
       kexWizardDialog wizard;
       const std::string thrown = attempt([&] { wizard.add_page(page); });
       EXPECT_TRUE(thrown.empty() || attempt.failed("malloc")) << thrown;
       if (thrown.empty()) {  // a page that is refused counts as well; WTL has no other word for lack of memory
         EXPECT_EQ(wizard.get_pages_count(), 1);
         EXPECT_EQ(wizard.m_arrPages.GetSize(), !attempt.failed());
       }
       const int shown = wizard.m_arrPages.GetSize();
       wizard.add_page(page);
       EXPECT_EQ(wizard.m_arrPages.GetSize(), shown + 1);
     }},
    {"kexWizardDialog, a copy",
     [](Attempt& attempt) {
       Page<IDD_NAME_PAGE> page;
       kexWizardDialog wizard("title", 0, nullptr);
       wizard.add_page(page);
       int pages = -1;
       const std::string thrown = attempt([&] { pages = kexWizardDialog(wizard).m_arrPages.GetSize(); });
       EXPECT_TRUE(thrown.empty() || attempt.failed("malloc")) << thrown;
       if (thrown.empty()) {
         EXPECT_EQ(pages, !attempt.failed());
       }
       EXPECT_EQ(wizard.m_arrPages.GetSize(), 1);
     }},
};

TEST(DialogsFaults, NoCallThatFailsDoesHarm) { sweep_faults(calls, operations); }

TEST(DialogsFaults, RoundsWithoutOneLeaveNothingBehind) { repeat_rounds(operations); }

}  // namespace
