// WTL's property sheets: a dialog of pages, or with PSH_WIZARD97 a wizard. Sheet and pages are the system's own; these
// classes are their handles, and what is told about their events.
//
//     class NamePage : public CPropertyPageImpl<NamePage> {
//      public:
//       enum { IDD = IDD_NAME };
//       BEGIN_MSG_MAP(NamePage)
//         MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
//         CHAIN_MSG_MAP(CPropertyPageImpl<NamePage>)      // calls OnApply and the others
//       END_MSG_MAP()
//       BOOL OnApply() { ... return TRUE; }
//     };
//
//     NamePage name;
//     CPropertySheet sheet("Settings");
//     sheet.AddPage(name);
//     sheet.DoModal();
#ifndef FRAMEWORK_ATLDLGS_H
#define FRAMEWORK_ATLDLGS_H

#include <atlapp.h>

#include <prsht.h>

#include <memory>
#include <utility>
#include <vector>

namespace WTL {

// A sheet that is there. Pages are counted from 0.
class CPropertySheetWindow : public ATL::CWindow {
 public:
  CPropertySheetWindow(HWND window = nullptr) noexcept : CWindow(window) {}
  CPropertySheetWindow& operator=(HWND window) noexcept {
    m_hWnd = window;
    return *this;
  }

  // The tab control, which wizards have too, out of sight.
  HWND GetTabControl() const noexcept { return reinterpret_cast<HWND>(SendMessage(PSM_GETTABCONTROL)); }
  // Null when a modeless sheet has been closed by its user: then it is to be destroyed.
  HWND GetActivePage() const noexcept { return reinterpret_cast<HWND>(SendMessage(PSM_GETCURRENTPAGEHWND)); }
  int GetActiveIndex() const noexcept { return static_cast<int>(::SendMessage(GetTabControl(), TCM_GETCURSEL, 0, 0)); }
  BOOL SetActivePage(int page) noexcept {
    return static_cast<BOOL>(SendMessage(PSM_SETCURSEL, static_cast<WPARAM>(page)));
  }
  // With PSH_PROPTITLE the system adds words of its own.
  void SetTitle(LPCTSTR title, UINT style = 0) noexcept {
    SendMessage(PSM_SETTITLE, style, reinterpret_cast<LPARAM>(title));
  }
  // The sheet owns the page afterwards, unless it refused it.
  BOOL AddPage(HPROPSHEETPAGE page) noexcept {
    return static_cast<BOOL>(SendMessage(PSM_ADDPAGE, 0, reinterpret_cast<LPARAM>(page)));
  }
  // PSWIZB_ flags. Posted, so that a page may call it while it becomes the active one.
  void SetWizardButtons(DWORD buttons) noexcept {
    ::PostMessage(m_hWnd, PSM_SETWIZBUTTONS, 0, static_cast<LPARAM>(buttons));
  }
  // PSBTN_ button.
  BOOL PressButton(int button) noexcept {
    return static_cast<BOOL>(SendMessage(PSM_PRESSBUTTON, static_cast<WPARAM>(button)));
  }
};

// A page that waits for its sheet, and goes with the last copy of that sheet if it is never shown.
class PendingPropertyPage {
 public:
  explicit PendingPropertyPage(HPROPSHEETPAGE page) noexcept : page_(page) {}
  PendingPropertyPage(const PendingPropertyPage&) = delete;
  PendingPropertyPage& operator=(const PendingPropertyPage&) = delete;
  ~PendingPropertyPage() {
    if (page_) ::DestroyPropertySheetPage(page_);
  }
  // For the system, which owns it from then on; null where a copy of the sheet has shown it.
  HPROPSHEETPAGE hand_over() noexcept { return std::exchange(page_, nullptr); }

