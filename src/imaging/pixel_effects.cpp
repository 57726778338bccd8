// Rows of pixels, four at a time with SSE2, which every x86-64 processor has.
#include <emmintrin.h>

#include <imaging/pixel_effects.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#ifdef _MSC_VER
#include <intrin.h>
#endif

namespace kexlib {
namespace {

constexpr std::size_t lanes = sizeof(__m128i) / sizeof(Pixel);

__m128i all_lanes(Pixel pixel) { return _mm_set1_epi32(static_cast<int>(pixel)); }
__m128i load(const Pixel* pixels) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels)); }
void store(Pixel* pixels, __m128i four) { _mm_storeu_si128(reinterpret_cast<__m128i*>(pixels), four); }

__m128i select(__m128i mask, __m128i yes, __m128i no) {
  return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
}

// The processor's string instruction is as fast as memset; a loop of stores is not, nor is memset of every run-time
// library. For copies see copy_row.
void store_string(Pixel* to, Pixel pixel, std::size_t count) {
#if defined(__GNUC__)
  asm volatile("rep stosl" : "+D"(to), "+c"(count) : "a"(pixel) : "memory");
#elif defined(_MSC_VER)
  __stosd(reinterpret_cast<unsigned long*>(to), pixel, count);
#else
  std::fill_n(to, count, pixel);
#endif
}

void move_string(Pixel* to, const Pixel* from, std::size_t size) {
#if defined(__GNUC__)
  asm volatile("rep movsb" : "+D"(to), "+S"(from), "+c"(size) : : "memory");
#elif defined(_MSC_VER)
  __movsb(reinterpret_cast<unsigned char*>(to), reinterpret_cast<const unsigned char*>(from), size);
#else
  std::memcpy(to, from, size);
#endif
}

// The string instruction takes a while to begin. It is many times slower than a loop where the target lies less than a
// cache line beyond a multiple of a page from the source, as it does in a picture of 1024 pixels a row that is shifted.
void copy_row(Pixel* to, const Pixel* from, std::size_t count) {
  constexpr std::size_t short_row = 512, page = 4096, cache_line = 64;
  const std::size_t size = count * sizeof(Pixel);
  const std::size_t beyond = (reinterpret_cast<std::uintptr_t>(to) - reinterpret_cast<std::uintptr_t>(from)) % page;
  if (size < short_row || (beyond > 0 && beyond < cache_line))
    std::memcpy(to, from, size);
  else
    move_string(to, from, size);
}

// Replaces pixels of the key's colour with `even` or `odd`, by their index. True if all pixels had the key's colour.
bool replace(Pixel* pixels, std::size_t count, Pixel key, Pixel even, Pixel odd) {
  const __m128i keys = all_lanes(key), colors = all_lanes(color_bits);
  const __m128i pattern = _mm_unpacklo_epi32(all_lanes(even), all_lanes(odd));
  __m128i all_keys = all_lanes(~Pixel{0});
  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const __m128i four = load(pixels + i);
    const __m128i is_key = _mm_cmpeq_epi32(_mm_and_si128(four, colors), keys);
    all_keys = _mm_and_si128(all_keys, is_key);
    store(pixels + i, select(is_key, pattern, four));
  }
  bool all = _mm_movemask_epi8(all_keys) == 0xFFFF;
  for (; i < count; ++i) {
    if ((pixels[i] & color_bits) == key)
      pixels[i] = i % 2 == 0 ? even : odd;
    else
      all = false;
  }
  return all;
}

struct Channels {
  int red, green, blue;
};
Channels channels_of(ColorRef color) {
  return {static_cast<int>(color & 0xFF), static_cast<int>(color >> 8 & 0xFF), static_cast<int>(color >> 16 & 0xFF)};
}

constexpr int red_weight = 77, green_weight = 151, blue_weight = 28;  // of 256

int luminance(Channels color) {
  return (red_weight * color.red + green_weight * color.green + blue_weight * color.blue) >> 8;
}
int luminance_of(Pixel pixel) {
  return luminance(
      {static_cast<int>(pixel >> 16 & 0xFF), static_cast<int>(pixel >> 8 & 0xFF), static_cast<int>(pixel & 0xFF)});
}

