// Static bitmaps: a control that shows a bitmap resource, and one that shows an image file.
#include <kexlib/imaging.h>

#include <atlimage.h>

#include <gallery/page.h>
#include <gallery/resources.h>
#include <gallery/tour.h>

#include <cmath>

namespace {

enum { id_resource = 100, id_other, id_path, id_load, id_file, id_size };

constexpr char png_file[] = "alpha.png";
constexpr int png_size = 160;
constexpr BYTE half = 128;
constexpr COLORREF orange = RGB(240, 120, 30);

// A disc with a half transparent rim.
void write_png_with_alpha() {
  hnDuctImage image(png_size, png_size, true);
  for (int y = 0; y < png_size; ++y)
    for (int x = 0; x < png_size; ++x) {
      constexpr double middle = (png_size - 1) / 2.0, inner = 45, outer = 75;
      const double distance = std::hypot(x - middle, y - middle);
      const DWORD alpha = distance < inner ? 255 : distance < outer ? half : 0;
      image.row(y)[x] =
          alpha << 24 | DWORD{GetRValue(orange)} << 16 | DWORD{GetGValue(orange)} << 8 | GetBValue(orange);
    }
  kexPNGGenerationThread::write_image(&image, png_file, nullptr);
}

class StaticBitmapPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(StaticBitmapPage)
    COMMAND_ID_HANDLER(id_other, OnOther)
    COMMAND_ID_HANDLER(id_load, OnLoad)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add_label("A bitmap resource:", 120);
    resource_.get_static().Attach(add(WC_STATIC, "", SS_BITMAP, id_resource, 160, 96));
    take_place(132, 0);
    add(WC_BUTTON, "&Another one", WS_TABSTOP, id_other, 100);
    new_line(24);
    add_label("An image file:", 120);
    add(WC_EDIT, png_file, WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, id_path, 300);
    add(WC_BUTTON, "&Load", WS_TABSTOP, id_load, 100);
    new_line();
    take_place(120);
    file_.get_static().Attach(add(WC_STATIC, "", SS_BITMAP, id_file, png_size, png_size));
    new_line();
    take_place(120);
    add(WC_STATIC, "", 0, id_size, 300);
    write_png_with_alpha();
    show_resource();
    show_file();
  }

  void show_resource() {
    resource_.set_bitmap_from_id_given_resources(ATL::_AtlBaseModule.GetResourceInstance(), bitmap_);
  }

  void show_file() {
    file_.set_bitmap_from_file(text_of(id_path));
    CString size("That is no image.");
    ATL::CImage image;
    if (SUCCEEDED(image.Load(text_of(id_path))))
      size.Format("%d x %d pixels, %d bits each", image.GetWidth(), image.GetHeight(), image.GetBPP());
    set_text(id_size, size);
  }

  LRESULT OnOther(WORD, WORD, HWND, BOOL&) {
    bitmap_ = bitmap_ == IDB_DAY ? IDB_NIGHT : IDB_DAY;
    show_resource();
    return 0;
  }

  LRESULT OnLoad(WORD, WORD, HWND, BOOL&) {
    show_file();
    return 0;
  }

  // The destructor would not delete a copy that the control still shows.
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL& handled) {
    resource_.SetBitmap(nullptr);
    file_.SetBitmap(nullptr);
    handled = FALSE;
    return 0;
  }

  UINT bitmap_ = IDB_DAY;
  wbzStaticBitmapTemplate<WTL::CStatic> resource_, file_;
};

// Blending may round up or down.
bool is_near(COLORREF one, COLORREF other) {
  const auto near_each_other = [](int left, int right) { return std::abs(left - right) <= 2; };
  return near_each_other(GetRValue(one), GetRValue(other)) && near_each_other(GetGValue(one), GetGValue(other)) &&
         near_each_other(GetBValue(one), GetBValue(other));
}

void tour(gallery::Tour& user) {
  const COLORREF face = GetSysColor(COLOR_BTNFACE);
  constexpr COLORREF sun = RGB(255, 210, 40), moon = RGB(235, 235, 210);
  const auto resource = [&](int x, int y) { return gallery::Tour::color_at(user.control(id_resource), x, y); };
  const auto file = [&](int x) { return gallery::Tour::color_at(user.control(id_file), x, png_size / 2); };
  constexpr int outside = 1, rim = 20, inside = png_size / 2;

  user.check("the day is shown", [&] { return resource(128, 28) == sun; });
  user.click(id_other);
  user.check("the night is shown", [&] { return resource(128, 28) == moon; });
  user.click(id_other);

  user.write(id_path, "missing.png");
  user.click(id_load);
  user.check_text(id_size, "That is no image.");
  user.check("nothing is shown of a file that is missing", [&] { return file(inside) == face; });
  user.write(id_path, png_file);
  user.click(id_load);
  user.check_text(id_size, "160 x 160 pixels, 32 bits each");
  user.check("the disc is shown", [&] { return file(inside) == orange; });
  user.check("the rim lets half of the page through", [&] {
    const auto mixed = [](int above, int below) { return (above * half + below * (255 - half)) / 255; };
    return is_near(file(rim), RGB(mixed(GetRValue(orange), GetRValue(face)), mixed(GetGValue(orange), GetGValue(face)),
                                  mixed(GetBValue(orange), GetBValue(face))));
  });
  user.check("the page is seen beside the disc", [&] { return file(outside) == face; });
  user.take_picture("static_bitmap");
  user.tell_of_file(png_file);
}

const gallery::Registration static_bitmap{
    "imaging", "Static bitmaps",
    "A control that shows a bitmap from a resource or an image file, and deletes what is its own.",
    gallery::make<StaticBitmapPage>, tour};

}  // namespace
