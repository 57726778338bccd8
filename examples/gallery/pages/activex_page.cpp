// ActiveX controls in place of placeholders: an installed control, a missing one, and the option of COM.
#include <kexlib/com.h>

#include <digits.h>

#include <gallery/page.h>
#include <gallery/pages/sample_component.h>
#include <gallery/tour.h>

namespace {

enum { id_placeholder = 100, id_other, id_create, id_missing, id_count, id_disable, id_result };

constexpr char digit_control_name[] = "{107BD0EE-6861-11CF-B28B-0000C0C14EA0}";
constexpr int width = 320, height = 96;

class ActiveXPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(ActiveXPage)
    COMMAND_ID_HANDLER(id_create, OnCreate)
    COMMAND_ID_HANDLER(id_missing, OnMissing)
    COMMAND_ID_HANDLER(id_count, OnCount)
    COMMAND_ID_HANDLER(id_disable, OnDisable)
  END_MSG_MAP()

 private:
  void add_controls() override {
    // The placeholder is larger than the control, which keeps its natural size.
    add(WC_STATIC, "A placeholder", WS_BORDER | SS_CENTER | SS_CENTERIMAGE, id_placeholder, width, height);
    add(WC_STATIC, "Another one", WS_BORDER | SS_CENTER | SS_CENTERIMAGE, id_other, 180, height);
    new_line(16);
    add(WC_BUTTON, "&Create", WS_TABSTOP, id_create, 120);
    add(WC_BUTTON, "Count &up", WS_TABSTOP | WS_DISABLED, id_count, 120);
    add(WC_BUTTON, "Create a &missing one", WS_TABSTOP, id_missing, 170);
    new_line();
    add(WC_BUTTON, "Do not handle &fatal exceptions in servers", WS_TABSTOP, id_disable, 300);
    new_line(16);
    add(WC_STATIC, "", 0, id_result, 560);
  }

  LRESULT OnCreate(WORD, WORD, HWND, BOOL&) {
    ATL::CComPtr<IUnknown> control;
    {
      const gallery::SampleManifest in_force;
      control = CreateControl(m_hWnd, &host_, id_placeholder, digit_control_name);
    }
    digits_.Release();
    if (!control || FAILED(control->QueryInterface(__uuidof(IDigits), reinterpret_cast<void**>(&digits_)))) {
      set_text(id_result, "The component is not there.");
      return 0;
    }
    RECT size;
    host_.GetClientRect(&size);
    CString text;
    text.Format("The control has its natural size, %ld by %ld pixels.", size.right, size.bottom);
    set_text(id_result, text);
    GetDlgItem(id_create).EnableWindow(FALSE);
    GetDlgItem(id_count).EnableWindow(TRUE);
    return 0;
  }

  LRESULT OnCount(WORD, WORD, HWND, BOOL&) {
    double value = 0;
    digits_->get_Value(0, &value);
    digits_->put_Value(0, value + 1);
    digits_->get_Value(0, &value);
    CString text;
    text.Format("The control shows %.0f.", value);
    set_text(id_result, text);
    return 0;
  }

  LRESULT OnMissing(WORD, WORD, HWND, BOOL&) {
    ATL::CAxWindow host;
    const auto control = CreateControl(m_hWnd, &host, id_other, "No.Such.Control");
    set_text(id_result,
             control ? "There is one." : "There is no such control. The placeholder is hidden all the same.");
    return 0;
  }

  LRESULT OnDisable(WORD, WORD, HWND, BOOL&) {
    CString text;
    text.Format("Fatal exceptions: 0x%08X", static_cast<unsigned>(kexDisableComExceptionHandler()));
    set_text(id_result, text);
    return 0;
  }

  ATL::CAxWindow host_;
  ATL::CComPtr<IDigits> digits_;
};

void tour(gallery::Tour& user) {
  const auto host = [&] { return FindWindowExA(user.page(), nullptr, "AtlAxWin140", nullptr); };
  user.check("there is a placeholder and no control",
             [&] { return IsWindowVisible(user.control(id_placeholder)) && !host(); });
  user.click(id_create);
  user.check_text(id_result, "The control has its natural size, 148 by 48 pixels.");
  user.check("the placeholder is hidden, and the control has its position", [&] {
    RECT place, control;
    GetWindowRect(user.control(id_placeholder), &place);
    GetWindowRect(host(), &control);
    return !IsWindowVisible(user.control(id_placeholder)) && control.left == place.left && control.top == place.top;
  });
  user.click(id_count);
  user.click(id_count);
  user.check_text(id_result, "The control shows 2.");
  user.take_picture("activex");
  user.click(id_missing);
  user.check_text(id_result, "There is no such control. The placeholder is hidden all the same.");
  user.check("the other placeholder is hidden", [&] { return !IsWindowVisible(user.control(id_other)); });
  user.click(id_disable);
  user.check_text(id_result, "Fatal exceptions: 0x00000000");
}

const gallery::Registration activex{
    "com", "ActiveX controls",
    "A control in place of a placeholder, in its natural size, and an option for fatal exceptions in COM servers.",
    gallery::make<ActiveXPage>, tour};

}  // namespace
