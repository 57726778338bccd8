// CDialogImpl.
#include <gtest/gtest.h>

#include <framework/recorder.h>
#include <framework/resources.h>
#include <support/expect_flat.h>
#include <support/window_text.h>

namespace {

class Plain : public CDialogImpl<Plain> {
 public:
  enum { IDD = IDD_PLAIN };

  BEGIN_MSG_MAP(Plain)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    MESSAGE_HANDLER(WM_CTLCOLOREDIT, OnColor)
    MESSAGE_HANDLER(WM_VKEYTOITEM, OnKey)
    MESSAGE_HANDLER(WM_USER, OnUser)
    COMMAND_HANDLER(IDC_PUSH, BN_CLICKED, OnPush)
    COMMAND_ID_HANDLER(IDCANCEL, OnPush)
  END_MSG_MAP()

  LRESULT OnInitDialog(UINT, WPARAM first_control, LPARAM parameter, BOOL&) {
    init_parameter = parameter;
    EXPECT_EQ(reinterpret_cast<HWND>(first_control), GetDlgItem(IDC_PUSH).m_hWnd);
    ::SetFocus(GetDlgItem(IDC_EDIT));
    if (end_at_once) EndDialog(55);
    return FALSE;  // the focus is set already
  }
  LRESULT OnColor(UINT, WPARAM, LPARAM, BOOL&) { return reinterpret_cast<LRESULT>(GetStockObject(BLACK_BRUSH)); }
  LRESULT OnKey(UINT, WPARAM, LPARAM, BOOL&) { return -2; }
  LRESULT OnUser(UINT, WPARAM, LPARAM, BOOL&) { return 1234567890123; }
  LRESULT OnPush(WORD, WORD id, HWND, BOOL&) {
    EndDialog(id);
    return 0;
  }
  void OnFinalMessage(HWND) override { ++final_messages; }

  LPARAM init_parameter = 0;
  bool end_at_once = false;
  int final_messages = 0;
};

TEST(Dialog, RunsModallyUntilItIsEnded) {
  Plain dialog;
  dialog.end_at_once = true;
  EXPECT_EQ(dialog.DoModal(nullptr, 77), 55);
  EXPECT_EQ(dialog.init_parameter, 77);
  EXPECT_EQ(dialog.final_messages, 1);
  EXPECT_FALSE(dialog.m_hWnd);
  EXPECT_EQ(dialog.DoModal(nullptr), 55);
}

TEST(Dialog, AnswersMessagesAsDialogsMust) {
  Plain dialog;
  ASSERT_TRUE(dialog.Create(nullptr, 5));
  EXPECT_EQ(dialog.init_parameter, 5);
  // For these messages the result is that of the procedure; for others it is the dialog's message result.
  EXPECT_EQ(dialog.SendMessage(WM_CTLCOLOREDIT), reinterpret_cast<LRESULT>(GetStockObject(BLACK_BRUSH)));
  EXPECT_EQ(dialog.SendMessage(WM_VKEYTOITEM), -2);
  EXPECT_EQ(dialog.SendMessage(WM_USER), 1234567890123);
  EXPECT_EQ(dialog.SendMessage(WM_INITDIALOG, reinterpret_cast<WPARAM>(dialog.GetDlgItem(IDC_PUSH).m_hWnd)), FALSE);
  // Unhandled messages go to the dialog manager.
  EXPECT_TRUE(dialog.SetWindowText("new"));
  EXPECT_EQ(window_text(dialog), "new");
  EXPECT_TRUE(dialog.DestroyWindow());
  EXPECT_EQ(dialog.final_messages, 1);
}

TEST(Dialog, EndsAtAClickOnItsButton) {
  Plain dialog;
  struct Clicker : CWindowImpl<Clicker> {
    BEGIN_MSG_MAP(Clicker)
      MESSAGE_HANDLER(WM_TIMER, OnTimer)
    END_MSG_MAP()
    LRESULT OnTimer(UINT, WPARAM, LPARAM, BOOL&) {
      if (dialog->m_hWnd) dialog->GetDlgItem(IDC_PUSH).PostMessage(BM_CLICK);
      return 0;
    }
    Plain* dialog;
  } clicker;
  clicker.dialog = &dialog;
  clicker.Create(HWND_MESSAGE, nullptr, nullptr, WS_POPUP);
  clicker.SetTimer(1, 10);
  EXPECT_EQ(dialog.DoModal(nullptr), IDC_PUSH);
  clicker.DestroyWindow();
}

TEST(Dialog, WithoutItsResourceIsNotMadeAndLeavesNothingForTheNextOne) {
  class Missing : public CDialogImpl<Missing> {
   public:
    enum { IDD = IDD_MISSING };
    BEGIN_MSG_MAP(Missing)
    END_MSG_MAP()
  } missing;
  EXPECT_EQ(missing.DoModal(nullptr), -1);
  EXPECT_FALSE(missing.Create(nullptr));
  EXPECT_FALSE(missing.m_hWnd);
  Plain dialog;
  HWND created = dialog.Create(nullptr);
  EXPECT_EQ(dialog.m_hWnd, created);
  EXPECT_FALSE(missing.m_hWnd);
  dialog.DestroyWindow();
}

TEST(Dialog, RoundsOfDialogsLeaveNothingBehind) {
  expect_flat(100, [] {
    Plain dialog;
    dialog.Create(nullptr);
    dialog.DestroyWindow();
    ASSERT_EQ(dialog.final_messages, 1);
  });
}

}  // namespace
