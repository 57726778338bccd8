// The effects on pictures, against their literal form pixel by pixel.
#include <fuzz/core.h>
#include <imaging/pixel_effects.h>
#include <support/literal_effects.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

using kexlib::EdgePixels;
using kexlib::Pixel;

constexpr Pixel face = 0xD4D0C8;

// In a block of memory of its exact size, for the sanitizer.
class Picture {
 public:
  Picture(int width, int height) : width_(width), height_(height), pixels_(new Pixel[count()]) {}

  std::size_t count() const { return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_); }
  kexlib::PixelSpan span() const { return {pixels_.get(), width_, height_}; }
  literal::Picture literal() const { return {pixels_.get(), width_, height_}; }
  Pixel* pixels() const { return pixels_.get(); }
  std::vector<Pixel> values() const { return {pixels(), pixels() + count()}; }

 private:
  int width_, height_;
  std::unique_ptr<Pixel[]> pixels_;
};

Pixel pixel(fuzz::Input& input) {
  switch (input.below(8)) {
    case 0:
      return kexlib::key_pixel;
    case 1:
      return kexlib::key_pixel | input.number<std::uint32_t>() << 24;
    case 2:
      return face;
    case 3:
      return face | 0xFF000000;
    case 4:
      return input.below(4) * 0x7F7F7F;
    default:
      return input.number<Pixel>();
  }
}

// The order in which the sides of a frame are drawn decides where they overlap.
void draw_edge_literally(literal::Picture p, const EdgePixels& e) {
  const auto put = [&](int x, int y, Pixel value) {
    if (x >= 0 && x < p.width && y >= 0 && y < p.height) p.at(x, y) = value;
  };
  const int w = p.width, h = p.height;
  for (int y = 1; y <= h - 1; ++y) {
    put(0, y, e.left_outer);
    put(1, y, e.left_inner);
    put(w - 1, y - 1, e.right_outer);
    put(w - 2, y - 1, e.right_inner);
  }
  for (int x = 0; x <= w - 1; ++x) {
    if (x > 3) put(x - 2, h - 2, e.left_inner);
    if (x + 1 < w) put(x + 1, h - 1, e.top_outer);
    put(x, 0, e.bottom_outer);
    if (x > 2) put(x - 2, 1, e.right_inner);
  }
  put(w - 1, h - 1, e.corner);
}

const fuzz::Core core("pixel_effects", [](fuzz::Input& input) {
  constexpr unsigned longest_side = 20;
  const unsigned effect = input.below(8);
  const int width = static_cast<int>(input.below(longest_side)), height = static_cast<int>(input.below(longest_side));
  const Picture picture(width, height), expected(width, height), other(width, height);
  const Pixel a = pixel(input), b = pixel(input), c = pixel(input), d = pixel(input);
  const auto threshold = input.number<std::uint8_t>();
  for (std::size_t i = 0; i < picture.count(); ++i) {
    expected.pixels()[i] = picture.pixels()[i] = pixel(input);
    other.pixels()[i] = pixel(input);
  }
  switch (effect) {
    case 0:
      kexlib::fill(picture.span(), a);
      literal::fill(expected.literal(), a);
      break;
    case 1: {
      const bool blank = kexlib::substitute_key(picture.span(), a);
      fuzz::expect_same(blank, literal::substitute_key(expected.literal(), a), "all of the key's colour");
      break;
    }
    case 2:
      if (literal::luminance(b) > 0)  // the ramp from dark to mid has a length
        fuzz::expect_same(kexlib::tint(a, c, b, d), literal::tint(a, c, b, d), a, c, b, d);
      return;
    case 3:
      kexlib::tint_all(picture.span(), a, b, c, d, threshold);
      literal::tint_all(expected.literal(), a, b, c, d, threshold);
      break;
    case 4:
      kexlib::stipple(picture.span(), a & 0xFFFFFF, b & 0xFFFFFF);
      literal::stipple(expected.literal(), a & 0xFFFFFF, b & 0xFFFFFF);
      break;
    case 5:
      kexlib::shift_down_right(picture.span());
      literal::shift_down_right(expected.literal());
      break;
    case 6:
      kexlib::merge(picture.span(), other.pixels(), a);
      literal::merge(expected.literal(), other.pixels(), a);
      break;
    default: {
      const EdgePixels edge{a, b, c, d, a + 1, b + 1, c + 1};
      kexlib::draw_edge(picture.span(), edge);
      draw_edge_literally(expected.literal(), edge);
    }
  }
  const std::vector<Pixel> ours = picture.values(), right = expected.values();
  const auto [at, same] = std::mismatch(ours.begin(), ours.end(), right.begin());
  if (at != ours.end()) fuzz::expect_same(*at, *same, effect, width, height, at - ours.begin());
});

}  // namespace
