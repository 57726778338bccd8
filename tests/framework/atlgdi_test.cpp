// Device contexts, bitmaps and fonts of WTL.
#include <gtest/gtest.h>

#include <atlbase.h>
#include <atlapp.h>
#include <atlgdi.h>
#include <atlmisc.h>

#include <support/resource_counts.h>

#include <string>

namespace {

constexpr COLORREF red = RGB(255, 0, 0), blue = RGB(0, 0, 255);

int screen_pixels_per_inch() { return CClientDC(nullptr).GetDeviceCaps(LOGPIXELSY); }

bool is_there(HGDIOBJ object) { return GetObjectType(object) != 0; }

// A memory device context with its bitmap.
struct Canvas {
  explicit Canvas(int width = 20, int height = 20) {
    dc.CreateCompatibleDC();
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    bitmap.CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    original = dc.SelectBitmap(bitmap);
  }
  ~Canvas() { dc.SelectBitmap(original); }
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  CBitmap bitmap;
  CDC dc;
  HBITMAP original;
  void* bits = nullptr;
};

template <typename Owner, typename Handle, typename Make>
void expect_ownership(Make make) {
  auto first = make(), second = make(), third = make();
  {
    Owner owner(first);
    EXPECT_EQ(static_cast<decltype(first)>(owner), first);
    owner = first;
    EXPECT_TRUE(is_there(first)) << "it is given what it has";
    owner = second;
    EXPECT_FALSE(is_there(first)) << "another takes its place";
    EXPECT_EQ(owner.Detach(), second);
    EXPECT_EQ(static_cast<decltype(first)>(owner), nullptr);
    EXPECT_TRUE(is_there(second));
    owner.Attach(third);
  }
  EXPECT_FALSE(is_there(third)) << "the owner is gone";
  {
    Handle handle(second);
    Handle copy = handle;
    EXPECT_EQ(static_cast<decltype(first)>(copy), second);
    copy = nullptr;
  }
  EXPECT_TRUE(is_there(second)) << "a handle owns nothing";
  { Owner last(second); }
  EXPECT_FALSE(is_there(second));
}

TEST(Ownership, OfBitmaps) {
  expect_ownership<CBitmap, CBitmapT<false>>([] { return CreateBitmap(2, 2, 1, 32, nullptr); });
}

TEST(Ownership, OfFonts) {
  expect_ownership<CFont, CFontHandle>([] {
    LOGFONT description{};
    return CreateFontIndirect(&description);
  });
}

TEST(Ownership, OfDeviceContexts) {
  expect_ownership<CDC, CDCHandle>([] { return CreateCompatibleDC(nullptr); });
}

TEST(Ownership, DeletingIsReported) {
  CBitmap bitmap(CreateBitmap(2, 2, 1, 32, nullptr));
  EXPECT_TRUE(bitmap.DeleteObject());
  EXPECT_TRUE(bitmap.IsNull());
  CFont font;
  EXPECT_TRUE(font.CreatePointFont(100, "Tahoma"));
  EXPECT_TRUE(font.DeleteObject());
  EXPECT_TRUE(font.IsNull());
  CDC dc;
  EXPECT_TRUE(dc.CreateCompatibleDC());
  EXPECT_TRUE(dc.DeleteDC());
  EXPECT_FALSE(dc.m_hDC);
}

TEST(Ownership, RoundsLeaveNothingBehind) {
  auto round = [] {
    Canvas canvas;
    CFont font;
    font.CreatePointFont(100, "Tahoma");
    canvas.dc.SelectFont(canvas.dc.SelectFont(font));
    CWindowDC screen(nullptr);
    CBitmap bitmap;
    bitmap.CreateCompatibleBitmap(screen, 4, 4);
    CClientDC client(nullptr);
  };
  round();
  ResourceCounts before;
  for (int i = 0; i < 1000; ++i) round();
  EXPECT_EQ(ResourceCounts(), before);
}

TEST(Bitmap, DescribesItself) {
  CBitmap bitmap;
  BITMAP description;
  CClientDC screen(nullptr);
  EXPECT_TRUE(bitmap.CreateCompatibleBitmap(screen, 7, 5));
  ASSERT_TRUE(bitmap.GetBitmap(description));
  EXPECT_EQ(description.bmWidth, 7);
  EXPECT_EQ(description.bmHeight, 5);
}

TEST(Font, APointFontIsMeasuredInTenthsOfAPoint) {
  CFont font;
  ASSERT_TRUE(font.CreatePointFont(120, "Tahoma"));
  LOGFONT description;
  ASSERT_TRUE(font.GetLogFont(description));
  EXPECT_EQ(description.lfHeight, -MulDiv(screen_pixels_per_inch(), 120, 720));
  EXPECT_STREQ(description.lfFaceName, "Tahoma");
  EXPECT_EQ(description.lfCharSet, DEFAULT_CHARSET);
  EXPECT_EQ(description.lfWidth, 0);
  EXPECT_EQ(description.lfWeight, 0);
  EXPECT_EQ(description.lfItalic, 0);
}

TEST(Font, APointFontMayBeBoldAndItalic) {
  CFont font;
  LOGFONT description;
  font.CreatePointFont(100, "Tahoma", nullptr, true);
  ASSERT_TRUE(font.GetLogFont(description));
  EXPECT_EQ(description.lfWeight, FW_BOLD);
  EXPECT_EQ(description.lfItalic, 0);
  font.DeleteObject();
  font.CreatePointFont(100, "Tahoma", nullptr, false, true);
  ASSERT_TRUE(font.GetLogFont(description));
  EXPECT_EQ(description.lfWeight, 0);
  EXPECT_NE(description.lfItalic, 0);
}

TEST(Font, APointFontFollowsTheMappingOfItsDevice) {
  Canvas canvas;
  SetMapMode(canvas.dc, MM_ANISOTROPIC);
  SetWindowExtEx(canvas.dc, 2, 2, nullptr);
  SetViewportExtEx(canvas.dc, 1, -1, nullptr);  // y axis upwards: the sign of the height does not change
  SetViewportOrgEx(canvas.dc, 5, 17, nullptr);  // the origin does not affect a height
  CFont font;
  font.CreatePointFont(120, "Tahoma", canvas.dc);
  LOGFONT description;
  ASSERT_TRUE(font.GetLogFont(description));
  EXPECT_EQ(description.lfHeight, -2 * MulDiv(canvas.dc.GetDeviceCaps(LOGPIXELSY), 120, 720));
}

TEST(Font, APointFontKeepsTheRestOfItsDescriptionAndDoesNotTouchIt) {
  LOGFONT description{};
  description.lfHeight = 100;
  description.lfUnderline = TRUE;
  CFont font;
  ASSERT_TRUE(font.CreatePointFontIndirect(&description));
  EXPECT_EQ(description.lfHeight, 100);
  LOGFONT made;
  ASSERT_TRUE(font.GetLogFont(made));
  EXPECT_EQ(made.lfHeight, -MulDiv(screen_pixels_per_inch(), 100, 720));
  EXPECT_NE(made.lfUnderline, 0);
}

TEST(Font, ATooLongFaceNameIsCut) {
  CFont font;
  ASSERT_TRUE(font.CreatePointFont(100, std::string(100, 'x').c_str()));
  LOGFONT description;
  ASSERT_TRUE(font.GetLogFont(description));
  EXPECT_EQ(std::string(description.lfFaceName), std::string(LF_FACESIZE - 1, 'x'));
}

TEST(LogFont, DescribesAnExistingFontAndMakesOneOfItself) {
  CFont font;
  font.CreatePointFont(90, "Tahoma");
  CLogFont description(font);
  EXPECT_STREQ(description.lfFaceName, "Tahoma");
  EXPECT_EQ(description.lfHeight, -MulDiv(screen_pixels_per_inch(), 90, 720));
  description.SetBold();
  CFont bold(description.CreateFontIndirect());
  EXPECT_EQ(CLogFont(bold).lfWeight, FW_BOLD);
  EXPECT_EQ(CLogFont(static_cast<const LOGFONT&>(description)).lfWeight, FW_BOLD);
}

TEST(DeviceContext, SelectsAndSaysWhatWasSelectedBefore) {
  Canvas canvas;
  EXPECT_EQ(canvas.dc.GetCurrentBitmap(), canvas.bitmap.m_hBitmap);
  EXPECT_EQ(canvas.dc.SelectBitmap(canvas.original), canvas.bitmap.m_hBitmap);
  EXPECT_EQ(canvas.dc.GetCurrentBitmap(), canvas.original);
  canvas.dc.SelectBitmap(canvas.bitmap);

  CFont font;
  font.CreatePointFont(100, "Tahoma");
  HFONT before = canvas.dc.SelectFont(font);
  EXPECT_EQ(canvas.dc.SelectFont(before), font.m_hFont);
}

TEST(DeviceContext, FillsAndCopies) {
  Canvas canvas, other;
  canvas.dc.FillSolidRect(CRect(0, 0, 20, 20), blue);
  canvas.dc.FillSolidRect(CRect(5, 5, 7, 7), red);
  EXPECT_EQ(canvas.dc.GetPixel(4, 5), blue);
  EXPECT_EQ(canvas.dc.GetPixel(5, 5), red);
  EXPECT_EQ(canvas.dc.GetPixel(6, 6), red);
  EXPECT_EQ(canvas.dc.GetPixel(7, 6), blue);

  EXPECT_TRUE(other.dc.BitBlt(1, 1, 10, 10, canvas.dc, 5, 5, SRCCOPY));
  EXPECT_EQ(other.dc.GetPixel(1, 1), red);
  EXPECT_EQ(other.dc.GetPixel(3, 1), blue);

  canvas.dc.FillRect(CRect(0, 0, 20, 20), COLOR_BTNFACE);
  EXPECT_EQ(canvas.dc.GetPixel(9, 9), GetSysColor(COLOR_BTNFACE));
  canvas.dc.FillRect(CRect(0, 0, 20, 20), static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  EXPECT_EQ(canvas.dc.GetPixel(9, 9), RGB(255, 255, 255));
}

TEST(DeviceContext, FillingASolidRectangleKeepsTheBackgroundColour) {
  Canvas canvas;
  SetBkColor(canvas.dc, red);
  canvas.dc.FillSolidRect(CRect(0, 0, 1, 1), blue);
  EXPECT_EQ(GetBkColor(canvas.dc), red);
}

TEST(DeviceContext, ShowsBits) {
  Canvas canvas;
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), 2, 1, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  const DWORD bits[] = {0x00FF0000, 0x000000FF};
  EXPECT_EQ(canvas.dc.SetDIBitsToDevice(3, 4, 2, 1, 0, 0, 0, 1, bits, &info, DIB_RGB_COLORS), 1);
  EXPECT_EQ(canvas.dc.GetPixel(3, 4), red);
  EXPECT_EQ(canvas.dc.GetPixel(4, 4), blue);
}

TEST(DeviceContext, DrawsEdgesAndFocus) {
  Canvas canvas;
  canvas.dc.FillSolidRect(CRect(0, 0, 20, 20), blue);
  CRect rect(0, 0, 20, 20);
  EXPECT_TRUE(canvas.dc.DrawEdge(rect, EDGE_RAISED, BF_RECT | BF_ADJUST));
  EXPECT_EQ(rect, CRect(2, 2, 18, 18));
  EXPECT_NE(canvas.dc.GetPixel(0, 0), blue);
  EXPECT_EQ(canvas.dc.GetPixel(2, 2), blue);

  canvas.dc.DrawFocusRect(CRect(5, 5, 15, 15));
  bool dotted = false;
  for (int x = 5; x < 15; ++x) dotted |= canvas.dc.GetPixel(x, 5) != blue;
  EXPECT_TRUE(dotted);
}

TEST(DeviceContext, WritesAndMeasuresText) {
  Canvas canvas(100, 40);
  canvas.dc.FillSolidRect(CRect(0, 0, 100, 40), blue);
  SIZE whole{}, half{}, system{};
  EXPECT_TRUE(canvas.dc.GetTextExtent("mmmm", -1, &whole));
  EXPECT_TRUE(canvas.dc.GetTextExtent("mmmm", 2, &half));
  GetTextExtentPoint32(canvas.dc, "mmmm", 4, &system);
  EXPECT_EQ(whole.cx, system.cx);
  EXPECT_EQ(2 * half.cx, whole.cx);

  canvas.dc.SetBkMode(TRANSPARENT);
  EXPECT_EQ(canvas.dc.SetTextColor(red), RGB(0, 0, 0));
  EXPECT_TRUE(canvas.dc.TextOut(0, 0, "mmmm"));
  EXPECT_EQ(canvas.dc.SetBkMode(OPAQUE), TRANSPARENT);
  bool written = false;
  for (int x = 0; x < whole.cx; ++x) written |= canvas.dc.GetPixel(x, whole.cy / 2) != blue;
  EXPECT_TRUE(written);
  EXPECT_EQ(canvas.dc.GetPixel(99, 39), blue);
}

// Counts WM_PAINT.
class Painted : public CWindowImpl<Painted, CWindow, CFrameWinTraits> {
 public:
  BEGIN_MSG_MAP(Painted)
    MESSAGE_HANDLER(WM_PAINT, OnPaint)
  END_MSG_MAP()
  LRESULT OnPaint(UINT, WPARAM, LPARAM, BOOL&) {
    CPaintDC dc(m_hWnd);
    to_paint = dc.m_ps.rcPaint;
    dc.FillSolidRect(&to_paint, red);
    return 0;
  }
  RECT to_paint{};
};

TEST(PaintDCOnScreen, PaintsWhatIsInvalidAndMakesItValid) {
  Painted window;
  RECT place{10, 10, 210, 210};
  window.Create(nullptr, place, "painted", WS_POPUP | WS_VISIBLE);
  window.UpdateWindow();
  ResourceCounts before;
  window.InvalidateRect(CRect(10, 20, 30, 40), FALSE);
  EXPECT_TRUE(GetUpdateRect(window, nullptr, FALSE));
  window.UpdateWindow();
  EXPECT_FALSE(GetUpdateRect(window, nullptr, FALSE));
  EXPECT_EQ(CRect(window.to_paint), CRect(10, 20, 30, 40));
  EXPECT_EQ(CClientDC(window).GetPixel(15, 25), red);
  EXPECT_EQ(ResourceCounts(), before);
  window.DestroyWindow();
}

TEST(WindowDCOnScreen, CoversTheFrameToo) {
  Painted window;
  RECT place{10, 10, 210, 210};
  window.Create(nullptr, place, "frame", WS_POPUP | WS_CAPTION | WS_VISIBLE);
  RECT whole, inside;
  GetClipBox(CWindowDC(window), &whole);
  GetClipBox(CClientDC(window), &inside);
  EXPECT_EQ(CRect(whole).Height(), 200);
  EXPECT_LT(CRect(inside).Height(), 200);
  window.DestroyWindow();
}

}  // namespace
