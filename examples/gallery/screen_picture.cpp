#include <kexlib/framework.h>

#include <atlapp.h>
#include <atlgdi.h>

#include <gallery/screen_picture.h>
#include <rqgfx/duct_image.h>
#include <rqgfx/png_writer.h>

#include <memory>

namespace gallery {

bool save_screen_picture(const RECT& place, const std::string& path) {
  const int width = place.right - place.left, height = place.bottom - place.top;
  BITMAPINFO description{};
  description.bmiHeader = {sizeof description.bmiHeader, width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  WTL::CBitmap bitmap;
  if (!bitmap.CreateDIBSection(nullptr, &description, DIB_RGB_COLORS, &bits, nullptr, 0)) return false;

  const HDC screen = GetDC(nullptr);
  const HDC memory = CreateCompatibleDC(screen);
  const HGDIOBJ before = SelectObject(memory, bitmap);
  BitBlt(memory, 0, 0, width, height, screen, place.left, place.top, SRCCOPY);
  SelectObject(memory, before);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);

  const std::unique_ptr<hnDuctImage> image(rq_duct_image_from_dib(bitmap));
  return rqPNGWriterDuctImage::write_file(image.get(), bzString(path.c_str()), -1, -1) != 0;
}

}  // namespace gallery
