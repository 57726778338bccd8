// Variant safe arrays: the lists of VARIANTs that automation passes.
#include <kexlib/com.h>

#include <atlcomcli.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace {

enum { id_make = 100, id_look, id_numbers, id_list, id_index, id_value, id_put_text, id_put_number, id_sum, id_result };

struct Destroy {
  void operator()(SAFEARRAY* array) const { ::SafeArrayDestroy(array); }
};
using OwnedArray = std::unique_ptr<SAFEARRAY, Destroy>;

// Reads a list as an automation object does: attaches to it without a copy, and accesses the elements in sequence.
double sum_of(VARIANT value) {
  QuickVariantSafeArray list(V_ARRAY(&value));
  const VARIANT* const elements = list.AccessData();
  double sum = 0;
  for (int i = 0; elements && i < list.GetSize(); ++i)
    if (V_VT(&elements[i]) == VT_I4) sum += V_I4(&elements[i]);
  list.UnaccessData();
  return sum;
}

class VariantSafeArrayPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(VariantSafeArrayPage)
    COMMAND_ID_HANDLER(id_make, OnMake)
    COMMAND_ID_HANDLER(id_look, OnLook)
    COMMAND_ID_HANDLER(id_numbers, OnNumbers)
    COMMAND_ID_HANDLER(id_put_text, OnPut)
    COMMAND_ID_HANDLER(id_put_number, OnPut)
    COMMAND_ID_HANDLER(id_sum, OnSum)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add(WC_BUTTON, "&Make an array of four", WS_TABSTOP, id_make, 160);
    add(WC_BUTTON, "&Look at one that begins at 5", WS_TABSTOP, id_look, 190);
    add(WC_BUTTON, "L&ook at one of plain numbers", WS_TABSTOP, id_numbers, 190);
    new_line();
    list_ = add(WC_LISTVIEW, "", WS_TABSTOP | WS_BORDER | LVS_REPORT, id_list, 556, 150);
    list_.InsertColumn(0, "Index", LVCFMT_LEFT, 80, 0);
    list_.InsertColumn(1, "Type", LVCFMT_LEFT, 160, 1);
    list_.InsertColumn(2, "Value", LVCFMT_LEFT, 310, 2);
    new_line();
    add_label("Index", 40);
    add(WC_EDIT, "0", WS_TABSTOP | WS_BORDER | ES_NUMBER, id_index, 50);
    add_label("Value", 40);
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, id_value, 150);
    add(WC_BUTTON, "Put as &text", WS_TABSTOP, id_put_text, 100);
    add(WC_BUTTON, "Put as &number", WS_TABSTOP, id_put_number, 120);
    new_line();
    add(WC_BUTTON, "&Hand it on, to be summed", WS_TABSTOP, id_sum, 160);
    add(WC_STATIC, "", SS_CENTERIMAGE, id_result, 388);
    make();
  }

  void make() {
    array_ = std::make_unique<QuickVariantSafeArray>(4);
    foreign_.reset();
    ATL::CComVariant text("first"), number(2);
    array_->PutAt(0, text);
    array_->PutAt(1, number);
    show();
  }

  void show() {
    list_.SendMessage(LVM_DELETEALLITEMS);
    for (int i = 0; i < array_->GetSize(); ++i) {
      const kexComVariant element = array_->GetAt(i);
      const bool is_text = V_VT(&element) == VT_BSTR, is_number = V_VT(&element) == VT_I4;
      ATL::CComVariant value(element);
      list_.InsertItem(i, std::to_string(i).c_str());
      list_.SetItemText(i, 1, is_text ? "text (VT_BSTR)" : is_number ? "number (VT_I4)" : "empty (VT_EMPTY)");
      if (SUCCEEDED(value.ChangeType(VT_BSTR))) list_.SetItemText(i, 2, CString(value.bstrVal));
    }
  }

  LRESULT OnMake(WORD, WORD, HWND, BOOL&) {
    make();
    set_text(id_result, "The array is this object's own.");
    return 0;
  }

  LRESULT OnLook(WORD, WORD, HWND, BOOL&) {
    SAFEARRAYBOUND bounds{3, 5};
    OwnedArray foreign(::SafeArrayCreate(VT_VARIANT, 1, &bounds));
    for (LONG i = 5; foreign && i < 8; ++i) {
      ATL::CComVariant element(i * 10);
      ::SafeArrayPutElement(foreign.get(), &i, &element);
    }
    auto array = std::make_unique<QuickVariantSafeArray>();
    if (FAILED(array->Attach(foreign.get()))) return 0;
    array_ = std::move(array);
    foreign_ = std::move(foreign);
    show();
    set_text(id_result, "The array is somebody else's; its indices count from 0 here.");
    return 0;
  }

  LRESULT OnNumbers(WORD, WORD, HWND, BOOL&) {
    const OwnedArray numbers(::SafeArrayCreateVector(VT_I4, 0, 3));
    if (array_->Attach(numbers.get()) == E_FAIL)
      set_text(id_result, "It has no VARIANTs and is refused: all is as it was.");
    show();
    return 0;
  }

  LRESULT OnPut(WORD, WORD command, HWND, BOOL&) {
    const CString text = text_of(id_value);
    ATL::CComVariant value =
        command == id_put_text ? ATL::CComVariant(text.GetString()) : ATL::CComVariant(std::atol(text));
    const long outcome = array_->PutAt(std::atoi(text_of(id_index)), value);
    set_text(id_result, outcome == S_OK              ? "Stored."
                        : outcome == DISP_E_BADINDEX ? "There is no element at this index (DISP_E_BADINDEX)."
                                                     : "Not stored.");
    show();
    return 0;
  }

  LRESULT OnSum(WORD, WORD, HWND, BOOL&) {
    const auto sum = static_cast<long>(sum_of(*array_));  // passes the array itself, not a copy
    set_text(id_result, ("The numbers make " + std::to_string(sum) + ".").c_str());
    return 0;
  }

  WTL::CListViewCtrl list_;
  OwnedArray foreign_;  // the array that array_ refers to if it does not own one
  std::unique_ptr<QuickVariantSafeArray> array_;
};

