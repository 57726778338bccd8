// The effects of kexWTLDIB on rows of 32-bit pixels, without system calls. The bottom row is first.
//
// A pixel is 0x00RRGGBB, a ColorRef 0x00BBGGRR. Comparisons with a key ignore the top byte of a pixel; each effect
// states whether it keeps that byte.
#ifndef KEXLIB_IMAGING_PIXEL_EFFECTS_H
#define KEXLIB_IMAGING_PIXEL_EFFECTS_H

#include <cstddef>
#include <cstdint>

namespace kexlib {

using Pixel = std::uint32_t;
using ColorRef = std::uint32_t;

constexpr Pixel color_bits = 0xFFFFFF;

// Magenta marks transparent pixels.
constexpr Pixel key_pixel = 0xFF00FF;

constexpr Pixel pixel_of(ColorRef color) { return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF); }

// The pixels of a picture, not owned. If the width or the height is 0, the effects do nothing.
struct PixelSpan {
  Pixel* pixels = nullptr;
  int width = 0;
  int height = 0;

  std::size_t count() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
  Pixel* row(int y) const { return pixels + static_cast<std::size_t>(width) * static_cast<std::size_t>(y); }
};

void fill(PixelSpan picture, Pixel pixel);

// Replaces each pixel of the key's colour with the substitute, top byte included. True if all pixels had the key's
// colour.
bool substitute_key(PixelSpan picture, Pixel substitute);

// Maps a pixel to the ramp from dark over mid to light, by its luminance; mid has its own luminance on the ramp.
Pixel tint(Pixel pixel, ColorRef dark, ColorRef mid, ColorRef light);

// Maps all pixels except those of the colour `skip`; the top bytes do not change. A threshold other than 0 is the
// luminance that becomes mid.
void tint_all(PixelSpan picture, ColorRef dark, ColorRef mid, ColorRef light, ColorRef skip, std::uint8_t threshold);

// Sets every other pixel of the face colour to the highlight, except in a margin. The other pixels of the face colour
// are set to the face, which clears their top bytes.
void stipple(PixelSpan picture, Pixel face, Pixel highlight);

// Moves the picture one pixel to the right and down. The top row and the left column do not change.
void shift_down_right(PixelSpan picture);

// Copies the pixels of the other picture, of the same size, that differ from `face` in any of the 32 bits. Covers a
// picture completely only if it is square.
void merge(PixelSpan picture, const Pixel* other, Pixel face);

// Draws a frame two pixels wide. Parts outside a small picture are skipped.
struct EdgePixels {
  Pixel left_outer, left_inner, right_outer, right_inner, top_outer, bottom_outer, corner;
};
void draw_edge(PixelSpan picture, const EdgePixels& edge);

}  // namespace kexlib

#endif
