// Shared by the tests of the DIB: the class with its protected members, bitmaps, and colours as pixels.
#ifndef TESTS_IMAGING_DIB_FIXTURE_H
#define TESTS_IMAGING_DIB_FIXTURE_H

#include <gtest/gtest.h>

#include <kexlib/imaging/dib.h>

#include <algorithm>
#include <utility>
#include <vector>

using Pixels = std::vector<DWORD>;  // the bottom row first

inline constexpr DWORD K = 0xFF00FF, X = 0x010203;
inline constexpr COLORREF substitute = RGB(0x11, 0x22, 0x33);
inline constexpr DWORD S = 0x112233;
inline const Pixels chessboard{K, X, K, X, X, K, X, K};
inline const Pixels chessboard_without_key{S, X, S, X, X, S, X, S};

inline DWORD system_pixel(int index) {
  const COLORREF color = GetSysColor(index);
  return RGB(GetBValue(color), GetGValue(color), GetRValue(color));
}

// With the protected members, and all pixels as a vector.
class Dib : public kexWTLDIB {
 public:
  using kexWTLDIB::copy_to_dc;
  using kexWTLDIB::destroy;
  using kexWTLDIB::m_bitmap;
  using kexWTLDIB::m_bits;
  using kexWTLDIB::m_bmi;
  using kexWTLDIB::m_dc;
  using kexWTLDIB::m_old_bitmap;
  using kexWTLDIB::m_state;
  using kexWTLDIB::UpdateSubstituteBits;

  Dib() = default;
  Dib(int width, Pixels pixels) {
    EXPECT_EQ(create(width, static_cast<int>(pixels.size()) / width), 1);
    std::copy(pixels.begin(), pixels.end(), m_bits);
  }

  Pixels pixels() const {
    GdiFlush();
    return Pixels(m_bits, m_bits + m_size.cx * m_size.cy);
  }
};

inline bool has_no_picture(const Dib& dib) { return !dib.m_bits && !dib.m_bitmap && dib.GetSize() == WTL::CSize(); }

// A bitmap of the screen's format with these pixels.
inline void make_bitmap(WTL::CBitmap* bitmap, int width, Pixels pixels) {
  HDC screen = GetDC(nullptr);
  const int height = static_cast<int>(pixels.size()) / width;
  bitmap->CreateCompatibleBitmap(screen, width, height);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  EXPECT_EQ(SetDIBits(screen, *bitmap, 0, static_cast<UINT>(height), pixels.data(), &info, DIB_RGB_COLORS), height);
  ReleaseDC(nullptr, screen);
}

inline Pixels without_top_bytes(Pixels pixels) {
  for (DWORD& pixel : pixels) pixel &= 0xFFFFFF;
  return pixels;
}

// A replacement of CreateDIBSection.
inline HBITMAP WINAPI no_section(HDC, const BITMAPINFO*, UINT, void**, HANDLE, DWORD) { return nullptr; }

#endif