void tour(gallery::Tour& user) {
  const auto cell = [&](int row, int column) {
    char text[100] = "";
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    SendMessageA(user.control(id_list), LVM_GETITEMTEXTA, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return std::string(text);
  };
  const auto check_row = [&](int row, const std::string& type, const std::string& value) {
    user.check("element " + std::to_string(row) + " is " + type + ' ' + value,
               [&] { return cell(row, 1) == type && cell(row, 2) == value; });
  };
  const auto rows = [&] { return WTL::CListViewCtrl(user.control(id_list)).GetItemCount(); };

  user.click(id_make);
  user.check_text(id_result, "The array is this object's own.");
  check_row(0, "text (VT_BSTR)", "first");
  check_row(1, "number (VT_I4)", "2");
  check_row(2, "empty (VT_EMPTY)", "");
  user.write(id_index, "2");
  user.write(id_value, "40");
  user.click(id_put_number);
  user.check_text(id_result, "Stored.");
  check_row(2, "number (VT_I4)", "40");
  user.write(id_index, "4");
  user.click(id_put_text);
  user.check_text(id_result, "There is no element at this index (DISP_E_BADINDEX).");
  user.click(id_numbers);
  user.check_text(id_result, "It has no VARIANTs and is refused: all is as it was.");
  user.check("four elements are there", [&] { return rows() == 4; });
  user.click(id_sum);
  user.check_text(id_result, "The numbers make 42.");
  user.take_picture("variant_safe_array");

  user.click(id_look);
  user.check_text(id_result, "The array is somebody else's; its indices count from 0 here.");
  user.check("three elements are there", [&] { return rows() == 3; });
  check_row(0, "number (VT_I4)", "50");
  user.write(id_index, "2");
  user.write(id_value, "last");
  user.click(id_put_text);
  check_row(2, "text (VT_BSTR)", "last");
  user.click(id_sum);
  user.check_text(id_result, "The numbers make 110.");
}

const gallery::Registration variant_safe_array{
    "com", "Variant safe arrays",
    "A list of VARIANTs as automation passes it: made and owned, or looked at where somebody else has one.",
    gallery::make<VariantSafeArrayPage>, tour};

}  // namespace
