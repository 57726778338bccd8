#include <kexlib/dialogs/wizard_dialog.h>

#include <afxwin.h>

// The identifiers that every property sheet of the system has.
#define ID_WIZBACK 0x3023
#define ID_WIZNEXT 0x3024
#define ID_WIZFINISH 0x3025

kexWizardPageInfoHolder::kexWizardPageInfoHolder(DWORD idd) : m_idd(idd) {}

kexWizardPageInfoHolder::~kexWizardPageInfoHolder() = default;

DWORD kexWizardPageInfoHolder::idd() const { return m_idd; }

kexWizardExchangeBase::kexWizardExchangeBase() = default;

kexWizardExchangeBase::~kexWizardExchangeBase() = default;

kexWizardDialog::kexWizardDialog(const CStringA& title, int start_page, HWND parent)
    : CPropertySheetImpl(static_cast<LPCSTR>(nullptr), static_cast<UINT>(start_page), parent), m_title(title) {
  init();
}

kexWizardDialog::kexWizardDialog(UINT title_id, int start_page, HWND parent)
    : CPropertySheetImpl(static_cast<LPCSTR>(nullptr), static_cast<UINT>(start_page), parent) {
  m_title.LoadString(title_id);
  init();
}

kexWizardDialog::kexWizardDialog(const kexWizardDialog&) = default;

kexWizardDialog& kexWizardDialog::operator=(const kexWizardDialog&) = default;

kexWizardDialog::~kexWizardDialog() = default;

void kexWizardDialog::init() { m_psh.dwFlags |= PSH_WIZARD97 | PSH_NOAPPLYNOW | PSH_WIZARDHASFINISH; }

// Counted whether the system takes it or not, on purpose.
void kexWizardDialog::add_page(kexWizardPageInfoHolder& page) {
  m_pages.push_back(&page);
  AddPage(page.psp());
  ++m_pages_count;
}

const kexWizardPageInfoHolder& kexWizardDialog::get_page(int index) const {
  return *m_pages[static_cast<size_t>(index)];
}

int kexWizardDialog::get_pages_count() const { return m_pages_count; }

void kexWizardDialog::put_user_object(std::shared_ptr<kexWizardExchangeBase> object) {
  m_user_object = std::move(object);
}

void kexWizardDialog::get_user_object(std::shared_ptr<kexWizardExchangeBase>& out) { out = m_user_object; }

void kexWizardDialog::set_icon(HICON icon) {
  m_psh.dwFlags |= PSH_USEHICON;
  m_psh.hIcon = icon;
}

BOOL kexWizardDialog::ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult,
                                           DWORD dwMsgMapID) {
  if (dwMsgMapID != 0) return FALSE;
  if (uMsg == WM_HELP) {
    OnHelp();
    lResult = 0;
    return TRUE;  // without an application object too, on purpose
  }
  if (uMsg == WM_SHOWWINDOW && wParam == TRUE) Center();
  return CPropertySheetImpl::ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lResult, dwMsgMapID);
}

void kexWizardDialog::OnSheetInitialized2() {}

void kexWizardDialog::OnSheetInitialized() {
  if (!(GetExStyle() & WS_EX_CONTEXTHELP)) ModifyStyleEx(0, WS_EX_CONTEXTHELP);
  make_font();
  SetTitle(m_title);
  lay_out_buttons();
  OnSheetInitialized2();
}

void kexWizardDialog::make_font() {
  constexpr int tenths_of_a_point = 120;
  m_font = std::make_shared<WTL::CFont>();
  m_font->CreatePointFont(tenths_of_a_point, "Arial");
  SetFont(*m_font);
}

// From the right edge of where Back was, on purpose: the row moves to the right.
void kexWizardDialog::lay_out_buttons() {
  constexpr int gap = 6;
  const auto place = [this](int id) {
    RECT rect{};
    ::GetWindowRect(GetDlgItem(id), &rect);
    ::MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
  };
  int x = place(ID_WIZBACK).right + gap;
  for (const int id : {IDHELP, IDCANCEL, ID_WIZBACK, ID_WIZNEXT, ID_WIZFINISH}) {
    const RECT rect = place(id);
    const int width = rect.right - rect.left;
    ::MoveWindow(GetDlgItem(id), x, rect.top, width, rect.bottom - rect.top, TRUE);
    x += width + gap;
  }
}

void kexWizardDialog::OnHelp() {
  constexpr DWORD base_of_dialogs = 0x20000;
  AFX_MANAGE_STATE(AfxGetAppModuleState());
  CWinApp* app = AfxGetApp();
  const auto index = static_cast<size_t>(GetActiveIndex());
  if (app && index < m_pages.size()) app->WinHelpInternal(m_pages[index]->idd() + base_of_dialogs, HELP_CONTEXT);
}

void kexWizardDialog::Center() {
  if (m_centered) return;
  CenterWindow();
  m_centered = true;
}
