// WTL's wrappers of device contexts, bitmaps and fonts.
//
// A class with t_bManaged owns its handle: the destructor and an assignment delete it. The others, named ...Handle,
// only hold a handle and may be passed by value. A copy refers to the same object; Detach() either the owner or its
// copy.
//
//     CDC memory;
//     memory.CreateCompatibleDC();
//     HBITMAP old = memory.SelectBitmap(bitmap);
//     ...
//     memory.SelectBitmap(old);
#ifndef FRAMEWORK_ATLGDI_H
#define FRAMEWORK_ATLGDI_H

#ifndef FRAMEWORK_ATLAPP_H
#error "atlgdi.h requires atlapp.h to be included first"
#endif

#include <cstdlib>
#include <cstring>
#include <utility>

// Methods here; windowsx.h has macros of these names.
#undef SelectBitmap
#undef SelectFont

namespace WTL {

// A device-dependent bitmap or a DIB section.
template <bool t_bManaged>
class CBitmapT {
 public:
  CBitmapT(HBITMAP bitmap = nullptr) noexcept : m_hBitmap(bitmap) {}
  CBitmapT(const CBitmapT&) = default;
  CBitmapT& operator=(const CBitmapT&) = default;
  ~CBitmapT() {
    if (t_bManaged && m_hBitmap) DeleteObject();
  }

  CBitmapT& operator=(HBITMAP bitmap) noexcept {
    Attach(bitmap);
    return *this;
  }
  operator HBITMAP() const noexcept { return m_hBitmap; }
  bool IsNull() const noexcept { return !m_hBitmap; }

  void Attach(HBITMAP bitmap) noexcept {
    if (t_bManaged && m_hBitmap && m_hBitmap != bitmap) DeleteObject();
    m_hBitmap = bitmap;
  }
  HBITMAP Detach() noexcept { return std::exchange(m_hBitmap, nullptr); }
  // Returns FALSE, and keeps the bitmap, if it is selected into a device context.
  BOOL DeleteObject() noexcept {
    ATLASSERT(m_hBitmap);
    if (!::DeleteObject(m_hBitmap)) return FALSE;
    m_hBitmap = nullptr;
    return TRUE;
  }

  HBITMAP CreateCompatibleBitmap(HDC dc, int width, int height) noexcept {
    ATLASSERT(!m_hBitmap);
    return m_hBitmap = ::CreateCompatibleBitmap(dc, width, height);
  }
  HBITMAP CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section,
                           DWORD offset) noexcept {
    ATLASSERT(!m_hBitmap);
    return m_hBitmap = ::CreateDIBSection(dc, info, usage, bits, section, offset);
  }

  // Returns its description; false if the handle is no bitmap.
  bool GetBitmap(BITMAP& description) const noexcept {
    ATLASSERT(m_hBitmap);
    return ::GetObject(m_hBitmap, sizeof description, &description) == sizeof description;
  }

  HBITMAP m_hBitmap;
};
using CBitmapHandle = CBitmapT<false>;
using CBitmap = CBitmapT<true>;

// The description of a font.
class CLogFont : public LOGFONT {
 public:
  CLogFont() noexcept : LOGFONT{} {}
  explicit CLogFont(const LOGFONT& description) noexcept : LOGFONT(description) {}
  // The description of an existing font.
  explicit CLogFont(HFONT font) noexcept : LOGFONT{} {
    ::GetObject(font, sizeof(LOGFONT), static_cast<LOGFONT*>(this));
  }

  void SetBold() noexcept { lfWeight = FW_BOLD; }

  // Returns the font; the caller owns it.
  HFONT CreateFontIndirect() noexcept { return ::CreateFontIndirect(this); }

  static constexpr int points_per_inch = 72;
};

// A font.
template <bool t_bManaged>
class CFontT {
 public:
  CFontT(HFONT font = nullptr) noexcept : m_hFont(font) {}
  CFontT(const CFontT&) = default;
  CFontT& operator=(const CFontT&) = default;
  ~CFontT() {
    if (t_bManaged && m_hFont) DeleteObject();
  }

  CFontT& operator=(HFONT font) noexcept {
    Attach(font);
    return *this;
  }
  operator HFONT() const noexcept { return m_hFont; }
  bool IsNull() const noexcept { return !m_hFont; }

