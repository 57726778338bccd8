// Texts, sixteen bytes at a time: some run-time libraries search byte by byte.
#ifndef KEXLIB_SUPPORT_BYTE_BLOCKS_H
#define KEXLIB_SUPPORT_BYTE_BLOCKS_H

#include <emmintrin.h>

#include <bit>
#include <cstddef>
#include <string_view>

namespace kexlib {

inline constexpr std::size_t byte_block_size = sizeof(__m128i);

inline __m128i byte_block_at(const char* text) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(text)); }

// A mask: 0xFF for each byte of a block that is among the characters, 0 for the others.
inline __m128i among(std::string_view characters, __m128i block) {
  __m128i found = _mm_setzero_si128();
  for (const char each : characters) found = _mm_or_si128(found, _mm_cmpeq_epi8(block, _mm_set1_epi8(each)));
  return found;
}

// The number of bytes before the first one that is among the characters; the whole length if there is none.
inline std::size_t length_before(std::string_view characters, std::string_view text) {
  std::size_t i = 0;
  for (; i + byte_block_size <= text.size(); i += byte_block_size)
    if (const int found = _mm_movemask_epi8(among(characters, byte_block_at(text.data() + i))))
      return i + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(found)));
  while (i < text.size() && characters.find(text[i]) == std::string_view::npos) ++i;
  return i;
}

}  // namespace kexlib

#endif
