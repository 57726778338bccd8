// WTL's property sheets: a dialog of pages, or with PSH_WIZARD97 a wizard. The system implements both; these classes
// are their handles and handle their notifications.
//
//     class NamePage : public CPropertyPageImpl<NamePage> {
//      public:
//       enum { IDD = IDD_NAME };
//       BEGIN_MSG_MAP(NamePage)
//         MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
//         CHAIN_MSG_MAP(CPropertyPageImpl<NamePage>)      // calls OnApply and the others
//       END_MSG_MAP()
//       int OnApply() { ... return PSNRET_NOERROR; }
//     };
//
//     NamePage name;
//     CPropertySheet sheet("Settings");
//     sheet.AddPage(name);
//     sheet.DoModal();
#ifndef FRAMEWORK_ATLDLGS_H
#define FRAMEWORK_ATLDLGS_H

#ifndef FRAMEWORK_ATLAPP_H
#error "atldlgs.h requires atlapp.h to be included first"
#endif
#ifndef FRAMEWORK_ATLWIN_H
#error "atldlgs.h requires atlwin.h to be included first"
#endif

#include <prsht.h>

// Since version 10 the answer of a page's handler is the result of the notification.
// _WTL_FORCE_OLD_PAGE_NOTIFY_HANDLERS keeps the answers of 9.1.
#if _WTL_VER >= 0x1000 && !defined(_WTL_FORCE_OLD_PAGE_NOTIFY_HANDLERS) && !defined(_WTL_NEW_PAGE_NOTIFY_HANDLERS)
#define _WTL_NEW_PAGE_NOTIFY_HANDLERS
#endif

namespace WTL {

// The handle of a property sheet. Pages are counted from 0.
class CPropertySheetWindow : public ATL::CWindow {
 public:
  CPropertySheetWindow(HWND window = nullptr) noexcept : CWindow(window) {}
  CPropertySheetWindow& operator=(HWND window) noexcept {
    m_hWnd = window;
    return *this;
  }

  // The tab control. A wizard has a hidden one.
  HWND GetTabControl() const noexcept { return reinterpret_cast<HWND>(SendMessage(PSM_GETTABCONTROL)); }
  // Null after the user closed a modeless sheet: destroy the sheet then.
  HWND GetActivePage() const noexcept { return reinterpret_cast<HWND>(SendMessage(PSM_GETCURRENTPAGEHWND)); }
  int GetActiveIndex() const noexcept { return static_cast<int>(::SendMessage(GetTabControl(), TCM_GETCURSEL, 0, 0)); }
  BOOL SetActivePage(int page) noexcept {
    return static_cast<BOOL>(SendMessage(PSM_SETCURSEL, static_cast<WPARAM>(page)));
  }
  // With PSH_PROPTITLE the system adds text to the title.
  void SetTitle(LPCTSTR title, UINT style = 0) noexcept {
    SendMessage(PSM_SETTITLE, style, reinterpret_cast<LPARAM>(title));
  }
  // The sheet takes ownership of the page, unless it fails.
  BOOL AddPage(HPROPSHEETPAGE page) noexcept {
    return static_cast<BOOL>(SendMessage(PSM_ADDPAGE, 0, reinterpret_cast<LPARAM>(page)));
  }
  // PSWIZB_ flags. The message is posted, so that a page may call it in OnSetActive.
  void SetWizardButtons(DWORD buttons) noexcept { PostMessage(PSM_SETWIZBUTTONS, 0, static_cast<LPARAM>(buttons)); }
  // PSBTN_ button.
  BOOL PressButton(int button) noexcept {
    return static_cast<BOOL>(SendMessage(PSM_PRESSBUTTON, static_cast<WPARAM>(button)));
  }
};

// A property sheet T, derived from this class. Before the sheet is created, the members below prepare it.
//
// T may have
//     void OnSheetInitialized();     // the window exists and is subclassed; its pages are not shown yet
template <class T, class TBase = CPropertySheetWindow>
class CPropertySheetImpl : public ATL::CWindowImplBaseT<TBase> {
 public:
  // A text is not copied. It must be valid until the sheet is created.
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
  // Destroys the pages that were never shown.
  ~CPropertySheetImpl() override {
    for (int i = 0; i < m_arrPages.GetSize(); ++i) ::DestroyPropertySheetPage(m_arrPages[i]);
  }