  void Attach(HFONT font) noexcept {
    if (t_bManaged && m_hFont && m_hFont != font) DeleteObject();
    m_hFont = font;
  }
  HFONT Detach() noexcept { return std::exchange(m_hFont, nullptr); }
  BOOL DeleteObject() noexcept {
    ATLASSERT(m_hFont);
    if (!::DeleteObject(m_hFont)) return FALSE;
    m_hFont = nullptr;
    return TRUE;
  }

  HFONT CreateFontIndirect(const LOGFONT* description) noexcept {
    ATLASSERT(!m_hFont);
    return m_hFont = ::CreateFontIndirect(description);
  }
  // Creates a font from a face name and a height in tenths of a point, for a device (null: the screen) in its current
  // mapping mode. A name that is too long is truncated.
  HFONT CreatePointFont(int tenthsOfAPoint, LPCTSTR face, HDC dc = nullptr, bool bold = false,
                        bool italic = false) noexcept {
    LOGFONT description{};
    description.lfCharSet = DEFAULT_CHARSET;
    description.lfHeight = tenthsOfAPoint;
    if (bold) description.lfWeight = FW_BOLD;
    if (italic) description.lfItalic = TRUE;
    ::lstrcpyn(description.lfFaceName, face, LF_FACESIZE);
    return CreatePointFontIndirect(&description, dc);
  }
  // The same, with lfHeight in tenths of a point.
  HFONT CreatePointFontIndirect(const LOGFONT* description, HDC dc = nullptr) noexcept {
    constexpr int tenths_of_a_point_per_inch = 10 * CLogFont::points_per_inch;
    HDC screen = dc ? nullptr : ::GetDC(nullptr);
    HDC device = dc ? dc : screen;
    // Convert two points from device to logical units: their distance is the height.
    POINT points[] = {{0, ::MulDiv(::GetDeviceCaps(device, LOGPIXELSY), static_cast<int>(description->lfHeight),
                                   tenths_of_a_point_per_inch)},
                      {0, 0}};
    ::DPtoLP(device, points, 2);
    if (screen) ::ReleaseDC(nullptr, screen);

    LOGFONT sized = *description;
    sized.lfHeight = -std::abs(points[0].y - points[1].y);
    return CreateFontIndirect(&sized);
  }

  bool GetLogFont(LOGFONT& description) const noexcept {
    ATLASSERT(m_hFont);
    return ::GetObject(m_hFont, sizeof description, &description) == sizeof description;
  }

  HFONT m_hFont;
};
using CFontHandle = CFontT<false>;
using CFont = CFontT<true>;

// A device context. Select the previous objects again before it is deleted.
template <bool t_bManaged>
class CDCT {
 public:
  CDCT(HDC dc = nullptr) noexcept : m_hDC(dc) {}
  CDCT(const CDCT&) = default;
  CDCT& operator=(const CDCT&) = default;
  ~CDCT() {
    if (t_bManaged && m_hDC) DeleteDC();
  }

  CDCT& operator=(HDC dc) noexcept {
    Attach(dc);
    return *this;
  }
  operator HDC() const noexcept { return m_hDC; }

  void Attach(HDC dc) noexcept {
    if (t_bManaged && m_hDC && m_hDC != dc) DeleteDC();
    m_hDC = dc;
  }
  HDC Detach() noexcept { return std::exchange(m_hDC, nullptr); }
  // For a context from CreateCompatibleDC. One from GetDC or BeginPaint is released by its own functions.
  BOOL DeleteDC() noexcept {
    ATLASSERT(m_hDC);
    if (!::DeleteDC(m_hDC)) return FALSE;
    m_hDC = nullptr;
    return TRUE;
  }

  // Creates a memory device context. Null: compatible with the screen.
  HDC CreateCompatibleDC(HDC dc = nullptr) noexcept {
    ATLASSERT(!m_hDC);
    return m_hDC = ::CreateCompatibleDC(dc);
  }

  // Returns the previous object, to be selected again.
  HBITMAP SelectBitmap(HBITMAP bitmap) noexcept { return static_cast<HBITMAP>(::SelectObject(m_hDC, bitmap)); }
  HFONT SelectFont(HFONT font) noexcept { return static_cast<HFONT>(::SelectObject(m_hDC, font)); }
  CBitmapHandle GetCurrentBitmap() const noexcept {
    return CBitmapHandle(static_cast<HBITMAP>(::GetCurrentObject(m_hDC, OBJ_BITMAP)));
  }

