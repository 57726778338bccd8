// The pixel effects in their simplest form: pixel by pixel, column by column where the order allows. The library's must
// equal them bit for bit.
#ifndef TESTS_SUPPORT_LITERAL_EFFECTS_H
#define TESTS_SUPPORT_LITERAL_EFFECTS_H

#include <cstdint>

namespace literal {

struct Picture {
  std::uint32_t* pixels;
  int width, height;

  std::uint32_t& at(int x, int y) const { return pixels[y * width + x]; }
};

inline std::uint32_t swapped(std::uint32_t color) {
  return (color & 0xFF) * 65536 + (color & 0xFF00) + (color / 65536 & 0xFF);
}

inline int red(std::uint32_t color) { return static_cast<int>(color % 256); }
inline int green(std::uint32_t color) { return static_cast<int>(color / 256 % 256); }
inline int blue(std::uint32_t color) { return static_cast<int>(color / 65536 % 256); }
inline int luminance(int r, int g, int b) { return (77 * r + 151 * g + 28 * b) >> 8; }
inline int luminance(std::uint32_t color) { return luminance(red(color), green(color), blue(color)); }

inline void fill(Picture p, std::uint32_t pixel) {
  for (int x = 0; x < p.width; ++x)
    for (int y = 0; y < p.height; ++y) p.at(x, y) = pixel;
}

inline bool substitute_key(Picture p, std::uint32_t substitute) {
  bool blank = true;
  for (int x = 0; x < p.width; ++x)
    for (int y = 0; y < p.height; ++y) {
      if ((p.at(x, y) & 0xFFFFFF) == 0xFF00FF)
        p.at(x, y) = substitute;
      else
        blank = false;
    }
  return blank;
}

inline std::uint32_t tint(std::uint32_t pixel, std::uint32_t dark, std::uint32_t mid, std::uint32_t light) {
  const int t = luminance(mid), p = luminance(swapped(pixel));
  const auto channel = [&](int d, int m, int l) {
    int c;
    if (p >= t) {
      const int k = (p - t) & 255, n = (256 - t) & 255;
      c = m + (l - m) * k / n;
    } else {
      c = d + (m - d) * p / t;
    }
    return static_cast<std::uint32_t>(c) & 255;
  };
  return channel(red(dark), red(mid), red(light)) * 65536 + channel(green(dark), green(mid), green(light)) * 256 +
         channel(blue(dark), blue(mid), blue(light));
}

inline void tint_pixel(std::uint32_t& pixel, std::uint32_t dark, std::uint32_t mid, std::uint32_t light,
                       std::uint32_t skip, int t) {
  if ((pixel & 0xFFFFFF) == swapped(skip)) return;
  const int p = luminance(swapped(pixel));
  const auto channel = [&](int d, int m, int l) {
    const int c = p < t ? d + p * (m - d) / t : m + ((p - t) & 255) * (l - m) / (256 - t);
    return static_cast<std::uint32_t>(c) & 255;
  };
  const std::uint32_t b = channel(blue(dark), blue(mid), blue(light));
  const std::uint32_t g = channel(green(dark), green(mid), green(light));
  const std::uint32_t r = channel(red(dark), red(mid), red(light));
  pixel = (pixel & 0xFF000000) + r * 65536 + g * 256 + b;
}

// By rows, the fastest loop of its kind, to measure against.
inline void tint_all(Picture p, std::uint32_t dark, std::uint32_t mid, std::uint32_t light, std::uint32_t skip,
                     std::uint8_t threshold) {
  if ((mid & 0xFFFFFF) == 0) mid = 0x808080;
  const int t = threshold ? threshold : luminance(mid);
  if (t == 0) return;
  for (int i = 0; i < p.width * p.height; ++i) tint_pixel(p.pixels[i], dark, mid, light, skip, t);
}

inline void tint_all_by_columns(Picture p, std::uint32_t dark, std::uint32_t mid, std::uint32_t light,
                                std::uint32_t skip, std::uint8_t threshold) {
  for (int x = 0; x < p.width; ++x)
    for (int y = 0; y < p.height; ++y) tint_pixel(p.at(x, y), dark, mid, light, skip, threshold);
}

inline void stipple(Picture p, std::uint32_t face, std::uint32_t highlight) {
  if (p.width < 5) return;
  for (int x = 2; x <= p.width - 3; ++x)
    for (int y = 1; y <= p.height - 3; ++y)
      if ((p.at(x, y) & 0xFFFFFF) == face) p.at(x, y) = (x + y) % 2 ? highlight : face;
}

inline void shift_down_right(Picture p) {
  if (p.height < 2 || p.width < 2) return;
  for (int y = 0; y <= p.height - 2; ++y)
    for (int x = 0; x <= p.width - 2; ++x) p.at(x + 1, y) = p.at(x, y + 1);
}

// The result is the same: in both orders a row is only read before it is written.
inline void shift_down_right_by_columns(Picture p) {
  for (int x = p.width - 2; x >= 0; --x)
    for (int y = 0; y <= p.height - 2; ++y) p.at(x + 1, y) = p.at(x, y + 1);
}

inline void merge(Picture p, const std::uint32_t* other, std::uint32_t face) {
  for (int i = 0; i < p.width; ++i)
    for (int j = 0; j < p.height; ++j) {
      const int index = i * p.width + j;
      if (index < p.width * p.height && other[index] != face) p.pixels[index] = other[index];
    }
}

inline void merge_by_columns(Picture p, const std::uint32_t* other, std::uint32_t face) {
  for (int x = 0; x < p.width; ++x)
    for (int y = 0; y < p.height; ++y)
      if (other[y * p.width + x] != face) p.at(x, y) = other[y * p.width + x];
}

}  // namespace literal

#endif
