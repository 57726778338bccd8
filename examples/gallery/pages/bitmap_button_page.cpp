// Bitmap buttons: all types, enabled and disabled, with tooltips.
#include <kexlib/controls.h>

#include <gallery/page.h>
#include <gallery/resources.h>
#include <gallery/tour.h>

#include <deque>
#include <iterator>

namespace {

// The identifier of a button is one of these bases plus the index of its type in the table of types.
enum { id_enabled = 100, id_disabled = 110, id_clicked = 120, id_picture };

constexpr struct {
  kexWTLButtonType type;
  const char* name;
} types[] = {{kexBtnTypeThemed, "Themed"},
             {kexBtnTypePlain, "Plain"},
             {static_cast<kexWTLButtonType>(2), "Themed, of another type"}};
constexpr int themed = 0, plain = 1, other = 2, type_count = 3;

constexpr int picture_size = 32, button_width = 64, button_height = 44, column = 150, label_width = 80;

class BitmapButtonPage : public gallery::Page {
 public:
  BitmapButtonPage() { images_.Create(picture_size, picture_size, ILC_COLOR32, 2 * 2 * type_count, 2); }
  BitmapButtonPage(const BitmapButtonPage&) = delete;
  BitmapButtonPage& operator=(const BitmapButtonPage&) = delete;
  ~BitmapButtonPage() override { images_.Destroy(); }

  BEGIN_MSG_MAP(BitmapButtonPage)
    COMMAND_RANGE_HANDLER(id_enabled, id_enabled + other, OnClick)
    COMMAND_ID_HANDLER(id_picture, OnPicture)
  END_MSG_MAP()

 private:
  void add_controls() override {
    ModifyStyle(WS_CLIPCHILDREN, 0);  // the buttons let the page paint their background
    take_place(label_width, 16);
    for (const auto& type : types) add(WC_STATIC, type.name, 0, -1, column - gap, 16);
    add_line("Enabled:", id_enabled, 0);
    add_line("Disabled:", id_disabled, WS_DISABLED);
    new_line(24);
    take_place(label_width);
    add(WC_BUTTON, "&Another picture", WS_TABSTOP, id_picture, 130);
    new_line(16);
    take_place(label_width);
    add(WC_STATIC, "Nothing is clicked yet.", 0, id_clicked, 300);
  }

  void add_line(const char* label, int first_id, DWORD style) {
    new_line(12);
    add(WC_STATIC, label, SS_CENTERIMAGE, -1, label_width, button_height);
    const HINSTANCE module = ATL::_AtlBaseModule.GetResourceInstance();
    for (int i = 0; i < type_count; ++i) {
      const ATL::CWindow window = add(WC_BUTTON, "", WS_TABSTOP | style, first_id + i, button_width, button_height);
      take_place(column - button_width - 2 * gap, button_height);
      kexWTLBitmapButton& button = buttons_.emplace_back(types[i].type);
      button.SetInfo(window, &images_, IDB_SAVE, "Save the file", module);
      save_.push_back(images_.GetImageCount() - 2);  // SetInfo has added the picture and its disabled version
      print_.push_back(button.AddImage(&images_, IDB_PRINT, module));
    }
  }

  LRESULT OnClick(WORD, WORD id, HWND, BOOL&) {
    CString clicked;
    clicked.Format("%s: clicked.", types[id - id_enabled].name);
    set_text(id_clicked, clicked);
    return 0;
  }

  LRESULT OnPicture(WORD, WORD, HWND, BOOL&) {
    prints_ = !prints_;
    for (size_t i = 0; i < buttons_.size(); ++i) buttons_[i].SetImage(prints_ ? print_[i] : save_[i]);
    return 0;
  }

  WTL::CImageListT<false> images_;
  std::deque<kexWTLBitmapButton> buttons_;  // a deque does not move them: their windows refer to them
  std::vector<int> save_, print_;           // the indexes of their pictures
  bool prints_ = false;
};

// The visible tooltip of the gallery's thread.
std::string shown_tooltip(HWND frame) {
  std::string text;
  EnumThreadWindows(
      GetWindowThreadProcessId(frame, nullptr),
      [](HWND window, LPARAM result) -> BOOL {
        char name[32] = "", shown[80] = "";
        GetClassNameA(window, name, sizeof name);
        if (std::string(name) != TOOLTIPS_CLASSA || !IsWindowVisible(window)) return TRUE;
        TOOLINFOA tool{};
        tool.cbSize = sizeof tool;
        SendMessageA(window, TTM_GETCURRENTTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
        tool.lpszText = shown;
        SendMessageA(window, TTM_GETTEXTA, sizeof shown, reinterpret_cast<LPARAM>(&tool));
        *reinterpret_cast<std::string*>(result) = shown;
        return FALSE;
      },
      reinterpret_cast<LPARAM>(&text));
  return text;
}

void tour(gallery::Tour& user) {
  constexpr COLORREF blue = RGB(40, 90, 190), printer = RGB(190, 195, 200);
  // A position in the picture, which is centred in the button.
  const auto color = [&](int id, int x, int y) {
    return gallery::Tour::color_at(user.control(id), (button_width - picture_size) / 2 + x,
                                   (button_height - picture_size) / 2 + y);
  };
  const auto is_grey = [](COLORREF shown) {
    return GetRValue(shown) == GetGValue(shown) && GetGValue(shown) == GetBValue(shown);
  };
  constexpr POINT disk{6, 13}, paper_feed{6, 14};

  for (int i = 0; i < type_count; ++i)
    user.check("the button shows its picture", [&] { return color(id_enabled + i, disk.x, disk.y) == blue; });
  user.check("a themed button greys the picture when it is disabled",
             [&] { return is_grey(color(id_disabled + themed, disk.x, disk.y)); });
  for (const int type : {plain, other})
    user.check("other buttons keep its colours", [&] { return color(id_disabled + type, disk.x, disk.y) == blue; });

  for (int i = 0; i < type_count; ++i) {
    user.click(id_enabled + i);
    user.check_text(id_clicked, std::string(types[i].name) + ": clicked.");
  }
  user.click(id_disabled + plain);
  user.check("a disabled button is not clicked",
             [&] { return user.text(id_clicked) == std::string(types[other].name) + ": clicked."; });

  const auto edge = [&] { return gallery::Tour::color_at(user.control(id_enabled + plain), 0, button_height / 2); };
  const COLORREF face = GetSysColor(COLOR_BTNFACE);
  user.point_at(user.control(id_enabled + plain));
  user.check("a plain button has an edge under the mouse", [&] { return edge() != face; });
  user.check("the tooltip is shown", [&] { return shown_tooltip(user.frame()) == "Save the file"; });
  user.take_picture("bitmap_button");

  user.click(id_picture);
  user.check("a plain button has no edge otherwise", [&] {
    // The system can miss a leave that is too fast. In that case, the mouse leaves again.
    if (edge() != face) {
      user.point_at(user.control(id_enabled + plain));
      user.point_at(user.control(id_picture));
    }
    return edge() == face;
  });
  for (int i = 0; i < type_count; ++i)
    user.check("the button shows the other picture",
               [&] { return color(id_enabled + i, paper_feed.x, paper_feed.y) == printer; });
  user.click(id_picture);
  user.check("the button shows the first picture again", [&] { return color(id_enabled, disk.x, disk.y) == blue; });
}

const gallery::Registration bitmap_button{
    "controls", "Bitmap buttons",
    "Push buttons with a picture on the face that the system's visual style gives them. Each has a tooltip.",
    gallery::make<BitmapButtonPage>, tour};

}  // namespace