  int GetDeviceCaps(int index) const noexcept { return ::GetDeviceCaps(m_hDC, index); }
  COLORREF GetPixel(int x, int y) const noexcept { return ::GetPixel(m_hDC, x, y); }

  BOOL BitBlt(int x, int y, int width, int height, HDC source, int sourceX, int sourceY, DWORD operation) noexcept {
    return ::BitBlt(m_hDC, x, y, width, height, source, sourceX, sourceY, operation);
  }
  int SetDIBitsToDevice(int x, int y, DWORD width, DWORD height, int sourceX, int sourceY, UINT firstLine, UINT lines,
                        const void* bits, const BITMAPINFO* info, UINT usage) noexcept {
    return ::SetDIBitsToDevice(m_hDC, x, y, width, height, sourceX, sourceY, firstLine, lines, bits, info, usage);
  }
  BOOL FillRect(LPCRECT rect, HBRUSH brush) noexcept { return ::FillRect(m_hDC, rect, brush); }
  // With a system colour (COLOR_BTNFACE ...).
  BOOL FillRect(LPCRECT rect, int systemColor) noexcept { return FillRect(rect, ::GetSysColorBrush(systemColor)); }
  void FillSolidRect(LPCRECT rect, COLORREF color) noexcept {
    COLORREF old = ::SetBkColor(m_hDC, color);
    ::ExtTextOut(m_hDC, 0, 0, ETO_OPAQUE, rect, nullptr, 0, nullptr);
    ::SetBkColor(m_hDC, old);
  }
  // With BF_ADJUST the rectangle becomes the interior.
  BOOL DrawEdge(LPRECT rect, UINT edge, UINT flags) noexcept { return ::DrawEdge(m_hDC, rect, edge, flags); }
  void DrawFocusRect(LPCRECT rect) noexcept { ::DrawFocusRect(m_hDC, rect); }

  // A length of -1 is the whole text.
  BOOL TextOut(int x, int y, LPCTSTR text, int length = -1) noexcept {
    return ::TextOut(m_hDC, x, y, text, length == -1 ? ::lstrlen(text) : length);
  }
  BOOL GetTextExtent(LPCTSTR text, int length, LPSIZE size) const noexcept {
    return ::GetTextExtentPoint32(m_hDC, text, length == -1 ? ::lstrlen(text) : length, size);
  }
  int SetBkMode(int mode) noexcept { return ::SetBkMode(m_hDC, mode); }
  COLORREF SetTextColor(COLORREF color) noexcept { return ::SetTextColor(m_hDC, color); }

  HDC m_hDC;
};
using CDCHandle = CDCT<false>;
using CDC = CDCT<true>;

// Calls BeginPaint and EndPaint: for WM_PAINT.
class CPaintDC : public CDC {
 public:
  explicit CPaintDC(HWND window) noexcept : m_hWnd(window) { Attach(::BeginPaint(window, &m_ps)); }
  CPaintDC(const CPaintDC&) = delete;
  CPaintDC& operator=(const CPaintDC&) = delete;
  ~CPaintDC() {
    ATLASSERT(m_hDC && ::IsWindow(m_hWnd));
    ::EndPaint(m_hWnd, &m_ps);
    Detach();
  }

  PAINTSTRUCT m_ps{};  // describes the area to paint

 private:
  HWND m_hWnd;
};

// The client area of a window, or with null the screen (GetDC, ReleaseDC).
class CClientDC : public CDC {
 public:
  explicit CClientDC(HWND window) noexcept : CDC(::GetDC(window)), m_hWnd(window) {}
  CClientDC(const CClientDC&) = delete;
  CClientDC& operator=(const CClientDC&) = delete;
  ~CClientDC() { ::ReleaseDC(m_hWnd, Detach()); }

 private:
  HWND m_hWnd;
};

// A window including its frame, or with null the screen (GetWindowDC, ReleaseDC).
class CWindowDC : public CDC {
 public:
  explicit CWindowDC(HWND window) noexcept : CDC(::GetWindowDC(window)), m_hWnd(window) {}
  CWindowDC(const CWindowDC&) = delete;
  CWindowDC& operator=(const CWindowDC&) = delete;
  ~CWindowDC() { ::ReleaseDC(m_hWnd, Detach()); }

 private:
  HWND m_hWnd;
};

}  // namespace WTL

#ifndef _WTL_NO_AUTOMATIC_NAMESPACE
using namespace WTL;
#endif

#endif
