#include <afx.h>
#include <atlimage.h>
#include <atlconv.h>
#include <gdiplus.h>

#include <framework/gdi_plus.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

using namespace Gdiplus;
using namespace Gdiplus::DllExports;

namespace {

struct Dispose {
  void operator()(GpBitmap* bitmap) const { GdipDisposeImage(bitmap); }
};
using OwnedBitmap = std::unique_ptr<GpBitmap, Dispose>;

struct DeleteBitmap {
  void operator()(HBITMAP bitmap) const { DeleteObject(bitmap); }
};
using OwnedSection = std::unique_ptr<std::remove_pointer_t<HBITMAP>, DeleteBitmap>;

// The header of a DIB and the longest possible palette, for CreateDIBSection.
struct Description {
  BITMAPINFOHEADER header{};
  RGBQUAD palette[256]{};
};

HRESULT result_of(GpStatus status) { return status == OutOfMemory ? E_OUTOFMEMORY : E_FAIL; }

// Copies the pixels in the format of the file, as far as a DIB supports it.
PixelFormat format_of_section(PixelFormat format) {
  if (IsIndexedPixelFormat(format)) return format;
  return IsAlphaPixelFormat(format) ? PixelFormat32bppARGB : PixelFormat24bppRGB;
}

GpStatus read_palette(GpBitmap* bitmap, Description* description) {
  INT size = 0;
  GpStatus status = GdipGetImagePaletteSize(bitmap, &size);
  if (status != Ok) return status;
  std::vector<ARGB> memory(static_cast<size_t>(size) / sizeof(ARGB) + 1);
  auto* palette = reinterpret_cast<ColorPalette*>(memory.data());
  status = GdipGetImagePalette(bitmap, palette, size);
  if (status != Ok) return status;
  UINT count = std::min<UINT>(palette->Count, 1u << description->header.biBitCount);
  for (UINT i = 0; i < count; ++i) {
    ARGB colour = palette->Entries[i];  // 0xAARRGGBB
    description->palette[i] = {static_cast<BYTE>(colour), static_cast<BYTE>(colour >> 8),
                               static_cast<BYTE>(colour >> 16), 0};
  }
  description->header.biClrUsed = count;
  return Ok;
}

HRESULT convert(GpBitmap* bitmap, OwnedSection* target) {
  UINT width = 0, height = 0;
  PixelFormat format = 0;
  GpStatus status = GdipGetImageWidth(bitmap, &width);
  if (status == Ok) status = GdipGetImageHeight(bitmap, &height);
  if (status == Ok) status = GdipGetImagePixelFormat(bitmap, &format);
  if (status != Ok) return result_of(status);

  format = format_of_section(format);
  Description description;
  BITMAPINFOHEADER& header = description.header;
  header.biSize = sizeof header;
  header.biWidth = static_cast<LONG>(width);
  header.biHeight = static_cast<LONG>(height);
  header.biPlanes = 1;
  header.biBitCount = static_cast<WORD>(GetPixelFormatSize(format));
  if (IsIndexedPixelFormat(format)) {
    status = read_palette(bitmap, &description);
    if (status != Ok) return result_of(status);
  }

  void* bits = nullptr;
  OwnedSection section(
      CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO*>(&header), DIB_RGB_COLORS, &bits, nullptr, 0));
  if (!section) return E_OUTOFMEMORY;

  BitmapData data{};
  Rect all(0, 0, static_cast<INT>(width), static_cast<INT>(height));
  status = GdipBitmapLockBits(bitmap, &all, ImageLockModeRead, format, &data);
  if (status != Ok) return result_of(status);
  // The rows of GDI+ start at the top, those of the section at the bottom.
  size_t used = (static_cast<size_t>(width) * header.biBitCount + 7) / 8;
  size_t pitch = (used + 3) / 4 * 4;
  const auto* row = static_cast<const BYTE*>(data.Scan0);
  for (UINT y = height; y > 0; --y, row += data.Stride) memcpy(static_cast<BYTE*>(bits) + (y - 1) * pitch, row, used);
  status = GdipBitmapUnlockBits(bitmap, &data);
  if (status != Ok) return result_of(status);
  *target = std::move(section);
  return S_OK;
}

HRESULT load(const WCHAR* fileName, OwnedSection* target) {
  GpBitmap* made = nullptr;
  GpStatus status = GdipCreateBitmapFromFile(fileName, &made);
  OwnedBitmap bitmap(made);
  return status == Ok ? convert(bitmap.get(), target) : result_of(status);
}

DIBSECTION describe(HBITMAP bitmap) {
  DIBSECTION description{};
  ATLASSERT(bitmap);
  GetObjectW(bitmap, sizeof description, &description);
  return description;
}

}  // namespace

namespace ATL {

CImage::CImage() noexcept { framework::gdi_plus::add_user(); }

CImage::~CImage() noexcept {
  Destroy();
  framework::gdi_plus::remove_user();
}

void CImage::Attach(HBITMAP bitmap, DIBOrientation) noexcept {
  if (bitmap == m_hBitmap) return;
  Destroy();
  m_hBitmap = bitmap;
}

HBITMAP CImage::Detach() noexcept {
  ATLASSERT(m_hBitmap);
  return std::exchange(m_hBitmap, nullptr);
}

void CImage::Destroy() noexcept {
  if (m_hBitmap) DeleteObject(Detach());
}

int CImage::GetWidth() const noexcept { return describe(m_hBitmap).dsBm.bmWidth; }

int CImage::GetHeight() const noexcept { return describe(m_hBitmap).dsBm.bmHeight; }

int CImage::GetBPP() const noexcept { return describe(m_hBitmap).dsBm.bmBitsPixel; }

HRESULT CImage::Load(LPCTSTR fileName) noexcept {
  if (!fileName) return E_INVALIDARG;
  if (!framework::gdi_plus::start()) return E_FAIL;
  try {
    OwnedSection section;
    HRESULT result = load(CA2W(fileName), &section);
    if (SUCCEEDED(result)) Attach(section.release());
    return result;
  } catch (CException* exception) {
    exception->Delete();
  } catch (const std::bad_alloc&) {
  }
  return E_OUTOFMEMORY;
}

void CImage::ReleaseGDIPlus() noexcept { framework::gdi_plus::shut_down(); }

}  // namespace ATL
