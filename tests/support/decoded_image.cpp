#include <objidl.h>
#include <gdiplus.h>

#include <support/decoded_image.h>

#include <filesystem>

DecodedImage decode_image(const std::string& path) {
  DecodedImage decoded;
  ULONG_PTR token;
  Gdiplus::GdiplusStartupInput input;
  if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) return decoded;
  {
    using namespace Gdiplus::DllExports;
    Gdiplus::GpBitmap* image = nullptr;
    Gdiplus::BitmapData data;
    if (GdipCreateBitmapFromFile(std::filesystem::path(path).wstring().c_str(), &image) == Gdiplus::Ok &&
        GdipBitmapLockBits(image, nullptr, Gdiplus::ImageLockModeRead, PixelFormat32bppARGB, &data) == Gdiplus::Ok) {
      decoded.width = static_cast<int>(data.Width);
      decoded.height = static_cast<int>(data.Height);
      Gdiplus::PixelFormat format = 0;
      GdipGetImagePixelFormat(image, &format);
      decoded.has_alpha = Gdiplus::IsAlphaPixelFormat(format);
      for (int y = 0; y < decoded.height; ++y) {
        const auto row = reinterpret_cast<const std::uint32_t*>(static_cast<const char*>(data.Scan0) + y * data.Stride);
        decoded.pixels.insert(decoded.pixels.end(), row, row + decoded.width);
      }
      GdipBitmapUnlockBits(image, &data);
    }
    GdipDisposeImage(image);
  }
  Gdiplus::GdiplusShutdown(token);
  return decoded;
}
