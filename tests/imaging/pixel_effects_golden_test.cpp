// The golden sheet: the results of all effects on one picture with fixed colours, side by side. The test writes
// build/pictures/pixel_effects.png. After an intended change, check that file and copy it to tests/imaging/effects.png.
#include <gtest/gtest.h>

#include <windows.h>

#include <imaging/pixel_effects.h>
#include <imaging/resources.h>
#include <support/decoded_image.h>
#include <support/files.h>
#include <support/picture.h>

#include <algorithm>
#include <ios>
#include <iterator>
#include <vector>

namespace {

using kexlib::PixelSpan;

constexpr int size = 24;
constexpr kexlib::Pixel face_pixel = 0xD4D0C8;

// A disc with a diagonal of the key, on the face.
std::vector<kexlib::Pixel> subject() {
  std::vector<kexlib::Pixel> pixels(size * size, face_pixel);
  for (int y = 3; y < 21; ++y)
    for (int x = 3; x < 21; ++x)
      if ((x - 12) * (x - 12) + (y - 12) * (y - 12) < 81)
        pixels[static_cast<size_t>(y * size + x)] =
            x == y ? kexlib::key_pixel : static_cast<kexlib::Pixel>(x * 12 << 16 | y * 12 << 8 | (x ^ y) * 8);
  return pixels;
}

// From left to right. Add a new effect at the end.
constexpr struct {
  const char* name;
  void (*apply)(PixelSpan picture);
} effects[] = {
    {"nothing", [](PixelSpan) {}},
    {"fill", [](PixelSpan picture) { kexlib::fill(picture, 0x336699); }},
    {"substitute_key", [](PixelSpan picture) { kexlib::substitute_key(picture, 0x00FF00); }},
    {"tint_all", [](PixelSpan picture) { kexlib::tint_all(picture, 0x500000, 0xAA5500, 0xFFFFFF, 0xC8D0D4, 0); }},
    {"tint_all with a threshold",
     [](PixelSpan picture) { kexlib::tint_all(picture, 0x000000, 0x808080, 0xFFFFFF, 0xC8D0D4, 200); }},
    {"stipple", [](PixelSpan picture) { kexlib::stipple(picture, face_pixel, 0xFFFFFF); }},
    {"shift_down_right", [](PixelSpan picture) { kexlib::shift_down_right(picture); }},
    {"merge with itself", [](PixelSpan picture) { kexlib::merge(picture, subject().data(), 0x000000); }},
    {"merge on another picture",
     [](PixelSpan picture) {
       kexlib::fill(picture, 0x102030);
       kexlib::merge(picture, subject().data(), face_pixel);
     }},
    {"draw_edge",
     [](PixelSpan picture) {
       kexlib::draw_edge(picture, {0xFFFFFF, 0xE4E0D8, 0x404040, 0x808080, 0xFFFFFF, 0x404040, 0x202020});
     }},
};
constexpr int count = std::size(effects);

DecodedImage golden_sheet() {
  const TemporaryFolder folder;
  const HRSRC golden = FindResourceA(nullptr, MAKEINTRESOURCEA(IDR_EFFECTS), reinterpret_cast<LPCSTR>(RT_RCDATA));
  write_file("golden.png",
             {static_cast<const char*>(LockResource(LoadResource(nullptr, golden))), SizeofResource(nullptr, golden)});
  return decode_image("golden.png");
}

TEST(Dib, TheEffectsMakeTheSamePictureAsEver) {
  Picture sheet(size * count, size, 0);
  std::vector<std::vector<kexlib::Pixel>> results;
  for (const auto& effect : effects) {
    const int left = static_cast<int>(results.size()) * size;
    std::vector<kexlib::Pixel>& pixels = results.emplace_back(subject());
    effect.apply({pixels.data(), size, size});
    for (int y = 0; y < size; ++y)
      for (int x = 0; x < size; ++x)
        SetPixelV(sheet.dc(), left + x, size - 1 - y, kexlib::pixel_of(pixels[static_cast<size_t>(y * size + x)]));
  }
  EXPECT_TRUE(sheet.save("pixel_effects"));

  const DecodedImage golden = golden_sheet();
  ASSERT_EQ(golden.width, size * count) << "effects.png has another number of effects";
  ASSERT_EQ(golden.height, size);
  for (int effect = 0; effect < count; ++effect) {
    std::vector<kexlib::Pixel> expected;
    for (int y = size - 1; y >= 0; --y)
      for (int x = 0; x < size; ++x)
        expected.push_back(golden.pixels[static_cast<size_t>(y * size * count + effect * size + x)] &
                           kexlib::color_bits);
    std::vector<kexlib::Pixel> actual = results[static_cast<size_t>(effect)];
    for (kexlib::Pixel& pixel : actual) pixel &= kexlib::color_bits;
    const auto [wrong, right] = std::mismatch(actual.begin(), actual.end(), expected.begin());
    if (wrong == actual.end()) continue;
    const int place = static_cast<int>(wrong - actual.begin());
    ADD_FAILURE() << effects[effect].name << ": the pixel in column " << place % size << " and row "
                  << size - 1 - place / size << " of its picture is " << std::hex << *wrong << ", not " << *right;
  }
}

}  // namespace
