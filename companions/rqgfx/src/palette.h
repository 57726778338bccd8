// The colours of an opaque picture that has no more than 256, as pictures of user interfaces do.
#ifndef RQGFX_SRC_PALETTE_H
#define RQGFX_SRC_PALETTE_H

#include <rqgfx/duct_image.h>

#include <array>
#include <cstddef>
#include <cstdint>

class Palette {
 public:
  // Adds the colours of an image; the top bytes do not count. False if there are more than 256.
  bool add(const hnDuctImage& image);

  // A byte for each of `count` pixels, all of whose colours have been added.
  void write_indices(const std::uint32_t* pixels, std::size_t count, std::uint8_t* indices) const;

  // 0xFFRRGGBB, in the order of their first pixels.
  const std::uint32_t* colors() const { return colors_.data(); }
  unsigned count() const { return count_; }

 private:
  // A hash table with open addressing; at most a quarter of the slots is taken.
  struct Slot {
    std::uint32_t color = 0;  // 0: free
    std::uint8_t index = 0;
  };
  static constexpr std::size_t slots = 1024;

  // Where the colour is or would be.
  std::size_t place_of(std::uint32_t color) const;

  std::array<Slot, slots> slots_{};
  std::array<std::uint32_t, 256> colors_{};
  unsigned count_ = 0;
};

#endif
