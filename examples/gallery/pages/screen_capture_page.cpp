// Screen capture: the whole screen as a PNG file, shown smaller.
#include <kexlib/imaging.h>

#include <atlimage.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <cstdlib>

namespace {

enum { id_path = 100, id_capture, id_result, id_preview };

constexpr char png_file[] = "screen.png";
constexpr int preview_width = 400, preview_height = 300;

class ScreenCapturePage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(ScreenCapturePage)
    COMMAND_ID_HANDLER(id_capture, OnCapture)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add_label("&File:", 40);
    add(WC_EDIT, png_file, WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, id_path, 240);
    add(WC_BUTTON, "&Capture the screen", WS_TABSTOP, id_capture, 130);
    new_line();
    take_place(40);
    add(WC_STATIC, "", 0, id_result, 400);
    new_line(0);
    take_place(40);
    preview_.get_static().Attach(add(WC_STATIC, "", SS_BITMAP, id_preview, preview_width, preview_height));
  }

  LRESULT OnCapture(WORD, WORD, HWND, BOOL&) {
    CString path = text_of(id_path);
    ATL::CImage image;
    // Succeeds even if the file cannot be written.
    if (FAILED(kex_screen_to_file(path))) {
      set_text(id_result, "There is no screen to be seen.");
    } else if (FAILED(image.Load(path))) {
      set_text(id_result, "The file could not be written.");
    } else {
      CString size;
      size.Format("%d x %d pixels", image.GetWidth(), image.GetHeight());
      set_text(id_result, size);
    }
    preview_.set_internal_bitmap(image.IsNull() ? nullptr : make_smaller(image));
    return 0;
  }

  static HBITMAP make_smaller(const ATL::CImage& image) {
    const WTL::CClientDC screen(nullptr);
    WTL::CDC from, to;
    from.CreateCompatibleDC(screen);
    to.CreateCompatibleDC(screen);
    const HBITMAP smaller = ::CreateCompatibleBitmap(screen, preview_width, preview_height);
    const HBITMAP old_from = from.SelectBitmap(image), old_to = to.SelectBitmap(smaller);
    ::SetStretchBltMode(to, HALFTONE);
    ::SetBrushOrgEx(to, 0, 0, nullptr);
    ::StretchBlt(to, 0, 0, preview_width, preview_height, from, 0, 0, image.GetWidth(), image.GetHeight(), SRCCOPY);
    to.SelectBitmap(old_to);
    from.SelectBitmap(old_from);
    return smaller;
  }

  // The destructor would not delete a copy that the control still shows.
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL& handled) {
    preview_.SetBitmap(nullptr);
    handled = FALSE;
    return 0;
  }

  wbzStaticBitmapTemplate<WTL::CStatic> preview_;
};

void tour(gallery::Tour& user) {
  const int width = GetSystemMetrics(SM_CXSCREEN), height = GetSystemMetrics(SM_CYSCREEN);
  const auto preview = [&](int x, int y) { return gallery::Tour::color_at(user.control(id_preview), x, y); };

  user.write(id_path, "no folder\\screen.png");
  user.click(id_capture);
  user.check_text(id_result, "The file could not be written.");
  user.check("nothing is shown then", [&] { return preview(1, 1) == GetSysColor(COLOR_BTNFACE); });

  user.write(id_path, png_file);
  user.click(id_capture);
  user.check_text(id_result, std::to_string(width) + " x " + std::to_string(height) + " pixels");
  // The lower middle of the page is empty, and so is this part of its picture.
  RECT page;
  GetWindowRect(user.page(), &page);
  const POINT place{(page.left + page.right) / 2, page.bottom - 10};
  user.check("the page is in the picture", [&] {
    return preview(place.x * preview_width / width, place.y * preview_height / height) == GetSysColor(COLOR_BTNFACE);
  });
  user.check("so is what lies behind the gallery", [&] {
    return preview(preview_width - 2, preview_height - 2) ==
           gallery::Tour::color_at(GetDesktopWindow(), width - 2, height - 2);
  });
  user.take_picture("screen_capture");
  user.tell_of_file(png_file);
}

const gallery::Registration screen_capture{"imaging", "Screen capture", "The whole screen, written as a PNG file.",
                                           gallery::make<ScreenCapturePage>, tour};

}  // namespace
