// Button menu: a button, and beside it a small arrow button that opens a menu of further commands.
#include <kexlib/controls.h>

#include <gallery/page.h>
#include <gallery/resources.h>
#include <gallery/tour.h>

namespace {

enum { id_save = 100, id_more, id_chosen };

class ButtonMenuPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(ButtonMenuPage)
    COMMAND_ID_HANDLER(id_save, OnSave)
    COMMAND_ID_HANDLER(ID_SAVE_COPY, OnSaveCopy)
    COMMAND_ID_HANDLER(ID_SAVE_ALL, OnSaveAll)
    REFLECT_NOTIFICATIONS()
  END_MSG_MAP()

 private:
  void add_controls() override {
    add(WC_BUTTON, "&Save", WS_TABSTOP, id_save, 100);
    more_.SetMenu(ATL::_AtlBaseModule.GetResourceInstance(), IDR_SAVE_MENU);
    more_.SubclassWindow(add(WC_BUTTON, "More", WS_TABSTOP | BS_CHECKBOX | BS_PUSHLIKE, id_more, line_height));
    new_line(56);  // below the menu
    add(WC_STATIC, "Nothing is chosen yet.", 0, id_chosen, 300);
  }

  LRESULT OnSave(WORD, WORD, HWND, BOOL&) {
    set_text(id_chosen, "Saved.");
    return 0;
  }

  LRESULT OnSaveCopy(WORD, WORD, HWND, BOOL&) {
    set_text(id_chosen, "A copy is saved.");
    return 0;
  }

  LRESULT OnSaveAll(WORD, WORD, HWND, BOOL&) {
    set_text(id_chosen, "Everything is saved.");
    return 0;
  }

  atlButtonMenu more_;
};

void tour(gallery::Tour& user) {
  const HWND arrow = user.control(id_more);
  user.click(id_save);
  user.check_text(id_chosen, "Saved.");

  user.click(arrow);
  HWND menu = user.wait_for_menu();
  RECT button, opened;
  GetWindowRect(arrow, &button);
  GetWindowRect(menu, &opened);
  user.check("the menu opens below the button",
             [&] { return opened.left == button.left && opened.top == button.bottom; });
  user.check("the button stays pressed", [&] { return user.is_checked(id_more); });
  user.check("the button shows an arrow", [&] {
    return gallery::Tour::color_at(arrow, 11, 12) != gallery::Tour::color_at(arrow, 4, 12) &&
           gallery::Tour::color_at(arrow, 4, 12) != GetSysColor(COLOR_BTNFACE);
  });
  const auto first_item = [&] { return gallery::Tour::color_at(menu, 8, 12); };
  const COLORREF unmarked = first_item();
  user.press(VK_DOWN);
  user.check("the first item is marked", [&] { return first_item() != unmarked; });
  user.take_picture("button_menu");
  user.press(VK_RETURN);
  user.wait_for_end_of(menu);
  user.check_text(id_chosen, "A copy is saved.");
  user.check("the button is up again", [&] { return !user.is_checked(id_more); });

  user.click(arrow);
  menu = user.wait_for_menu();
  user.press('A');
  user.wait_for_end_of(menu);
  user.check_text(id_chosen, "Everything is saved.");

  user.click(arrow);
  menu = user.wait_for_menu();
  user.press(VK_ESCAPE);
  user.wait_for_end_of(menu);
  user.check("the button is up where nothing was chosen", [&] { return !user.is_checked(id_more); });
  user.check_text(id_chosen, "Everything is saved.");
}

const gallery::Registration button_menu{"controls", "Button menus",
                                        "A small button with an arrow opens a menu below itself.",
                                        gallery::make<ButtonMenuPage>, tour};

}  // namespace
