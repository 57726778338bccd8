// The examples of the guide's page.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <gtest/gtest.h>

#include <kexlib/framework.h>
#include <kexlib/imaging/static_bitmap.h>

#include <commctrl.h>

#include <imaging/resources.h>
#include <support/decoded_image.h>
#include <support/files.h>
#include <support/message_pump.h>
#include <support/picture.h>

#include <string>
#include <vector>

using Logo = wbzStaticBitmapTemplate<WTL::CStaticT<ATL::CWindow>>;

void paint_picture(HWND window, UINT id, HINSTANCE module, bool enabled);
unsigned __int64 write_lines(const std::vector<std::string>& lines, const CString& path);
HIMAGELIST toolbar_images(HINSTANCE module);
void show_logo(Logo& logo, HWND control, const char* file);
void remove_logo(Logo& logo);
bool save_ellipse(const CString& path);
bool save_screen(const char* path);

namespace {

HINSTANCE module() { return GetModuleHandleA(nullptr); }

HWND make_window(DWORD style) {
  return CreateWindowA("STATIC", "", WS_POPUP | WS_VISIBLE | style, 0, 0, 40, 40, nullptr, nullptr, nullptr, nullptr);
}

TEST(ImagingExamples, PaintAPicture) {
  const HWND window = make_window(0);
  pump_waiting();
  InvalidateRect(window, nullptr, FALSE);
  paint_picture(window, IDB_SQUARE, module(), true);
  EXPECT_FALSE(GetUpdateRect(window, nullptr, FALSE)) << "it has painted";
  EXPECT_EQ(Picture(window).at(0, 0), RGB(255, 255, 255)) << "the edge at the upper left";
  DestroyWindow(window);
}

TEST(ImagingExamples, WriteLines) {
  const TemporaryFolder folder;
  EXPECT_EQ(write_lines({"first\n", "second\n"}, "lines.txt"), 13u);
  EXPECT_EQ(read_file("lines.txt"), "first\nsecond\n");
}

TEST(ImagingExamples, MakeTheImagesOfAToolbar) {
  const HIMAGELIST images = toolbar_images(module());
  EXPECT_EQ(ImageList_GetImageCount(images), 2);
  EXPECT_TRUE(ImageList_Destroy(images));
}

TEST(ImagingExamples, ShowALogo) {
  const TemporaryFolder folder;
  ASSERT_TRUE(save_ellipse("logo.png"));
  const HWND control = make_window(SS_BITMAP);
  const auto shown = [&] { return reinterpret_cast<HBITMAP>(SendMessageA(control, STM_GETIMAGE, IMAGE_BITMAP, 0)); };
  {
    Logo logo;
    show_logo(logo, control, "logo.png");
    BITMAP description{};
    ASSERT_TRUE(GetObjectA(shown(), sizeof description, &description));
    EXPECT_EQ(description.bmWidth, 200);
    remove_logo(logo);
    EXPECT_EQ(shown(), nullptr);
  }
  DestroyWindow(control);
}

TEST(ImagingExamples, SaveAnEllipse) {
  const TemporaryFolder folder;
  ASSERT_TRUE(save_ellipse("ellipse.png"));
  const DecodedImage image = decode_image("ellipse.png");
  ASSERT_EQ(image.width, 200);
  ASSERT_EQ(image.height, 100);
  EXPECT_EQ(image.pixels[0], 0xFF000000);
  EXPECT_EQ(image.pixels[50 * 200 + 100], 0xFFFFFFFF);
}

TEST(ImagingExamples, SaveTheScreen) {
  const TemporaryFolder folder;
  EXPECT_TRUE(save_screen("screen.png"));
  EXPECT_EQ(decode_image("screen.png").width, GetSystemMetrics(SM_CXSCREEN));
}

}  // namespace
