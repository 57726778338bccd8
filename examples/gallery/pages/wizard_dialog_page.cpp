// A wizard of three pages, which share the user's input.
#include <kexlib/dialogs.h>

#include <afxres.h>

#include <gallery/page.h>
#include <gallery/resources.h>
#include <gallery/tour.h>

#include <memory>

namespace {

enum { id_start = 100, id_result };
constexpr char caption[] = "New part";

struct Part : kexWizardExchangeBase {
  CString name;
  bool in_library = false;
};

// A page with the part that all pages share. Its handlers agree by the answer of their base: WTL 9.1 and 10 have
// different ones.
template <class T, int identifier>
class PartPage : public WTL::CPropertyPageImpl<T>, public kexWizardPageInfoHolder {
 public:
  enum { IDD = identifier };
  explicit PartPage(std::shared_ptr<Part> shared) : kexWizardPageInfoHolder(IDD), part(std::move(shared)) {}
  const PROPSHEETPAGEA* psp() override { return &this->m_psp; }

 protected:
  std::shared_ptr<Part> part;
};

class NamePage : public PartPage<NamePage, IDD_PART_NAME> {
 public:
  using PartPage::PartPage;
  BEGIN_MSG_MAP(NamePage)
    CHAIN_MSG_MAP(WTL::CPropertyPageImpl<NamePage>)
  END_MSG_MAP()

  int OnSetActive() {
    GetPropertySheet().SetWizardButtons(PSWIZB_NEXT | PSWIZB_FINISH);
    return PartPage::OnSetActive();
  }
  // Without a name, the wizard stays on this page.
  int OnWizardNext() {
    part->name = gallery::text_of(GetDlgItem(IDC_PART_NAME));
    return part->name.IsEmpty() ? -1 : 0;
  }
};

class PlacePage : public PartPage<PlacePage, IDD_PART_PLACE> {
 public:
  using PartPage::PartPage;
  BEGIN_MSG_MAP(PlacePage)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    CHAIN_MSG_MAP(WTL::CPropertyPageImpl<PlacePage>)
  END_MSG_MAP()

  LRESULT OnInitDialog(UINT, WPARAM, LPARAM, BOOL&) {
    ::CheckRadioButton(m_hWnd, IDC_IN_PROJECT, IDC_IN_LIBRARY, IDC_IN_PROJECT);
    return TRUE;
  }
  int OnSetActive() {
    GetPropertySheet().SetWizardButtons(PSWIZB_BACK | PSWIZB_NEXT | PSWIZB_FINISH);
    return PartPage::OnSetActive();
  }
  int OnWizardNext() {
    part->in_library = ::IsDlgButtonChecked(m_hWnd, IDC_IN_LIBRARY) == BST_CHECKED;
    return 0;
  }
};

class SummaryPage : public PartPage<SummaryPage, IDD_PART_SUMMARY> {
 public:
  using PartPage::PartPage;
  BEGIN_MSG_MAP(SummaryPage)
    CHAIN_MSG_MAP(WTL::CPropertyPageImpl<SummaryPage>)
  END_MSG_MAP()

  int OnSetActive() {
    GetPropertySheet().SetWizardButtons(PSWIZB_BACK | PSWIZB_FINISH);
    CString text = "Finish makes the part \"" + part->name + "\" ";
    text += part->in_library ? "in the library." : "in the project.";
    ::SetDlgItemText(m_hWnd, IDC_PART_SUMMARY, text);
    return PartPage::OnSetActive();
  }
};

// Wide enough for its row of buttons.
class PartWizard : public kexWizardDialog {
 public:
  using kexWizardDialog::kexWizardDialog;

 protected:
  void OnSheetInitialized2() override {
    RECT window, finish;
    GetWindowRect(&window);
    GetDlgItem(ID_WIZFINISH).GetWindowRect(&finish);
    constexpr int space = 12;
    SetWindowPos(nullptr, 0, 0, finish.right + space - window.left, window.bottom - window.top,
                 SWP_NOMOVE | SWP_NOZORDER);
  }
};

class WizardDialogPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(WizardDialogPage)
    COMMAND_ID_HANDLER(id_start, OnStart)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add(WC_BUTTON, "&New part...", WS_TABSTOP, id_start, 120);
    new_line(16);
    add(WC_STATIC, "", 0, id_result, 420);
  }

  LRESULT OnStart(WORD, WORD, HWND, BOOL&) {
    const auto part = std::make_shared<Part>();
    NamePage name(part);
    PlacePage place(part);
    SummaryPage summary(part);
    PartWizard wizard(caption, 0, m_hWnd);
    wizard.put_user_object(part);
    for (kexWizardPageInfoHolder* page :
         {static_cast<kexWizardPageInfoHolder*>(&name), static_cast<kexWizardPageInfoHolder*>(&place),
          static_cast<kexWizardPageInfoHolder*>(&summary)})
      wizard.add_page(*page);
    if (wizard.DoModal(m_hWnd) > 0)
      set_text(id_result, "\"" + part->name + "\" was made " +
                              (part->in_library ? CString("in the library.") : CString("in the project.")));
    else
      set_text(id_result, "No part was made.");
    return 0;
  }
};

void tour(gallery::Tour& user) {
  user.click(id_start);
  HWND wizard = user.wait_for_window(caption);
  const auto in_page = [&](int id) {
    HWND found = nullptr;
    user.wait_until("a control of the page", [&] {
      for (HWND page = nullptr; !found && (page = FindWindowExA(wizard, page, "#32770", nullptr));)
        if (IsWindowVisible(page)) found = GetDlgItem(page, id);
      return found != nullptr;
    });
    return found;
  };
  user.click(in_page(IDC_PART_NAME));
  user.type("wheel");
  user.take_picture("wizard_dialog", wizard);
  user.click(GetDlgItem(wizard, ID_WIZNEXT));
  user.click(in_page(IDC_IN_LIBRARY));
  user.click(GetDlgItem(wizard, ID_WIZNEXT));
  user.check("the last page sums it up", [&] {
    return user.text_of(in_page(IDC_PART_SUMMARY)) == "Finish makes the part \"wheel\" in the library.";
  });
  user.take_picture("wizard_dialog_summary", wizard);
  user.click(GetDlgItem(wizard, ID_WIZBACK));
  user.check("Back goes to the page before",
             [&] { return IsDlgButtonChecked(GetParent(in_page(IDC_IN_LIBRARY)), IDC_IN_LIBRARY) == BST_CHECKED; });
  user.click(GetDlgItem(wizard, ID_WIZFINISH));
  user.wait_for_end_of(wizard);
  user.check_text(id_result, "\"wheel\" was made in the library.");

  user.click(id_start);
  wizard = user.wait_for_window(caption);
  user.press(VK_ESCAPE);
  user.wait_for_end_of(wizard);
  user.check_text(id_result, "No part was made.");
}

const gallery::Registration wizard_dialog{
    "dialogs", "Wizard",
    "A wizard of the system's property sheets, whose pages share one object with the user's answers.",
    gallery::make<WizardDialogPage>, tour};

}  // namespace