 private:
  HPROPSHEETPAGE page_;
};

// A sheet T of the application's, derived from this; before it is there, the members below prepare it.
//
// T may have
//     void OnSheetInitialized();     // the window is there and is the object's, its pages are not shown yet
template <class T, class TBase = CPropertySheetWindow>
class CPropertySheetImpl : public ATL::CWindowImplBaseT<TBase> {
 public:
  // A text is not copied: it stays there until the sheet is.
  explicit CPropertySheetImpl(ATL::_U_STRINGorID title = static_cast<LPCTSTR>(nullptr), UINT startPage = 0,
                              HWND parent = nullptr)
      : m_psh{} {
    m_psh.dwSize = sizeof m_psh;
    m_psh.dwFlags = PSH_USECALLBACK;
    m_psh.hwndParent = parent;
    m_psh.hInstance = ATL::_AtlBaseModule.GetResourceInstance();
    m_psh.pszCaption = title.m_lpstr;
    m_psh.nStartPage = startPage;
    m_psh.pfnCallback = T::PropSheetCallback;
  }
  // Copies share the pages that wait to be shown: the first copy that is shown has them. Those that were never shown go
  // with the last copy.
  CPropertySheetImpl(const CPropertySheetImpl&) = default;
  CPropertySheetImpl& operator=(const CPropertySheetImpl&) = default;

  // Runs the sheet until the user closes it: greater than zero for OK or Finish, 0 for Cancel, -1 where it could not be
  // made. The pages added so far are used up, so a second run needs pages of its own. The parent given earlier goes
  // before the one given here.
  INT_PTR DoModal(HWND parent = ::GetActiveWindow()) {
    m_psh.dwFlags &= ~static_cast<DWORD>(PSH_MODELESS);
    return run(parent);
  }
  // Makes a modeless sheet, which OK and Cancel destroy; null where it could not be made. Its messages need
  // PSM_ISDIALOGMESSAGE.
  HWND Create(HWND parent = nullptr) {
    m_psh.dwFlags |= PSH_MODELESS;
    INT_PTR result = run(parent);
    return result == -1 ? nullptr : reinterpret_cast<HWND>(result);
  }

  // As those of the sheet window if it is there; otherwise they say what it will begin with.
  int GetActiveIndex() const { return this->m_hWnd ? TBase::GetActiveIndex() : static_cast<int>(m_psh.nStartPage); }
  BOOL SetActivePage(int page) {
    if (this->m_hWnd) return TBase::SetActivePage(page);
    m_psh.nStartPage = static_cast<UINT>(page);
    return TRUE;
  }
  // The text is not copied.
  void SetTitle(LPCTSTR title, UINT style = 0) {
    if (this->m_hWnd) return TBase::SetTitle(title, style);
    m_psh.dwFlags &= ~static_cast<DWORD>(PSH_PROPTITLE);
    m_psh.dwFlags |= style;
    m_psh.pszCaption = title;
  }
  // The page is the sheet's afterwards. FALSE, and the page still the caller's, where the sheet refused it.
  BOOL AddPage(HPROPSHEETPAGE page) {
    if (!page) return FALSE;
    if (this->m_hWnd) return TBase::AddPage(page);
    m_arrPages.push_back(std::make_shared<PendingPropertyPage>(page));
    return TRUE;
  }
  // Makes a page of this description first.
  BOOL AddPage(LPCPROPSHEETPAGE description) {
    HPROPSHEETPAGE page = ::CreatePropertySheetPage(description);
    if (AddPage(page)) return TRUE;
    if (page) ::DestroyPropertySheetPage(page);
    return FALSE;
  }

  void OnSheetInitialized() {}

  BEGIN_MSG_MAP(CPropertySheetImpl)
    MESSAGE_HANDLER(WM_COMMAND, OnCommand)
    MESSAGE_HANDLER(WM_SYSCOMMAND, OnSysCommand)
  END_MSG_MAP()

