// The digit control, an ActiveX control that is not registered, and its wrapper.
#include <kexlib/com.h>

#include <afxwin.h>

#include <gallery/page.h>
#include <gallery/pages/sample_component.h>
#include <gallery/tour.h>

namespace {

enum { id_placeholder = 100, id_value, id_show, id_italic, id_result, id_small };

constexpr COLORREF paper = RGB(16, 24, 32), ink = RGB(80, 255, 120), unlit = RGB(28, 48, 44);

class DigitControlPage : public gallery::Page {
 public:
  ~DigitControlPage() override {
    digits_.DestroyWindow();
    view_.Detach();
  }

  BEGIN_MSG_MAP(DigitControlPage)
    COMMAND_ID_HANDLER(id_show, OnShow)
    COMMAND_ID_HANDLER(id_italic, OnItalic)
  END_MSG_MAP()

 private:
  void add_controls() override {
    const RECT place = take_place(420, 150);
    {
      const gallery::SampleManifest in_force;
      view_.Attach(m_hWnd);
      if (!digits_.Create("", WS_CHILD | WS_VISIBLE, place, &view_, id_placeholder, nullptr, FALSE, nullptr)) {
        new_line();
        add(WC_STATIC, "The component is not there.", 0, id_result, 420);
        return;
      }
    }
    digits_.initialise();
    digits_.SetDimAuto(FALSE);
    digits_.SetNbLines(2);
    digits_.SetNbDigits(8);
    digits_.SetPrecision(2);
    digits_.SetBackColor(paper);
    digits_.SetForeColor(ink);
    digits_.SetMaskColor(unlit);
    digits_.SetDisplayMask(TRUE);
    digits_.SetDisplayTitles(TRUE);
    digits_.SetTitle(0, "X");
    digits_.SetTitle(1, "Y");
    digits_.SetValue(0, 12.5);
    digits_.SetValue(1, -98.76);
    digits_.CalculateFontSizeToFit();

    put_into_placeholder();

    new_line(16);
    add_label("X", 20);
    add(WC_EDIT, "12.5", WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, id_value, 100);
    add(WC_BUTTON, "&Show", WS_TABSTOP, id_show, 100);
    add(WC_BUTTON, "&Italic titles", WS_TABSTOP | BS_AUTOCHECKBOX, id_italic, 120);
    new_line();
    add(WC_STATIC, "", 0, id_result, 420);
  }

  // The same control without its wrapper, in its natural size, in the place of a placeholder.
  void put_into_placeholder() {
    add(WC_STATIC, "", SS_BLACKRECT, id_small, 100, 60);
    const gallery::SampleManifest in_force;
    const CString name = "{" + kexGUID(digits_.GetClsid()).get_str() + "}";
    small_ = CreateControl(m_hWnd, &small_host_, id_small, name);
  }

  LRESULT OnShow(WORD, WORD, HWND, BOOL&) {
    digits_.SetValue(0, std::atof(text_of(id_value)));
    CString text;
    text.Format("The control shows %.2f.", digits_.GetValue(0));
    set_text(id_result, text);
    return 0;
  }

  LRESULT OnItalic(WORD, WORD, HWND, BOOL&) {
    kexOleFont font = digits_.GetFont();
    font.SetItalic(!font.GetItalic());
    set_text(id_result, font.GetItalic() ? "The font is italic." : "The font is upright.");
    return 0;
  }

  CWnd view_;  // this window, in the type that the control's class requires for its parent
  kexDigitOCX digits_;
  ATL::CAxWindow small_host_;
  ATL::CComPtr<IUnknown> small_;
};

void tour(gallery::Tour& user) {
  const HWND digits = user.control(id_placeholder);
  user.check("the digits are drawn on their paper", [&] { return user.color_at(digits, 4, 140) == paper; });
  const auto has_ink = [&] {
    RECT size;
    GetClientRect(digits, &size);
    for (int x = 0; x < size.right; x += 2)
      if (user.color_at(digits, x, size.bottom / 4) == ink) return true;
    return false;
  };
  user.check("lit bars have the colour of the ink", has_ink);
  user.check("the placeholder is hidden, and a control at its place", [&] {
    RECT place, control;
    GetWindowRect(user.control(id_small), &place);
    for (HWND host = nullptr; (host = FindWindowExA(user.page(), host, "AtlAxWin140", nullptr));) {
      GetWindowRect(host, &control);
      if (control.left == place.left && control.top == place.top) return !IsWindowVisible(user.control(id_small));
    }
    return false;
  });
  user.write(id_value, "2718.28");
  user.click(id_show);
  user.check_text(id_result, "The control shows 2718.28.");
  user.take_picture("digit_control");
  user.click(id_italic);
  user.check_text(id_result, "The font is italic.");
  user.click(id_italic);
  user.check_text(id_result, "The font is upright.");
}

const gallery::Registration digit_control{
    "com", "Digit control",
    "An ActiveX control that is made by its manifest, and driven through its wrapper's members.",
    gallery::make<DigitControlPage>, tour};

}  // namespace