  // Runs the sheet. Returns a positive value for OK or Finish, 0 for Cancel, -1 on failure. The pages are used up: add
  // pages again for a second run. The parent given to the constructor takes precedence.
  INT_PTR DoModal(HWND parent = ::GetActiveWindow()) {
    m_psh.dwFlags &= ~static_cast<DWORD>(PSH_MODELESS);
    return run(parent);
  }
  // Creates a modeless sheet, which OK and Cancel close. Returns null on failure. Its messages need
  // PSM_ISDIALOGMESSAGE.
  HWND Create(HWND parent = nullptr) {
    m_psh.dwFlags |= PSH_MODELESS;
    INT_PTR result = run(parent);
    return result == -1 ? nullptr : reinterpret_cast<HWND>(result);
  }

  // If the window exists these are its methods; otherwise they set and return the initial values.
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
  // The sheet takes ownership of the page. On failure it returns FALSE, and the caller keeps the page.
  BOOL AddPage(HPROPSHEETPAGE page) {
    if (!page) return FALSE;
    if (this->m_hWnd) return TBase::AddPage(page);
    return m_arrPages.Add(page);
  }
  // Creates a page from this description first.
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

  // A modeless sheet that was closed has no page, and is to be destroyed.
  LRESULT OnCommand(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL&) {
    LRESULT result = this->DefWindowProc(uMsg, wParam, lParam);
    bool closes = HIWORD(wParam) == BN_CLICKED && (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL);
    if (closes && is_modeless() && !this->GetActivePage()) this->DestroyWindow();
    return result;
  }
  // The close button of a modeless sheet acts like Cancel.
  LRESULT OnSysCommand(UINT, WPARAM wParam, LPARAM, BOOL& bHandled) {
    bHandled = is_modeless() && (wParam & 0xFFF0) == SC_CLOSE;
    if (bHandled) this->SendMessage(WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED));
    return 0;
  }

  // Called by the system while it creates the sheet.
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
  ATL::CSimpleArray<HPROPSHEETPAGE> m_arrPages;  // not shown yet

 private:
  bool is_modeless() const { return (m_psh.dwFlags & PSH_MODELESS) != 0; }

  // The system owns them now.
  void forget_pages() {
    m_psh.phpage = nullptr;
    m_psh.nPages = 0;
    m_arrPages.RemoveAll();
  }

  INT_PTR run(HWND parent) {
    ATLASSERT(!this->m_hWnd);
    if (!this->m_thunk.Init(nullptr, nullptr)) {
      ::SetLastError(ERROR_OUTOFMEMORY);
      return -1;
    }
    if (!m_psh.hwndParent) m_psh.hwndParent = parent;
    m_psh.phpage = m_arrPages.GetData();
    m_psh.nPages = static_cast<UINT>(m_arrPages.GetSize());

    ATL::_AtlCreateWndData waiting(this);
    INT_PTR result = ::PropertySheet(&m_psh);
    forget_pages();
    return result;
  }
};

// A property sheet without handlers of its own.
class CPropertySheet : public CPropertySheetImpl<CPropertySheet> {
 public:
  using CPropertySheetImpl::CPropertySheetImpl;
};

// The handle of a page.
class CPropertyPageWindow : public ATL::CWindow {
 public:
  CPropertyPageWindow(HWND window = nullptr) noexcept : CWindow(window) {}
  CPropertyPageWindow& operator=(HWND window) noexcept {
    m_hWnd = window;
    return *this;
  }

  CPropertySheetWindow GetPropertySheet() const noexcept { return CPropertySheetWindow(::GetParent(m_hWnd)); }
};

