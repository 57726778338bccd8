// A wizard of three pages, and the steps of a user.
#ifndef TESTS_DIALOGS_WIZARD_DIALOG_FIXTURE_H
#define TESTS_DIALOGS_WIZARD_DIALOG_FIXTURE_H

#include <gtest/gtest.h>

#include <kexlib/dialogs/wizard_dialog.h>

#include <afxres.h>
#include <afxwin.h>

#include <dialogs/dialog_driver.h>
#include <support/picture.h>
#include <support/user_input.h>

#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

constexpr int row[] = {IDHELP, IDCANCEL, ID_WIZBACK, ID_WIZNEXT, ID_WIZFINISH};

template <int t_idd>
class Page : public WTL::CPropertyPageImpl<Page<t_idd>>, public kexWizardPageInfoHolder {
 public:
  enum { IDD = t_idd };
  Page() : kexWizardPageInfoHolder(t_idd) {}
  const PROPSHEETPAGEA* psp() override { return &this->m_psp; }
};

// A page that the system rejects.
class NoPage : public kexWizardPageInfoHolder {
 public:
  NoPage() : kexWizardPageInfoHolder(77) {}
  const PROPSHEETPAGEA* psp() override { return &nothing_; }

 private:
  PROPSHEETPAGEA nothing_{};
};

struct Shared : kexWizardExchangeBase {
  explicit Shared(int& released) : released_(released) {}
  ~Shared() override { ++released_; }
  int& released_;
};

class HelpfulApp : public CWinApp {
 public:
  void WinHelpInternal(DWORD_PTR data, UINT command) override { asked.emplace_back(data, command); }
  std::vector<std::pair<DWORD_PTR, UINT>> asked;
};

// Exposes the members that derived wizards may use.
class Wizard : public kexWizardDialog {
 public:
  using kexWizardDialog::kexWizardDialog;
  std::function<void()> initialized;

  BOOL ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult,
                            DWORD dwMsgMapID = 0) override {
    if (uMsg == WM_SETFONT) {
      font = reinterpret_cast<HFONT>(wParam);
      redrawn = lParam;
    }
    if (uMsg == posted_message) posted.emplace_back(wParam, lParam);
    return kexWizardDialog::ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lResult, dwMsgMapID);
  }
  HFONT font = nullptr;  // the font it last received
  LPARAM redrawn = 0;
  static constexpr UINT posted_message = WM_APP + 7;
  std::vector<std::pair<WPARAM, LPARAM>> posted;

 protected:
  void OnSheetInitialized2() override {
    kexWizardDialog::OnSheetInitialized2();
    if (initialized) initialized();
  }
};

using Step = DialogDriver::Step;

inline Step then(std::function<void(HWND)> what) {
  return [what = std::move(what)](HWND sheet) { return what(sheet), true; };
}
inline int page_of(HWND sheet) {
  return static_cast<int>(
      SendMessageA(reinterpret_cast<HWND>(SendMessageA(sheet, PSM_GETTABCONTROL, 0, 0)), TCM_GETCURSEL, 0, 0));
}
// Runs the step when this page is shown and has the focus.
inline Step press_the_key_on(int page, WORD code, WORD held = 0) {
  return [=](HWND sheet) {
    if (page_of(sheet) != page || GetForegroundWindow() != sheet || !GetFocus()) return false;
    press_key(code, held);
    return true;
  };
}
inline Step press(int button) {
  return then([button](HWND sheet) { PostMessageA(sheet, PSM_PRESSBUTTON, static_cast<WPARAM>(button), 0); });
}
inline Step wait_for_page(int page) {
  return [page](HWND sheet) { return page_of(sheet) == page; };
}
inline Step take_picture(const std::string& name) {
  return then([name](HWND sheet) {
    RedrawWindow(sheet, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    EXPECT_TRUE(Picture(sheet).save(name));
  });
}
inline RECT place_of(HWND sheet, int id) {
  RECT rect{};
  GetWindowRect(GetDlgItem(sheet, id), &rect);
  MapWindowPoints(nullptr, sheet, reinterpret_cast<POINT*>(&rect), 2);
  return rect;
}

#endif
