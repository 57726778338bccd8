// The examples of the guide's page.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/testing.h>

#include <dialogs/resources.h>
#include <dialogs/wizard_dialog_fixture.h>

#include <functional>
#include <string>
#include <vector>

bool may_replace(HWND owner, const std::function<void()>& show_both);
CStringA ask_for_part(HWND owner);

namespace {

using kexlib::testing::ShownTaskDialog;
using kexlib::testing::TaskDialogDriver;

TEST(DialogsExamples, AskBeforeAFileIsReplaced) {
  int compared = 0;
  TaskDialogDriver user;
  user.look([](const ShownTaskDialog& shown) {
    EXPECT_EQ(shown.title(), L"Export");
    EXPECT_EQ(shown.texts(), (std::vector<std::wstring>{L"The file already exists.", L"See what replacing means."}));
  });
  user.press(L"Compare");
  user.wait_for("the comparison", [&] { return compared == 1; });
  user.press(L"Replace");
  EXPECT_TRUE(may_replace(nullptr, [&] { ++compared; }));
  EXPECT_EQ(user.problem(), "");
}

TEST(DialogsExamples, LeaveAFile) {
  TaskDialogDriver user;
  user.press(L"Leave it");
  EXPECT_FALSE(may_replace(nullptr, [] {}));
  EXPECT_EQ(user.problem(), "");
}

HWND on_page(HWND sheet, int id) {
  return GetDlgItem(reinterpret_cast<HWND>(SendMessageA(sheet, PSM_GETCURRENTPAGEHWND, 0, 0)), id);
}
Step type_name(const char* name) {
  return [name](HWND sheet) { return SetWindowTextA(on_page(sheet, IDC_NAME), name) != 0; };
}

TEST(DialogsExamples, AskForAPart) {
  DialogDriver user({type_name("bolt"), press(PSBTN_NEXT), wait_for_page(1), then([](HWND sheet) {
                       RECT place = place_of(sheet, ID_WIZFINISH), inside;
                       GetClientRect(sheet, &inside);
                       EXPECT_LT(place.right, inside.right) << "the user can reach Finish";
                       SendMessageA(on_page(sheet, IDC_IN_LIBRARY), BM_SETCHECK, BST_CHECKED, 0);
                     }),
                     press(PSBTN_FINISH)});
  EXPECT_EQ(ask_for_part(nullptr), "bolt in the library");
}

TEST(DialogsExamples, StayOnTheFirstPageWithoutAName) {
  DialogDriver user({wait_for_page(0), then([](HWND sheet) {
                       for (const int button : {PSBTN_FINISH, PSBTN_NEXT}) {
                         SendMessageA(sheet, PSM_PRESSBUTTON, static_cast<WPARAM>(button), 0);
                         EXPECT_EQ(page_of(sheet), 0);
                       }
                     }),
                     press(PSBTN_CANCEL)});
  EXPECT_EQ(ask_for_part(nullptr), "");
}

TEST(DialogsExamples, RefuseToFinishOnTheFirstPage) {
  DialogDriver user({type_name("bolt"), then([](HWND sheet) { SendMessageA(sheet, PSM_PRESSBUTTON, PSBTN_FINISH, 0); }),
                     wait_for_page(0), press(PSBTN_NEXT), wait_for_page(1), press(PSBTN_FINISH)});
  EXPECT_EQ(ask_for_part(nullptr), "bolt in the project");
}

}  // namespace
