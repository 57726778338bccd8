#include "palette.h"

namespace {

constexpr std::uint32_t opaque = 0xFF000000;

}  // namespace

std::size_t Palette::place_of(std::uint32_t color) const {
  constexpr std::uint32_t golden_ratio = 0x9E3779B9;  // of 2^32: spreads neighbouring colours
  std::size_t place = color * golden_ratio >> 22;
  while (slots_[place].color != 0 && slots_[place].color != color) place = (place + 1) % slots;
  return place;
}

bool Palette::add(const hnDuctImage& image) {
  const std::size_t count = static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height());
  const std::uint32_t* const pixels = image.row(0);
  std::uint32_t last = 0;  // no opaque colour
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint32_t color = pixels[i] | opaque;
    if (color == last) continue;
    last = color;
    Slot& slot = slots_[place_of(color)];
    if (slot.color == color) continue;
    if (count_ == colors_.size()) return false;
    slot = {color, static_cast<std::uint8_t>(count_)};
    colors_[count_++] = color;
  }
  return true;
}

void Palette::write_indices(const std::uint32_t* pixels, std::size_t count, std::uint8_t* indices) const {
  std::uint32_t last = 0;
  std::uint8_t index = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint32_t color = pixels[i] | opaque;
    if (color != last) {
      last = color;
      index = slots_[place_of(color)].index;
    }
    indices[i] = index;
  }
}
