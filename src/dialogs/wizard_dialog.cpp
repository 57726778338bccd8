#include <kexlib/dialogs/wizard_dialog.h>

#include <afxres.h>

namespace kexlib {

// For the query of a window's dialog template, and of the module that has it. Applications define their meaning; the
// library only registers them. External linkage: the compiler would drop unused variables otherwise.
extern const UINT dialog_messages[];
const UINT dialog_messages[] = {RegisterWindowMessageA("MSG_QZ_GetDialogTemplateID"),
                                RegisterWindowMessageA("MSG_QZ_GetDialogResLibrary")};

}  // namespace kexlib

kexWizardPageInfoHolder::kexWizardPageInfoHolder(DWORD idd) : idd_(idd) {}

kexWizardPageInfoHolder::~kexWizardPageInfoHolder() = default;

DWORD kexWizardPageInfoHolder::idd() const { return idd_; }

kexWizardExchangeBase::kexWizardExchangeBase() = default;

kexWizardExchangeBase::~kexWizardExchangeBase() = default;

kexWizardDialog::kexWizardDialog(const CStringA& title, int start_page, HWND parent)
    : CPropertySheetImpl(static_cast<LPCSTR>(nullptr), static_cast<UINT>(start_page), parent), title_(title) {
  init();
}

kexWizardDialog::kexWizardDialog(UINT title_id, int start_page, HWND parent)
    : CPropertySheetImpl(static_cast<LPCSTR>(nullptr), static_cast<UINT>(start_page), parent) {
  title_.LoadString(title_id);
  init();
}

// The base is not copied: WTL's copies its window procedure and the handles of its pages, and both would free them.
kexWizardDialog::kexWizardDialog(const kexWizardDialog& other) : CPropertySheetImpl() { *this = other; }

kexWizardDialog& kexWizardDialog::operator=(const kexWizardDialog& other) {
  if (this == &other) return *this;
  title_ = other.title_;
  font_ = other.font_;
  centered_ = other.centered_;
  user_object_ = other.user_object_;
  pages_count_ = other.pages_count_;
  pages_ = other.pages_;

  for (int i = 0; i < m_arrPages.GetSize(); ++i) DestroyPropertySheetPage(m_arrPages[i]);
  m_arrPages.RemoveAll();
  not_shown_.clear();
  m_psh = other.m_psh;
  m_psh.phpage = nullptr;
  m_psh.nPages = 0;
  if (other.m_arrPages.GetSize() == 0) return *this;  // as in add_page
  for (kexWizardPageInfoHolder* page : other.not_shown_)
    if (AddPage(page->psp())) not_shown_.push_back(page);
  return *this;
}

kexWizardDialog::~kexWizardDialog() = default;

void kexWizardDialog::init() { m_psh.dwFlags |= PSH_WIZARD97 | PSH_NOAPPLYNOW | PSH_WIZARDHASFINISH; }

// Kept for compatibility: callers see a page that the system refused in the count.
void kexWizardDialog::add_page(kexWizardPageInfoHolder& page) {
  pages_.push_back(&page);
  if (m_arrPages.GetSize() == 0) not_shown_.clear();  // a sheet that could not be created has used them up as well
  not_shown_.reserve(not_shown_.size() + 1);
  if (AddPage(page.psp()) && !m_hWnd) not_shown_.push_back(&page);
  ++pages_count_;
}

const kexWizardPageInfoHolder& kexWizardDialog::get_page(int index) const {
  return *pages_[static_cast<size_t>(index)];
}

int kexWizardDialog::get_pages_count() const { return pages_count_; }

void kexWizardDialog::put_user_object(std::shared_ptr<kexWizardExchangeBase> object) {
  user_object_ = std::move(object);
}

void kexWizardDialog::get_user_object(std::shared_ptr<kexWizardExchangeBase>& out) { out = user_object_; }

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
    return TRUE;  // also without an application object: callers rely on the system showing no help
  }
  if (uMsg == WM_SHOWWINDOW && wParam == TRUE) Center();
  return CPropertySheetImpl::ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lResult, dwMsgMapID);
}

void kexWizardDialog::OnSheetInitialized2() {}

// noexcept: an exception must not unwind the frames of PropertySheet.
void kexWizardDialog::OnSheetInitialized() noexcept {
  not_shown_.clear();
  if (!(GetExStyle() & WS_EX_CONTEXTHELP)) ModifyStyleEx(0, WS_EX_CONTEXTHELP);
  make_font();
  SetTitle(title_);
  lay_out_buttons();
  OnSheetInitialized2();
}

void kexWizardDialog::make_font() {
  constexpr int tenths_of_a_point = 120;
  font_ = std::make_shared<WTL::CFont>();
  font_->CreatePointFont(tenths_of_a_point, "Arial");
  SetFont(*font_);
}

// By design the row begins at the right edge of the original Back button: derived wizards widen the window for it.
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
  // Help is the program's: the state of a regular DLL may be current here. MFC documents that extension DLLs, such as
  // this one, have no state of their own to switch to; that of the program is there for every module.
  AFX_MANAGE_STATE(AfxGetAppModuleState());
  CWinApp* app = AfxGetApp();
  const auto index = static_cast<size_t>(GetActiveIndex());
  if (app && index < pages_.size()) app->WinHelpInternal(pages_[index]->idd() + base_of_dialogs, HELP_CONTEXT);
}

void kexWizardDialog::Center() {
  if (centered_) return;
  CenterWindow();
  centered_ = true;
}
