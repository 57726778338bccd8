// Test object identifiers: the name that identifies an object to automated tests.
#include <kexlib/text.h>

#include <atlcomcli.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <cstdlib>

namespace {

enum { id_text = 100, id_put_text, id_put_number, id_clear, id_type, id_value, id_configured, id_special };
constexpr char special_text[] = "auto";

class TestObjectIdPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(TestObjectIdPage)
    COMMAND_ID_HANDLER(id_put_text, OnPut)
    COMMAND_ID_HANDLER(id_put_number, OnPut)
    COMMAND_ID_HANDLER(id_clear, OnPut)
  END_MSG_MAP()

 private:
  void add_controls() override {
    constexpr int label_width = 110;
    add_label("Identifier", label_width);
    add(WC_EDIT, special_text, WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, id_text, 230);
    new_line();
    take_place(label_width);
    add(WC_BUTTON, "Set as &text", WS_TABSTOP, id_put_text, 110);
    add(WC_BUTTON, "Set as &number", WS_TABSTOP, id_put_number, 112);
    add(WC_BUTTON, "&Clear", WS_TABSTOP, id_clear, 110);
    new_line(24);
    add_label("Its type", label_width);
    add(WC_STATIC, "", SS_CENTERIMAGE, id_type, 230);
    new_line();
    add_label("Its value", label_width);
    add(WC_STATIC, "", SS_CENTERIMAGE, id_value, 230);
    new_line();
    take_place(label_width);
    add(WC_BUTTON, "is set", BS_CHECKBOX, id_configured, 230);
    new_line();
    take_place(label_width);
    add(WC_BUTTON, "is the special text \"auto\"", BS_CHECKBOX, id_special, 230);
    show();
  }

  LRESULT OnPut(WORD, WORD command, HWND, BOOL&) {
    const CString text = text_of(id_text);
    identifier_.put_id(command == id_put_text     ? ATL::CComVariant(text.GetString())
                       : command == id_put_number ? ATL::CComVariant(std::atol(text))
                                                  : ATL::CComVariant());
    show();
    return 0;
  }

  void show() {
    ATL::CComVariant value;
    identifier_.get_id(&value);
    set_text(id_type, value.vt == VT_BSTR ? "text (VT_BSTR)"
                      : value.vt == VT_I4 ? "number (VT_I4)"
                                          : "none (VT_EMPTY)");
    set_text(id_value, SUCCEEDED(value.ChangeType(VT_BSTR)) ? CString(value.bstrVal) : CString());
    check(id_configured, identifier_.is_configured());
    check(id_special, identifier_.is_special_value());
  }

  kexTestObjectID identifier_{special_text};
};

void tour(gallery::Tour& user) {
  const auto check_states = [&](bool configured, bool special) {
    user.check(configured ? "the identifier is set" : "the identifier is not set",
               [&] { return user.is_checked(id_configured) == configured; });
    user.check(special ? "it is the special text" : "it is not the special text",
               [&] { return user.is_checked(id_special) == special; });
  };
  user.write(id_text, "42");
  user.click(id_put_number);
  user.check_text(id_type, "number (VT_I4)");
  user.check_text(id_value, "42");
  check_states(true, false);
  user.write(id_text, "Auto");
  user.click(id_put_text);
  user.check_text(id_value, "Auto");
  check_states(true, false);  // case-sensitive
  user.write(id_text, special_text);
  user.click(id_put_text);
  user.check_text(id_type, "text (VT_BSTR)");
  user.check_text(id_value, special_text);
  check_states(true, true);
  user.take_picture("test_object_id");
  user.click(id_clear);
  user.check_text(id_type, "none (VT_EMPTY)");
  check_states(false, false);
}

const gallery::Registration test_object_id{
    "text", "Test object identifiers",
    "The name by which an object presents itself to automated tests; one text may have a meaning of its own.",
    gallery::make<TestObjectIdPage>, tour};

}  // namespace
