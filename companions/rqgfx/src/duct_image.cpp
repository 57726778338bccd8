#include <rqgfx/duct_image.h>

#include <algorithm>
#include <cstdlib>
#include <new>

hnDuctImage::hnDuctImage(int width, int height, bool has_alpha)
    : width_(std::max(width, 0)),
      height_(std::max(height, 0)),
      has_alpha_(has_alpha),
      pixels_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_)) {}

hnDuctImage::~hnDuctImage() = default;

hnDuctImage* rq_duct_image_from_dib(HBITMAP bitmap) try {
  constexpr std::uint32_t opaque = 0xFF000000;
  DIBSECTION section{};
  if (GetObjectA(bitmap, sizeof section, &section) != sizeof section || section.dsBmih.biBitCount != 32) return nullptr;
  GdiFlush();  // GDI batches drawing calls

  const int width = section.dsBm.bmWidth, height = section.dsBm.bmHeight;
  const auto* pixels = static_cast<const std::uint32_t*>(section.dsBm.bmBits);
  auto* image = new hnDuctImage(width, height, false);
  for (int y = 0; y < height; ++y) {
    const auto from = pixels + static_cast<std::ptrdiff_t>(height - 1 - y) * width;
    std::transform(from, from + width, image->row(y), [](std::uint32_t pixel) { return pixel | opaque; });
  }
  return image;
} catch (const std::bad_alloc&) {
  return nullptr;
}
