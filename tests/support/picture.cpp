#include <objidl.h>
#include <gdiplus.h>

#include <support/encoded_image.h>
#include <support/files.h>
#include <support/picture.h>

#include <filesystem>
#include <utility>

namespace {

SIZE client_size(HWND window) {
  RECT client;
  GetClientRect(window, &client);
  return {client.right, client.bottom};
}

}  // namespace

Picture::Picture(int width, int height) : width_(width), height_(height), dc_(CreateCompatibleDC(nullptr)) {
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &bits_, nullptr, 0);
  original_ = SelectObject(dc_, bitmap_);
}

Picture::Picture(int width, int height, COLORREF background) : Picture(width, height) {
  RECT all{0, 0, width, height};
  HBRUSH brush = CreateSolidBrush(background);
  FillRect(dc_, &all, brush);
  DeleteObject(brush);
}

Picture::Picture(HWND window) : Picture(client_size(window).cx, client_size(window).cy) {
  HDC source = GetDC(window);
  BitBlt(dc_, 0, 0, width_, height_, source, 0, 0, SRCCOPY);
  ReleaseDC(window, source);
}

Picture::Picture(Picture&& other) noexcept
    : width_(other.width_),
      height_(other.height_),
      dc_(std::exchange(other.dc_, nullptr)),
      bits_(other.bits_),
      bitmap_(other.bitmap_),
      original_(other.original_) {}

Picture::~Picture() {
  if (!dc_) return;
  SelectObject(dc_, original_);
  DeleteObject(bitmap_);
  DeleteDC(dc_);
}

bool Picture::operator==(const Picture& other) const {
  if (width_ != other.width_ || height_ != other.height_) return false;
  GdiFlush();
  constexpr unsigned colors = 0xFFFFFF;  // the value of the fourth byte is unspecified
  auto mine = static_cast<const unsigned*>(bits_), theirs = static_cast<const unsigned*>(other.bits_);
  for (int i = 0; i < width_ * height_; ++i)
    if ((mine[i] ^ theirs[i]) & colors) return false;
  return true;
}

bool Picture::save(const std::string& name, int magnified) const {
  auto folder = program_folder().parent_path().parent_path() / "pictures";
  std::filesystem::create_directories(folder);

  Picture large(width_ * magnified, height_ * magnified);
  StretchBlt(large.dc_, 0, 0, large.width_, large.height_, dc_, 0, 0, width_, height_, SRCCOPY);
  GdiFlush();

  ULONG_PTR token;
  Gdiplus::GdiplusStartupInput input;
  if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) return false;
  using namespace Gdiplus::DllExports;
  Gdiplus::GpBitmap* bitmap = nullptr;
  const CLSID encoder = encoder_of(ImageFormat::Png);
  const bool saved =
      GdipCreateBitmapFromHBITMAP(large.bitmap_, nullptr, &bitmap) == Gdiplus::Ok &&
      GdipSaveImageToFile(bitmap, (folder / (name + ".png")).wstring().c_str(), &encoder, nullptr) == Gdiplus::Ok;
  GdipDisposeImage(bitmap);
  Gdiplus::GdiplusShutdown(token);
  return saved;
}