// A page T, created from the dialog resource T::IDD in the module's resources. The object must exist until the sheet is
// destroyed.
//
// T may have, instead of those below:
//     int OnSetActive();         // about to be shown; 0: show it; -1: skip it; otherwise the dialog identifier of
//                                // the page to show instead
//     BOOL OnKillActive();       // about to be left; TRUE: stay on it
//     int OnApply();             // OK or Apply; PSNRET_NOERROR; PSNRET_INVALID: keep the sheet open and go back to
//                                // this page; PSNRET_INVALID_NOCHANGEPAGE: keep it open on its page
//     void OnReset();            // the sheet is cancelled
//     BOOL OnQueryCancel();      // TRUE: do not cancel
//     int OnWizardBack();        // 0: go; -1: stay; otherwise the dialog identifier of the page to go to
//     int OnWizardNext();        // the same
//     INT_PTR OnWizardFinish();  // 0: finish; otherwise keep the wizard open
//     void OnHelp();             // the help button
//
// In version 9.1 OnSetActive, OnKillActive, OnApply, OnQueryCancel and OnWizardFinish return a BOOL: TRUE agrees, FALSE
// refuses. A handler that returns the answer of this class agrees in both.
template <class T, class TBase = CPropertyPageWindow>
class CPropertyPageImpl : public ATL::CDialogImplBaseT<TBase> {
  using Dialog = ATL::CDialogImplBaseT<TBase>;

 public:
  // Without a title the page has that of the dialog.
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
  CPropertyPageImpl(const CPropertyPageImpl&) = delete;  // the system holds its address
  CPropertyPageImpl& operator=(const CPropertyPageImpl&) = delete;

  // For AddPage.
  operator PROPSHEETPAGE*() { return &m_psp; }
  HPROPSHEETPAGE Create() { return ::CreatePropertySheetPage(&m_psp); }

#ifdef _WTL_NEW_PAGE_NOTIFY_HANDLERS
  int OnSetActive() { return 0; }
  BOOL OnKillActive() { return FALSE; }
  int OnApply() { return PSNRET_NOERROR; }
  BOOL OnQueryCancel() { return FALSE; }
  INT_PTR OnWizardFinish() { return 0; }
#else
  BOOL OnSetActive() { return TRUE; }
  BOOL OnKillActive() { return TRUE; }
  BOOL OnApply() { return TRUE; }
  BOOL OnQueryCancel() { return TRUE; }
  BOOL OnWizardFinish() { return TRUE; }
#endif
  void OnReset() {}
  int OnWizardBack() { return 0; }
  int OnWizardNext() { return 0; }
  void OnHelp() {}

  BEGIN_MSG_MAP(CPropertyPageImpl)
    MESSAGE_HANDLER(WM_NOTIFY, OnNotify)
  END_MSG_MAP()

  // Notifications of the sheet. Those of controls are left to the message map of T.
  LRESULT OnNotify(UINT, WPARAM, LPARAM lParam, BOOL& bHandled) {
    const auto& header = *reinterpret_cast<const NMHDR*>(lParam);
    T& page = static_cast<T&>(*this);
    if (header.hwndFrom == ::GetParent(this->m_hWnd)) switch (header.code) {
        case PSN_SETACTIVE:
          return result_of(page.OnSetActive(), -1);
        case PSN_KILLACTIVE:
          return result_of(page.OnKillActive(), TRUE);
        case PSN_APPLY:
          return result_of(page.OnApply(), PSNRET_INVALID_NOCHANGEPAGE);
        case PSN_RESET:
          page.OnReset();
          return 0;
        case PSN_QUERYCANCEL:
          return result_of(page.OnQueryCancel(), TRUE);
        case PSN_WIZBACK:
          return page.OnWizardBack();
        case PSN_WIZNEXT:
          return page.OnWizardNext();
        case PSN_WIZFINISH:
          return result_of(page.OnWizardFinish(), TRUE);
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
  // The result of a notification from the answer of a handler.
  static LRESULT result_of(INT_PTR answer, [[maybe_unused]] LRESULT refusal) {
#ifdef _WTL_NEW_PAGE_NOTIFY_HANDLERS
    return answer;
#else
    return answer ? 0 : refusal;
#endif
  }

  // WM_INITDIALOG contains the object. From then on the object handles the messages of the page.
  static INT_PTR CALLBACK StartPageProc(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam) {
    if (uMsg != WM_INITDIALOG) return FALSE;
    auto* page = reinterpret_cast<CPropertyPageImpl*>(reinterpret_cast<const PROPSHEETPAGE*>(lParam)->lParam);
    if (!page->m_thunk.Init(nullptr, nullptr)) return FALSE;
    ATL::_AtlCreateWndData waiting(static_cast<Dialog*>(page));
    return Dialog::StartDialogProc(hWnd, uMsg, wParam, lParam);
  }
};

// A page without handlers of its own.
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