  // A modeless sheet that was closed has no page any more, and waits to be destroyed.
  LRESULT OnCommand(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL&) {
    LRESULT result = this->DefWindowProc(uMsg, wParam, lParam);
    bool closes = HIWORD(wParam) == BN_CLICKED && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL);
    if (closes && is_modeless() && !this->GetActivePage()) this->DestroyWindow();
    return result;
  }
  // The caption's button closes a modeless sheet as Cancel does.
  LRESULT OnSysCommand(UINT, WPARAM wParam, LPARAM, BOOL& bHandled) {
    bHandled = is_modeless() && (wParam & 0xFFF0) == SC_CLOSE;
    if (bHandled) this->SendMessage(WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED));
    return 0;
  }

  // Called by the system while it makes the sheet.
  static int CALLBACK PropSheetCallback(HWND hWnd, UINT uMsg, LPARAM) {
    if (uMsg != PSCB_INITIALIZED) return 0;
    auto* sheet = static_cast<CPropertySheetImpl*>(ATL::_AtlCreateWndData::Extract());
    if (!sheet) return 0;
    sheet->SubclassWindow(hWnd);
    sheet->forget_pages();
    static_cast<T*>(sheet)->OnSheetInitialized();
    return 0;
  }

  PROPSHEETHEADER m_psh;
  std::vector<std::shared_ptr<PendingPropertyPage>> m_arrPages;  // those that wait for the sheet

 private:
  bool is_modeless() const { return (m_psh.dwFlags & PSH_MODELESS) != 0; }

  // The system has them now.
  void forget_pages() {
    m_psh.phpage = nullptr;
    m_psh.nPages = 0;
    m_arrPages.clear();
  }

  INT_PTR run(HWND parent) {
    ATLASSERT(!this->m_hWnd);
    if (!this->m_thunk.Init(nullptr, nullptr)) {
      ::SetLastError(ERROR_OUTOFMEMORY);
      return -1;
    }
    if (!m_psh.hwndParent) m_psh.hwndParent = parent;
    std::vector<HPROPSHEETPAGE> pages;
    for (const auto& pending : m_arrPages)
      if (HPROPSHEETPAGE page = pending->hand_over()) pages.push_back(page);
    m_psh.phpage = pages.data();
    m_psh.nPages = static_cast<UINT>(pages.size());

    ATL::_AtlCreateWndData waiting(this);
    INT_PTR result = ::PropertySheet(&m_psh);
    forget_pages();
    return result;
  }
};

// The sheet to use as it is.
class CPropertySheet : public CPropertySheetImpl<CPropertySheet> {
 public:
  using CPropertySheetImpl::CPropertySheetImpl;
};

// A page that is there.
class CPropertyPageWindow : public ATL::CWindow {
 public:
  CPropertyPageWindow(HWND window = nullptr) noexcept : CWindow(window) {}
  CPropertyPageWindow& operator=(HWND window) noexcept {
    m_hWnd = window;
    return *this;
  }

  CPropertySheetWindow GetPropertySheet() const noexcept { return CPropertySheetWindow(::GetParent(m_hWnd)); }
};

// A page T of the application's, made from the dialog resource T::IDD of the module's resources. The object stays until
// the sheet is gone.
//
// T may have, instead of those below:
//     BOOL OnSetActive();       // the page is to be shown; FALSE: it is passed over
//     BOOL OnKillActive();      // ... to be left; FALSE: the user stays, after a message about what is wrong, say
//     BOOL OnApply();           // OK or Apply; FALSE: the sheet stays open on its page
//     void OnReset();           // the sheet is being cancelled
//     BOOL OnQueryCancel();     // FALSE: it is not
//     int OnWizardBack();       // 0: go; -1: stay; else the dialog identifier of the page to go to
//     int OnWizardNext();       // the same
//     BOOL OnWizardFinish();    // FALSE: the wizard stays open
//     void OnHelp();            // the help button
template <class T, class TBase = CPropertyPageWindow>
class CPropertyPageImpl : public ATL::CDialogImplBaseT<TBase> {
  using Dialog = ATL::CDialogImplBaseT<TBase>;