// The luminances of four pixels.
__m128i luminances_of(__m128i four) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i weights =
      _mm_set_epi16(0, red_weight, green_weight, blue_weight, 0, red_weight, green_weight, blue_weight);
  // Two sums for each pixel: blue and green, then red.
  const __m128 low = _mm_castsi128_ps(_mm_madd_epi16(_mm_unpacklo_epi8(four, zero), weights));
  const __m128 high = _mm_castsi128_ps(_mm_madd_epi16(_mm_unpackhi_epi8(four, zero), weights));
  const __m128i sums = _mm_add_epi32(_mm_castps_si128(_mm_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0))),
                                     _mm_castps_si128(_mm_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1))));
  return _mm_srli_epi32(sums, 8);
}

// A pixel for each luminance. ramp_part writes in fours, which needs room at the end.
using Ramp = std::array<Pixel, 256 + lanes>;

// from + (to - from) * step / steps for each channel, truncated towards zero, four steps at a time: up to three more
// than `count` are made. Single precision is exact enough: the quotients are below 256 and whole multiples of 1 /
// steps. Half of that is added, away from zero, so that no rounding makes a whole one smaller.
void ramp_part(Pixel* entries, int count, Channels from, Channels to, int first_step, int steps) {
  struct Slope {
    Slope(int begin, int end, float steps)
        : origin(_mm_set1_epi32(begin)),
          rise(_mm_set1_ps(static_cast<float>(end - begin) / steps)),
          half(_mm_set1_ps((end < begin ? -0.5F : 0.5F) / steps)) {}
    __m128i at(__m128 step) const {
      return _mm_add_epi32(origin, _mm_cvttps_epi32(_mm_add_ps(_mm_mul_ps(rise, step), half)));
    }
    __m128i origin;
    __m128 rise, half;
  };
  const auto all = static_cast<float>(steps);
  const Slope red(from.red, to.red, all), green(from.green, to.green, all), blue(from.blue, to.blue, all);
  __m128 step = _mm_add_ps(_mm_set1_ps(static_cast<float>(first_step)), _mm_set_ps(3, 2, 1, 0));
  for (int i = 0; i < count; i += int{lanes}, step = _mm_add_ps(step, _mm_set1_ps(float{lanes})))
    store(entries + i, _mm_or_si128(_mm_or_si128(_mm_slli_epi32(red.at(step), 16), _mm_slli_epi32(green.at(step), 8)),
                                    blue.at(step)));
}

// What each luminance becomes. `middle` is in 1 to 255.
Ramp make_ramp(Channels dark, Channels mid, Channels light, int middle) {
  Ramp ramp;
  ramp_part(ramp.data(), middle, dark, mid, 0, middle);
  ramp_part(ramp.data() + middle, 256 - middle, mid, light, 0, 256 - middle);
  return ramp;
}

}  // namespace

void fill(PixelSpan picture, Pixel pixel) { store_string(picture.pixels, pixel, picture.count()); }

bool substitute_key(PixelSpan picture, Pixel substitute) {
  return replace(picture.pixels, picture.count(), key_pixel, substitute, substitute);
}

Pixel tint(Pixel pixel, ColorRef dark, ColorRef mid, ColorRef light) {
  const int middle = luminance(channels_of(mid));
  const int place = luminance_of(pixel);
  Pixel result[lanes];
  if (place >= middle)
    ramp_part(result, 1, channels_of(mid), channels_of(light), place - middle, 256 - middle);
  else
    ramp_part(result, 1, channels_of(dark), channels_of(mid), place, middle);
  return result[0];
}

