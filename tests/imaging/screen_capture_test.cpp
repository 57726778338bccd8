// Screen capture: a known window on the screen is in the picture.
#include <gtest/gtest.h>

#include <kexlib/imaging/screen_capture.h>

#include <support/decoded_image.h>
#include <support/files.h>
#include <support/import_override.h>
#include <support/message_pump.h>

#include <algorithm>
#include <vector>

namespace {

constexpr COLORREF color = RGB(0x12, 0x34, 0x56);

class ScreenCaptureOnScreen : public testing::Test {
 protected:
  TemporaryFolder folder_;
};

LRESULT CALLBACK paint(HWND window, UINT message, WPARAM wide, LPARAM longer) {
  if (message != WM_ERASEBKGND) return DefWindowProcA(window, message, wide, longer);
  RECT client;
  GetClientRect(window, &client);
  HBRUSH brush = CreateSolidBrush(color);
  FillRect(reinterpret_cast<HDC>(wide), &client, brush);
  DeleteObject(brush);
  return 1;
}

TEST_F(ScreenCaptureOnScreen, ShowsTheWholeScreenWithAKnownWindow) {
  WNDCLASSA window_class{};
  window_class.lpfnWndProc = paint;
  window_class.lpszClassName = "screen_capture_test";
  RegisterClassA(&window_class);
  HWND window = CreateWindowExA(WS_EX_TOPMOST, "screen_capture_test", "", WS_POPUP | WS_VISIBLE, 100, 120, 60, 40,
                                nullptr, nullptr, nullptr, nullptr);
  ASSERT_NE(window, nullptr);

  CString path("screen.png");
  RECT desktop;
  GetWindowRect(GetDesktopWindow(), &desktop);
  DecodedImage picture;
  const auto at = [&](int x, int y) { return picture.pixels[static_cast<size_t>(y * picture.width + x)]; };
  ASSERT_TRUE(pump_until([&] {
    EXPECT_EQ(kex_screen_to_file(path), S_OK);
    picture = decode_image("screen.png");
    return picture.width > 160 && at(130, 140) == 0xFF123456;
  }));
  EXPECT_EQ(path, "screen.png");
  EXPECT_EQ(picture.width, desktop.right);
  EXPECT_EQ(picture.height, desktop.bottom);
  EXPECT_FALSE(picture.has_alpha);
  for (int y = 120; y < 160; ++y)
    for (int x = 100; x < 160; ++x) ASSERT_EQ(at(x, y), 0xFF123456u) << x << ", " << y;
  EXPECT_NE(at(99, 140), 0xFF123456u);
  EXPECT_NE(at(160, 140), 0xFF123456u);
  EXPECT_NE(at(130, 119), 0xFF123456u);
  EXPECT_NE(at(130, 160), 0xFF123456u);
  DestroyWindow(window);
}

TEST_F(ScreenCaptureOnScreen, AFileThatCannotBeWrittenDoesNotMatter) {
  CString nowhere("no such folder\\screen.png");
  EXPECT_EQ(kex_screen_to_file(nowhere), S_OK);
  CString nothing;
  EXPECT_EQ(kex_screen_to_file(nothing), S_OK);
}

HBITMAP WINAPI no_section(HDC, const BITMAPINFO*, UINT, void**, HANDLE, DWORD) { return nullptr; }

TEST_F(ScreenCaptureOnScreen, WithoutAPictureItFails) {
  ImportOverride refuse("kexlib.dll", "gdi32.dll", "CreateDIBSection", no_section);
  ASSERT_TRUE(refuse.made());
  CString path("screen.png");
  EXPECT_EQ(kex_screen_to_file(path), E_FAIL);
  EXPECT_TRUE(files_in(folder_.path()).empty());
}

// A rectangle of the desktop whose left and top must be ignored.
BOOL WINAPI odd_desktop(HWND, RECT* rect) {
  *rect = {-50, -30, 40, 20};
  return TRUE;
}

TEST_F(ScreenCaptureOnScreen, RightAndBottomAreWidthAndHeight) {
  ImportOverride odd("kexlib.dll", "user32.dll", "GetWindowRect", odd_desktop);
  ASSERT_TRUE(odd.made());
  CString path("screen.png");
  EXPECT_EQ(kex_screen_to_file(path), S_OK);
  EXPECT_EQ(decode_image("screen.png").width, 40);
  EXPECT_EQ(decode_image("screen.png").height, 20);
}

std::vector<HDC> taken, released;
HDC WINAPI note_taken(HWND window) {
  HDC dc = GetDC(window);
  if (window == GetDesktopWindow()) taken.push_back(dc);
  return dc;
}
int WINAPI note_released(HWND window, HDC dc) {
  released.push_back(dc);
  return ReleaseDC(window, dc);
}
BOOL WINAPI note_deleted(HDC dc) {
  released.push_back(dc);
  return DeleteDC(dc);
}

TEST_F(ScreenCaptureOnScreen, EachCallTakesOneContextAndGivesNoneBack) {
  const ImportOverride take("kexlib.dll", "user32.dll", "GetDC", note_taken);
  const ImportOverride release("kexlib.dll", "user32.dll", "ReleaseDC", note_released);
  const ImportOverride deletion("kexlib.dll", "gdi32.dll", "DeleteDC", note_deleted);
  ASSERT_TRUE(take.made() && release.made() && deletion.made());
  taken.clear();
  released.clear();
  CString path("screen.png");
  for (int i = 0; i < 3; ++i) kex_screen_to_file(path);
  EXPECT_EQ(taken.size(), 3u);
  for (HDC dc : taken) EXPECT_EQ(std::count(released.begin(), released.end(), dc), 0);
  for (HDC dc : taken) ReleaseDC(GetDesktopWindow(), dc);
}

}  // namespace
