#include <objidl.h>
#include <gdiplus.h>

#include <support/encoded_image.h>

CLSID encoder_of(ImageFormat format) {
  return {0x557CF400u + static_cast<unsigned>(format), 0x1A04, 0x11D3, {0x9A, 0x73, 0, 0, 0xF8, 0x1E, 0xF3, 0x2E}};
}

bool save_grey_image(const std::filesystem::path& path, ImageFormat format, int width, int height, bool alpha) {
  ULONG_PTR token;
  Gdiplus::GdiplusStartupInput input;
  if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) return false;
  using namespace Gdiplus::DllExports;
  Gdiplus::GpBitmap* bitmap = nullptr;
  bool saved = GdipCreateBitmapFromScan0(width, height, 0, alpha ? PixelFormat32bppARGB : PixelFormat24bppRGB, nullptr,
                                         &bitmap) == Gdiplus::Ok;
  for (int y = 0; saved && y < height; ++y)
    for (int x = 0; saved && x < width; ++x) saved = GdipBitmapSetPixel(bitmap, x, y, 0xFF808080) == Gdiplus::Ok;
  const CLSID encoder = encoder_of(format);
  saved = saved && GdipSaveImageToFile(bitmap, path.wstring().c_str(), &encoder, nullptr) == Gdiplus::Ok;
  GdipDisposeImage(bitmap);
  Gdiplus::GdiplusShutdown(token);
  return saved;
}