void tint_all(PixelSpan picture, ColorRef dark, ColorRef mid, ColorRef light, ColorRef skip, std::uint8_t threshold) {
  constexpr Channels grey{128, 128, 128};
  const Channels middle_color = pixel_of(mid) == 0 ? grey : channels_of(mid);
  const int middle = threshold ? threshold : luminance(middle_color);
  if (middle == 0) return;  // the ramp from dark to mid has no length

  const Ramp ramp = make_ramp(channels_of(dark), middle_color, channels_of(light), middle);
  const Pixel skipped = pixel_of(skip);
  const __m128i keys = all_lanes(skipped), colors = all_lanes(color_bits);
  const std::size_t count = picture.count();
  Pixel* const pixels = picture.pixels;
  const auto two_entries = [&](__m128i two) {
    const auto places = static_cast<std::uint64_t>(_mm_cvtsi128_si64(two));
    return _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(ramp[places & 0xFF])),
                              _mm_cvtsi32_si128(static_cast<int>(ramp[places >> 32])));
  };

  std::size_t i = 0;
  for (; i + lanes <= count; i += lanes) {
    const __m128i four = load(pixels + i);
    const __m128i places = luminances_of(four);
    const __m128i tinted = _mm_unpacklo_epi64(two_entries(places), two_entries(_mm_unpackhi_epi64(places, places)));
    const __m128i is_key = _mm_cmpeq_epi32(_mm_and_si128(four, colors), keys);
    store(pixels + i, select(_mm_andnot_si128(is_key, colors), tinted, four));
  }
  for (; i < count; ++i)
    if ((pixels[i] & color_bits) != skipped)
      pixels[i] = (pixels[i] & ~color_bits) | ramp[static_cast<unsigned>(luminance_of(pixels[i]))];
}

void stipple(PixelSpan picture, Pixel face, Pixel highlight) {
  // The margins differ: kept for compatibility.
  constexpr int side = 2, bottom = 1, top = 2;
  if (picture.width <= 2 * side) return;
  const auto columns = static_cast<std::size_t>(picture.width - 2 * side);
  for (int y = bottom; y < picture.height - top; ++y) {
    const bool begins_even = (side + y) % 2 == 0;
    replace(picture.row(y) + side, columns, face, begins_even ? face : highlight, begins_even ? highlight : face);
  }
}

void shift_down_right(PixelSpan picture) {
  if (picture.width < 2 || picture.height < 2) return;
  // From the bottom up: each row is copied before it is overwritten.
  const auto count = static_cast<std::size_t>(picture.width - 1);
  for (int y = 0; y + 1 < picture.height; ++y) copy_row(picture.row(y) + 1, picture.row(y + 1), count);
}

void merge(PixelSpan picture, const Pixel* other, Pixel face) {
  const __m128i faces = all_lanes(face);
  const auto merge_pixels = [&](std::size_t first, std::size_t count) {
    Pixel* to = picture.pixels + first;
    const Pixel* from = other + first;
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
      const __m128i four = load(from + i);
      store(to + i, select(_mm_cmpeq_epi32(four, faces), load(to + i), four));
    }
    for (; i < count; ++i)
      if (from[i] != face) to[i] = from[i];
  };

  // Kept for compatibility: the index is i * width + j, with i below the width and j below the height, as if the two
  // were exchanged. In a wide picture this is a square of height x height pixels at the left, and then indices past the
  // end, which are skipped. In a high one the runs overlap and cover the first (width - 1) * width + height pixels.
  const auto width = static_cast<std::size_t>(picture.width), height = static_cast<std::size_t>(picture.height);
  if (width > height)
    for (std::size_t y = 0; y < height; ++y) merge_pixels(y * width, height);
  else if (width > 0)
    merge_pixels(0, (width - 1) * width + height);
}

void draw_edge(PixelSpan picture, const EdgePixels& edge) {
  const int right = picture.width - 1, top = picture.height - 1;
  const auto put = [&](int x, int y, Pixel pixel) {
    if (x >= 0 && x <= right && y >= 0 && y <= top) picture.row(y)[x] = pixel;
  };
  // If two sides overlap, the later one is visible.
  for (int y = 1; y <= top; ++y) {
    put(0, y, edge.left_outer);
    put(1, y, edge.left_inner);
    put(right, y - 1, edge.right_outer);
    put(right - 1, y - 1, edge.right_inner);
  }
  for (int x = 0; x <= right; ++x) {
    if (x > 3) put(x - 2, top - 1, edge.left_inner);
    put(x + 1, top, edge.top_outer);
    put(x, 0, edge.bottom_outer);
    if (x > 2) put(x - 2, 1, edge.right_inner);
  }
  put(right, top, edge.corner);
}

}  // namespace kexlib
