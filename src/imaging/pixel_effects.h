// What kexWTLDIB does to its pixels, without the system: on rows of 32-bit pixels, the bottom row of the picture first.
//
// A pixel is 0x00RRGGBB, a ColorRef 0x00BBGGRR. The top byte of a pixel is nobody's: comparisons with a key look at the
// lower 24 bits, and what is kept of it is said with each effect.
#ifndef KEXLIB_IMAGING_PIXEL_EFFECTS_H
#define KEXLIB_IMAGING_PIXEL_EFFECTS_H

#include <cstddef>
#include <cstdint>

namespace kexlib {

using Pixel = std::uint32_t;
using ColorRef = std::uint32_t;

constexpr Pixel color_bits = 0xFFFFFF;

// Marks what is transparent: magenta.
constexpr Pixel key_pixel = 0xFF00FF;

constexpr Pixel pixel_of(ColorRef color) { return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF); }

// The pixels of a picture, borrowed. Without any, the width or the height is 0, and every effect does nothing.
struct PixelSpan {
  Pixel* pixels = nullptr;
  int width = 0;
  int height = 0;

  std::size_t count() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
  Pixel* row(int y) const { return pixels + static_cast<std::size_t>(width) * static_cast<std::size_t>(y); }
};

void fill(PixelSpan picture, Pixel pixel);

// Each pixel with the key's colour becomes the substitute. Whether all had it.
bool substitute_key(PixelSpan picture, Pixel substitute);

// A pixel's place on the ramp that goes from dark over mid to light, by its luminance; mid stands at its own.
Pixel tint(Pixel pixel, ColorRef dark, ColorRef mid, ColorRef light);

// All pixels but those with the colour `skip`; the top bytes stay. A threshold other than 0 is where mid stands.
void tint_all(PixelSpan picture, ColorRef dark, ColorRef mid, ColorRef light, ColorRef skip, std::uint8_t threshold);

// Every other pixel of the face colour becomes the highlight, but for a margin; the top byte of the others is cleared.
void stipple(PixelSpan picture, Pixel face, Pixel highlight);

// The picture moves one pixel to the right and down; the top row and the left column stay as well.
void shift_down_right(PixelSpan picture);

// What is not `face` in the other picture, of the same size, is copied from it. All 32 bits count.
void merge(PixelSpan picture, const Pixel* other, Pixel face);

// A frame two pixels wide. What of it lies outside a small picture is left out.
struct EdgePixels {
  Pixel left_outer, left_inner, right_outer, right_inner, top_outer, bottom_outer, corner;
};
void draw_edge(PixelSpan picture, const EdgePixels& edge);

}  // namespace kexlib

#endif