 public:
  // Without a title the page has the dialog's.
  explicit CPropertyPageImpl(ATL::_U_STRINGorID title = static_cast<LPCTSTR>(nullptr)) : m_psp{} {
    m_psp.dwSize = sizeof m_psp;
    m_psp.hInstance = ATL::_AtlBaseModule.GetResourceInstance();
    m_psp.pszTemplate = MAKEINTRESOURCE(static_cast<WORD>(T::IDD));
    m_psp.pfnDlgProc = StartPageProc;
    m_psp.lParam = reinterpret_cast<LPARAM>(this);
    if (title.m_lpstr) {
      m_psp.dwFlags |= PSP_USETITLE;
      m_psp.pszTitle = title.m_lpstr;
    }
  }
  CPropertyPageImpl(const CPropertyPageImpl&) = delete;  // the system knows the object by its address
  CPropertyPageImpl& operator=(const CPropertyPageImpl&) = delete;

  // For AddPage.
  operator PROPSHEETPAGE*() { return &m_psp; }
  HPROPSHEETPAGE Create() { return ::CreatePropertySheetPage(&m_psp); }

  BOOL OnSetActive() { return TRUE; }
  BOOL OnKillActive() { return TRUE; }
  BOOL OnApply() { return TRUE; }
  void OnReset() {}
  BOOL OnQueryCancel() { return TRUE; }
  int OnWizardBack() { return 0; }
  int OnWizardNext() { return 0; }
  BOOL OnWizardFinish() { return TRUE; }
  void OnHelp() {}

  BEGIN_MSG_MAP(CPropertyPageImpl)
    MESSAGE_HANDLER(WM_NOTIFY, OnNotify)
  END_MSG_MAP()

  // Notifications of the sheet; those of controls are left to T's message map.
  LRESULT OnNotify(UINT, WPARAM, LPARAM lParam, BOOL& bHandled) {
    const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
    T& page = static_cast<T&>(*this);
    if (header.hwndFrom == ::GetParent(this->m_hWnd)) switch (header.code) {
        case PSN_SETACTIVE:
          return page.OnSetActive() ? 0 : -1;
        case PSN_KILLACTIVE:
          return !page.OnKillActive();
        case PSN_APPLY:
          return page.OnApply() ? PSNRET_NOERROR : PSNRET_INVALID_NOCHANGEPAGE;
        case PSN_RESET:
          page.OnReset();
          return 0;
        case PSN_QUERYCANCEL:
          return !page.OnQueryCancel();
        case PSN_WIZBACK:
          return page.OnWizardBack();
        case PSN_WIZNEXT:
          return page.OnWizardNext();
        case PSN_WIZFINISH:
          return !page.OnWizardFinish();
        case PSN_HELP:
          page.OnHelp();
          return 0;
        default:
          break;
      }
    bHandled = FALSE;
    return 0;
  }

  PROPSHEETPAGE m_psp;

 private:
  // The page tells in WM_INITDIALOG which object it is for; from then on its messages are the object's.
  static INT_PTR CALLBACK StartPageProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg != WM_INITDIALOG) return FALSE;
    auto* page = reinterpret_cast<CPropertyPageImpl*>(reinterpret_cast<const PROPSHEETPAGE*>(lParam)->lParam);
    if (!page->m_thunk.Init(nullptr, nullptr)) return FALSE;
    ATL::_AtlCreateWndData waiting(static_cast<Dialog*>(page));
    return Dialog::StartDialogProc(hWnd, uMsg, wParam, lParam);
  }
};

// A page of nothing but a dialog.
template <WORD t_wDlgTemplateID>
class CPropertyPage : public CPropertyPageImpl<CPropertyPage<t_wDlgTemplateID>> {
 public:
  enum { IDD = t_wDlgTemplateID };
  using CPropertyPageImpl<CPropertyPage>::CPropertyPageImpl;
};

}  // namespace WTL

#ifndef _WTL_NO_AUTOMATIC_NAMESPACE
using namespace WTL;
#endif

#endif
