#include <kexlib/controls.h>
#include <kexlib/dialogs.h>
#include <kexlib/windowtools.h>

#include <afxres.h>

#include <parts_list/part_wizard.h>
#include <parts_list/resources.h>

#include <memory>

namespace parts_list {

namespace {

constexpr double inch = 25.4;  // millimetres
constexpr int millimetres_places = 2, inches_places = 3;

// What the pages share.
struct PartData : kexWizardExchangeBase {
  Part part;
  bool in_inches = false;
};

// Handlers that agree return the answer of their base: it is another one in WTL 9.1 than in WTL 10.
template <class T, int identifier>
class PartPage : public WTL::CPropertyPageImpl<T>, public kexWizardPageInfoHolder {
 public:
  enum { IDD = identifier };
  explicit PartPage(std::shared_ptr<PartData> shared) : kexWizardPageInfoHolder(IDD), data(std::move(shared)) {}
  const PROPSHEETPAGEA* psp() override { return &this->m_psp; }

  // The user may finish on any page: its input must be complete, as for the next page.
  auto OnWizardFinish() {
    const auto agree = WTL::CPropertyPageImpl<T>::OnWizardFinish();
    return static_cast<T*>(this)->OnWizardNext() == 0 ? agree : static_cast<decltype(agree)>(!agree);
  }

 protected:
  static constexpr int stay = -1;

  int show_buttons(DWORD buttons) {
    this->GetPropertySheet().SetWizardButtons(buttons);
    return WTL::CPropertyPageImpl<T>::OnSetActive();
  }

  std::shared_ptr<PartData> data;
};

class NamePage : public PartPage<NamePage, IDD_NAME_PAGE> {
 public:
  using PartPage::PartPage;
  BEGIN_MSG_MAP(NamePage)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    CHAIN_MSG_MAP(WTL::CPropertyPageImpl<NamePage>)
  END_MSG_MAP()

  LRESULT OnInitDialog(UINT, WPARAM, LPARAM, BOOL&) {
    GetDlgItem(IDC_NAME).SetWindowText(data->part.name);
    return TRUE;
  }
  int OnSetActive() { return show_buttons(PSWIZB_NEXT); }
  int OnWizardNext() {
    CString typed;
    const int length = GetDlgItem(IDC_NAME).GetWindowTextLength();
    GetDlgItem(IDC_NAME).GetWindowText(typed.GetBuffer(length), length + 1);
    typed.ReleaseBuffer();
    data->part.name = valid_name(typed);
    return data->part.name.IsEmpty() ? stay : 0;
  }
};

class LengthPage : public PartPage<LengthPage, IDD_LENGTH_PAGE> {
 public:
  using PartPage::PartPage;
  BEGIN_MSG_MAP(LengthPage)
    MESSAGE_HANDLER(WM_INITDIALOG, OnInitDialog)
    COMMAND_HANDLER(IDC_LENGTH_UNIT, CBN_SELCHANGE, OnUnit)
    CHAIN_MSG_MAP(WTL::CPropertyPageImpl<LengthPage>)
  END_MSG_MAP()

  LRESULT OnInitDialog(UINT, WPARAM, LPARAM, BOOL&) {
    length_.allow_negative_values(false);
    length_.SubclassWindow(GetDlgItem(IDC_LENGTH));
    unit_.Attach(GetDlgItem(IDC_LENGTH_UNIT));
    kexWTLComboBoxUtils(unit_).populate({"millimetres", "inches"});
    unit_.SetCurSel(data->in_inches);
    show();
    return TRUE;
  }
  LRESULT OnUnit(WORD, WORD, HWND, BOOL&) {
    read();
    data->in_inches = unit_.GetCurSel() == 1;
    show();
    return 0;
  }
  int OnSetActive() { return show_buttons(PSWIZB_BACK | PSWIZB_NEXT); }
  int OnWizardBack() {
    read();
    return 0;
  }
  int OnWizardNext() {
    read();
    return data->part.millimetres > 0 ? 0 : stay;
  }

 private:
  void read() { data->part.millimetres = length_.get_value() * (data->in_inches ? inch : 1); }
  void show() {
    length_.set_decimal_places(data->in_inches ? inches_places : millimetres_places);
    length_.set_value(data->part.millimetres / (data->in_inches ? inch : 1));
  }

  kexNumericEditBox length_;
  WTL::CComboBox unit_;
};

class SummaryPage : public PartPage<SummaryPage, IDD_SUMMARY_PAGE> {
 public:
  using PartPage::PartPage;
  BEGIN_MSG_MAP(SummaryPage)
    CHAIN_MSG_MAP(WTL::CPropertyPageImpl<SummaryPage>)
  END_MSG_MAP()

  int OnSetActive() {
    GetDlgItem(IDC_SUMMARY)
        .SetWindowText("Finish adds the part \"" + data->part.name + "\", " +
                       length_text(data->part.millimetres, data->in_inches) + " long.");
    return show_buttons(PSWIZB_BACK | PSWIZB_FINISH);
  }
};

// Wide enough for its row of buttons.
class PartWizard : public kexWizardDialog {
 public:
  using kexWizardDialog::kexWizardDialog;

 protected:
  void OnSheetInitialized2() override {
    constexpr int space = 12;
    RECT window, finish;
    GetWindowRect(&window);
    GetDlgItem(ID_WIZFINISH).GetWindowRect(&finish);
    SetWindowPos(nullptr, 0, 0, finish.right + space - window.left, window.bottom - window.top,
                 SWP_NOMOVE | SWP_NOZORDER);
  }
};

}  // namespace

std::optional<Part> ask_for_part(HWND owner, const Part& part) {
  const auto data = std::make_shared<PartData>();
  data->part = part;
  NamePage name(data);
  LengthPage length(data);
  SummaryPage summary(data);
  PartWizard wizard("New part", 0, owner);
  wizard.put_user_object(data);
  wizard.add_page(name);
  wizard.add_page(length);
  wizard.add_page(summary);
  if (wizard.DoModal(owner) > 0) return data->part;
  return std::nullopt;
}

CString length_text(double millimetres, bool in_inches) {
  class Length : public kexNumberFormatting {
   public:
    explicit Length(bool inches)
        : kexNumberFormatting(inches ? inches_places : millimetres_places, 0, KRV_Millimetres,
                              inches ? KRV_Inches : KRV_Millimetres) {}
    CString text(double length) { return format_double_with_units(length); }
  };
  return Length(in_inches).text(millimetres) + (in_inches ? " in" : " mm");
}

}  // namespace parts_list
