// The pixel effects: expected values on small pictures, and a comparison with their literal form on random ones.
#include <gtest/gtest.h>

#include <imaging/pixel_effects.h>
#include <support/literal_effects.h>

#include <cstdint>
#include <random>
#include <vector>

namespace {

using kexlib::Pixel;
using Pixels = std::vector<Pixel>;  // the bottom row first

constexpr Pixel K = 0xFF00FF;  // the key
constexpr Pixel F = 0xD4D0C8;  // a face
constexpr Pixel H = 0xFFFFFF;  // a highlight
constexpr Pixel A = 0x000001, B = 0x000002, C = 0x000003, D = 0x000004;

kexlib::PixelSpan span_of(Pixels& pixels, int width) {
  return {pixels.data(), width, width ? static_cast<int>(pixels.size()) / width : 0};
}

literal::Picture literal_of(Pixels& pixels, int width) {
  return {pixels.data(), width, width ? static_cast<int>(pixels.size()) / width : 0};
}

// Sizes and contents that reach every branch: ends of rows, keys with any top byte, face pixels, and noise.
class RandomPicture {
 public:
  explicit RandomPicture(unsigned seed) : random_(seed) {}

  int up_to(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }
  std::uint32_t number() { return static_cast<std::uint32_t>(random_()); }
  Pixels pixels(int count) {
    Pixels pixels(static_cast<std::size_t>(count));
    for (Pixel& pixel : pixels) {
      switch (up_to(7)) {
        case 0:
          pixel = K | number() << 24;
          break;
        case 1:
          pixel = F;
          break;
        case 2:
          pixel = F | number() << 24;
          break;
        default:
          pixel = number();
      }
    }
    return pixels;
  }

 private:
  std::mt19937 random_;
};

// Applies both forms to random pictures of random sizes, wide and high ones. The pixels before and after a picture must
// not change.
template <typename Quick, typename Literal>
void expect_same(Quick quick, Literal slow) {
  constexpr int guard = 64;
  for (unsigned seed = 1; seed <= 400; ++seed) {
    RandomPicture random(seed);
    const int width = random.up_to(40), height = random.up_to(40);
    Pixels picture = random.pixels(guard + width * height + guard), expected = picture;
    const unsigned parameters = random.number();
    RandomPicture one(parameters), other(parameters);
    quick(kexlib::PixelSpan{picture.data() + guard, width, height}, one);
    slow(literal::Picture{expected.data() + guard, width, height}, other);
    ASSERT_EQ(picture, expected) << width << " x " << height << ", seed " << seed;
  }
}

TEST(PixelEffects, AColorBecomesAPixelByExchangingRedAndBlue) {
  EXPECT_EQ(kexlib::pixel_of(0x00030201), 0x010203u);
  EXPECT_EQ(kexlib::pixel_of(0xFF030201), 0x010203u);
  EXPECT_EQ(kexlib::pixel_of(0xFF00FF), kexlib::key_pixel);
}

TEST(PixelEffects, FillingReachesEveryPixelAndNoOther) {
  for (int width : {1, 2, 4, 5, 16}) {
    for (int height : {1, 2, 3, 4, 16}) {
      Pixels guarded(static_cast<std::size_t>(width * height) + 2, A);
      kexlib::fill({guarded.data() + 1, width, height}, 0x80010203);
      Pixels expected(guarded.size(), 0x80010203);
      expected.front() = expected.back() = A;
      EXPECT_EQ(guarded, expected) << width << " x " << height;
    }
  }
}

TEST(PixelEffects, APictureWithoutPixelsIsLeftAlone) {
  const kexlib::PixelSpan nothing;
  kexlib::fill(nothing, A);
  EXPECT_TRUE(kexlib::substitute_key(nothing, A));
  kexlib::tint_all(nothing, 0, 0x808080, 0xFFFFFF, 0, 0);
  kexlib::stipple(nothing, F, H);
  kexlib::shift_down_right(nothing);
  kexlib::merge(nothing, nullptr, F);
  kexlib::draw_edge(nothing, {});
}

TEST(PixelEffects, TheKeyIsReplacedWhateverItsTopByteAndTheSubstituteIsWhole) {
  Pixels picture{K, 0x80FF00FF, 0xFF00FE, 0xFFFF00FF, A, K, 0x00FF01FF, K, K};
  EXPECT_FALSE(kexlib::substitute_key(span_of(picture, 3), B));
  EXPECT_EQ(picture, (Pixels{B, B, 0xFF00FE, B, A, B, 0x00FF01FF, B, B}));
}

TEST(PixelEffects, APictureOfTheKeyAloneIsBlankAndOneOtherPixelAnywhereMakesItNotBlank) {
  for (int size = 1; size <= 9; ++size) {
    Pixels blank(static_cast<std::size_t>(size), K);
    EXPECT_TRUE(kexlib::substitute_key(span_of(blank, size), A)) << size;
    EXPECT_EQ(blank, Pixels(static_cast<std::size_t>(size), A));
    for (int other = 0; other < size; ++other) {
      Pixels picture(static_cast<std::size_t>(size), K);
      picture[static_cast<std::size_t>(other)] = B;
      EXPECT_FALSE(kexlib::substitute_key(span_of(picture, size), A)) << size << ", " << other;
    }
  }
}

TEST(PixelEffects, SubstitutionIsTheLiteralOneOnRandomPictures) {
  expect_same([](auto picture, auto& random) { kexlib::substitute_key(picture, random.number()); },
              [](auto picture, auto& random) { literal::substitute_key(picture, random.number()); });
}

TEST(PixelEffects, APixelOfTheMiddleColorIsTintedToIt) {
  // (1, 2, 3) has the luminance (77 + 302 + 84) >> 8 = 1.
  EXPECT_EQ(kexlib::tint(0x010203, 0, 0x030201, 0xFFFFFF), 0x010203u);
  EXPECT_EQ(kexlib::tint(0x808080, 0x500000, 0x808080, 0xFFFFFF), 0x808080u);
}

TEST(PixelEffects, TheTintRampRunsFromDarkOverMiddleToLight) {
  constexpr kexlib::ColorRef dark = 0x102030, mid = 0x806040, light = 0xFFFFFF;
  // As (red, green, blue): dark (48, 32, 16), mid (64, 96, 128), whose luminance is (4928 + 14496 + 3584) >> 8 = 89.
  EXPECT_EQ(kexlib::tint(0x000000, dark, mid, light), 0x302010u);
  // Luminance 44: 48 + 16*44/89 = 55, 32 + 64*44/89 = 63, 16 + 112*44/89 = 71.
  EXPECT_EQ(kexlib::tint(0x2C2C2C, dark, mid, light), 0x373F47u);
  // Luminance 200: k = 111, n = 167: 64 + 191*111/167 = 190, 96 + 159*111/167 = 201, 128 + 127*111/167 = 212.
  EXPECT_EQ(kexlib::tint(0xC8C8C8, dark, mid, light), 0xBEC9D4u);
  // White does not quite become light: k = 166.
  EXPECT_EQ(kexlib::tint(0xFFFFFF, dark, mid, light), 0xFDFEFEu);
}

TEST(PixelEffects, QuotientsOfFallingRampsAreCutTowardsZero) {
  // From 255 down to 0 over a middle of 128: 255 + (0 - 255) * 1 / 128 = 255 - 1, not 255 - 2.
  EXPECT_EQ(kexlib::tint(0x010101, 0xFFFFFF, 0x808080, 0), 0xFFFFFFu);  // 255 - 127/128
  EXPECT_EQ(kexlib::tint(0x020202, 0xFFFFFF, 0x808080, 0), 0xFEFEFEu);  // 255 - 254/128
  EXPECT_EQ(kexlib::tint(0x818181, 0xFFFFFF, 0x808080, 0), 0x7F7F7Fu);  // 128 - 128/128
}

TEST(PixelEffects, ABlackMiddleOfOnePixelsRampIsARampFromBlackToLight) {
  EXPECT_EQ(kexlib::tint(0x000000, 0, 0, 0xFFFFFF), 0x000000u);
  EXPECT_EQ(kexlib::tint(0x808080, 0, 0, 0xFFFFFF), 0x7F7F7Fu);  // 255 * 128 / 256
}

TEST(PixelEffects, OnePixelsTintIsTheLiteralOneForEveryLuminance) {
  RandomPicture random(7);
  for (int round = 0; round < 300; ++round) {
    const std::uint32_t dark = random.number(), mid = random.number() | 0x10, light = random.number();
    for (Pixel grey = 0; grey < 256; ++grey)
      ASSERT_EQ(kexlib::tint(grey * 0x010101, dark, mid, light), literal::tint(grey * 0x010101, dark, mid, light))
          << std::hex << grey << " " << dark << " " << mid << " " << light;
  }
}

TEST(PixelEffects, ThePicturesRampKeepsTopBytesAndSkipsItsColor) {
  // Skipped is RGB(1, 2, 3); the ramp does not change greys, except the highest.
  Pixels picture{0x80010203, 0x7F000000, 0x11808080, 0xFFFFFFFF, 0x00404040};
  kexlib::tint_all(span_of(picture, 5), 0, 0x808080, 0xFFFFFF, 0x030201, 0);
  EXPECT_EQ(picture, (Pixels{0x80010203, 0x7F000000, 0x11808080, 0xFFFEFEFE, 0x00404040}));
}

TEST(PixelEffects, ABlackMiddleOfThePicturesRampIsGrey) {
  Pixels black{0x000000, 0x404040, 0x808080, 0xC0C0C0}, grey = black;
  kexlib::tint_all(span_of(black, 2), 0x000040, 0, 0x40FFFF, 0x123456, 0);
  kexlib::tint_all(span_of(grey, 2), 0x000040, 0x808080, 0x40FFFF, 0x123456, 0);
  EXPECT_EQ(black, grey);
  EXPECT_NE(black, (Pixels{0x000000, 0x404040, 0x808080, 0xC0C0C0}));
}

TEST(PixelEffects, AMiddleWithoutLuminanceThatIsNotBlackChangesNothing) {
  Pixels picture{0x000000, 0x404040, 0x808080, 0xC0C0C0};
  const Pixels before = picture;
  kexlib::tint_all(span_of(picture, 2), 0x123456, 0x050000, 0xFFFFFF, 0, 0);  // blue 5: 140 >> 8 is 0
  EXPECT_EQ(picture, before);
  kexlib::tint_all(span_of(picture, 2), 0x123456, 0x050000, 0xFFFFFF, 0, 1);  // unless there is a threshold
  EXPECT_NE(picture, before);
}

TEST(PixelEffects, ThePicturesRampIsTheLiteralOneForEveryLuminanceAndThreshold) {
  RandomPicture random(11);
  for (int threshold = 0; threshold < 256; ++threshold) {
    const std::uint32_t dark = random.number(), mid = random.number(), light = random.number(), skip = random.number();
    Pixels picture;
    for (Pixel grey = 0; grey < 256; ++grey) picture.push_back(random.number() << 24 | grey * 0x010101);
    Pixels expected = picture;
    kexlib::tint_all(span_of(picture, 256), dark, mid, light, skip, static_cast<std::uint8_t>(threshold));
    literal::tint_all(literal_of(expected, 256), dark, mid, light, skip, static_cast<std::uint8_t>(threshold));
    ASSERT_EQ(picture, expected) << threshold;
  }
}

TEST(PixelEffects, ThePicturesRampIsTheLiteralOneOnRandomPictures) {
  const auto parameters = [](auto& random, auto tint_all) {
    const std::uint32_t dark = random.number(), mid = random.up_to(9) ? random.number() : 0, light = random.number();
    const std::uint32_t skip = random.up_to(1) ? 0xFF00FF : random.number();
    tint_all(dark, mid, light, skip, static_cast<std::uint8_t>(random.up_to(1) ? random.up_to(255) : 0));
  };
  expect_same([&](auto picture,
                  auto& random) { parameters(random, [&](auto... values) { kexlib::tint_all(picture, values...); }); },
              [&](auto picture, auto& random) {
                parameters(random, [&](auto... values) { literal::tint_all(picture, values...); });
              });
}

TEST(PixelEffects, TheStippleLeavesTwoColumnsOneRowBelowAndTwoRowsAbove) {
  Pixels picture(25, F);
  picture[1 * 5 + 2] = 0x80000000 | F;  // an odd place: the highlight, whole
  picture[2 * 5 + 2] = 0x80000000 | F;  // an even place: the face, whole
  kexlib::stipple(span_of(picture, 5), F, H);
  EXPECT_EQ(picture, (Pixels{F, F, F, F, F,  //
                             F, F, H, F, F,  //
                             F, F, F, F, F,  //
                             F, F, F, F, F,  //
                             F, F, F, F, F}));

  Pixels large(16 * 16, F);
  kexlib::stipple(span_of(large, 16), F, H);
  for (int y = 0; y < 16; ++y)
    for (int x = 0; x < 16; ++x) {
      const bool inside = x >= 2 && x <= 13 && y >= 1 && y <= 13;
      EXPECT_EQ(large[static_cast<std::size_t>(y * 16 + x)], inside && (x + y) % 2 ? H : F) << x << ", " << y;
    }
}

TEST(PixelEffects, TheStippleLeavesNarrowPicturesAndOtherColorsAlone) {
  Pixels narrow(4 * 8, F);
  kexlib::stipple(span_of(narrow, 4), F, H);
  EXPECT_EQ(narrow, Pixels(4 * 8, F));
  Pixels low(5 * 3, F);  // five wide, three high
  kexlib::stipple(span_of(low, 5), F, H);
  EXPECT_EQ(low, Pixels(5 * 3, F));
  Pixels other(16 * 16, A);
  kexlib::stipple(span_of(other, 16), F, H);
  EXPECT_EQ(other, Pixels(16 * 16, A));
}

TEST(PixelEffects, TheStippleIsTheLiteralOneOnRandomPictures) {
  expect_same([](auto picture, auto& random) { kexlib::stipple(picture, F, random.number()); },
              [](auto picture, auto& random) { literal::stipple(picture, F, random.number()); });
}

TEST(PixelEffects, TheShiftOfTwoByTwoCopiesOnePixel) {
  Pixels picture{A, B,   // bottom
                 C, D};  // top
  kexlib::shift_down_right(span_of(picture, 2));
  EXPECT_EQ(picture, (Pixels{A, C, C, D}));
}

TEST(PixelEffects, TheShiftKeepsTheTopRowAndTheLeftColumn) {
  Pixels picture{1,  2,  3,  4,  5,   //
                 6,  7,  8,  9,  10,  //
                 11, 12, 13, 14, 15};
  kexlib::shift_down_right(span_of(picture, 5));
  EXPECT_EQ(picture, (Pixels{1, 6, 7, 8, 9,      //
                             6, 11, 12, 13, 14,  //
                             11, 12, 13, 14, 15}));
}

TEST(PixelEffects, OneRowOrOneColumnIsNotShifted) {
  Pixels row{A, B, C, D}, column = row;
  kexlib::shift_down_right(span_of(row, 4));
  EXPECT_EQ(row, (Pixels{A, B, C, D}));
  kexlib::shift_down_right(span_of(column, 1));
  EXPECT_EQ(column, (Pixels{A, B, C, D}));
}

TEST(PixelEffects, TheShiftIsTheLiteralOneOnRandomPictures) {
  expect_same([](auto picture, auto&) { kexlib::shift_down_right(picture); },
              [](auto picture, auto&) { literal::shift_down_right(picture); });
}

// Rows are copied in one of two ways, by their length and by how far apart they lie.
TEST(PixelEffects, TheShiftIsTheLiteralOneForEachWayToCopyARow) {
  RandomPicture random(12);
  for (const int width : {127, 128, 129, 130, 1008, 1009, 1010, 1023, 1024, 1025, 2048}) {
    Pixels picture(static_cast<std::size_t>(width) * 3);
    for (Pixel& pixel : picture) pixel = random.number();
    Pixels expected = picture;
    kexlib::shift_down_right(span_of(picture, width));
    literal::shift_down_right(literal_of(expected, width));
    EXPECT_EQ(picture, expected) << width;
  }
}

TEST(PixelEffects, MergingCopiesWhatIsNotTheFaceInAllItsBits) {
  Pixels picture{A, A, A, A}, other{F, B, 0x80000000 | F, C};
  kexlib::merge(span_of(picture, 2), other.data(), F);
  EXPECT_EQ(picture, (Pixels{A, B, 0x80000000 | F, C}));
}

TEST(PixelEffects, MergingAWidePictureReachesASquareAtTheLowerLeft) {
  Pixels picture(5 * 3, A), other(5 * 3, B);
  kexlib::merge(span_of(picture, 5), other.data(), F);
  EXPECT_EQ(picture, (Pixels{B, B, B, A, A,  //
                             B, B, B, A, A,  //
                             B, B, B, A, A}));
}

TEST(PixelEffects, MergingAHighPictureStopsBeforeItsEnd) {
  Pixels picture(3 * 5, A), other(3 * 5, B);
  kexlib::merge(span_of(picture, 3), other.data(), F);
  // 2 * 3 + 5 pixels: the last run begins with the third row.
  EXPECT_EQ(picture, (Pixels{B, B, B,  //
                             B, B, B,  //
                             B, B, B,  //
                             B, B, A,  //
                             A, A, A}));
}

TEST(PixelEffects, MergingIsTheLiteralOneOnRandomPictures) {
  const auto with_other = [](auto picture, auto& random, auto merge) {
    Pixels other = random.pixels(picture.width * picture.height);
    merge(picture, other.data(), F);
  };
  expect_same([&](auto picture, auto& random) { with_other(picture, random, kexlib::merge); },
              [&](auto picture, auto& random) { with_other(picture, random, literal::merge); });
}

// Left outer 1, left inner 2, right outer 3, right inner 4, top 5, bottom 6, corner 7.
constexpr kexlib::EdgePixels edge{1, 2, 3, 4, 5, 6, 7};

TEST(PixelEffects, TheEdgeOfOnePixelIsItsCorner) {
  Pixels picture{9};
  kexlib::draw_edge(span_of(picture, 1), edge);
  EXPECT_EQ(picture, (Pixels{7}));
}

TEST(PixelEffects, TheEdgeOfTwoByTwo) {
  Pixels picture(4, 9);
  kexlib::draw_edge(span_of(picture, 2), edge);
  EXPECT_EQ(picture, (Pixels{6, 6,  //
                             1, 7}));
}

TEST(PixelEffects, TheEdgeOfFourByFour) {
  Pixels picture(16, 9);
  kexlib::draw_edge(span_of(picture, 4), edge);
  EXPECT_EQ(picture, (Pixels{6, 6, 6, 6,  //
                             1, 4, 4, 3,  //
                             1, 2, 4, 3,  //
                             1, 5, 5, 7}));
}

TEST(PixelEffects, TheEdgeOfFiveByThree) {
  Pixels picture(15, 9);
  kexlib::draw_edge(span_of(picture, 5), edge);
  EXPECT_EQ(picture, (Pixels{6, 6, 6, 6, 6,  //
                             1, 4, 4, 4, 3,  //
                             1, 5, 5, 5, 7}));
}

TEST(PixelEffects, TheEdgeOfSixteenBySixteenIsTwoPixelsWideAndLeavesTheInside) {
  Pixels picture(16 * 16, 9);
  kexlib::draw_edge(span_of(picture, 16), edge);
  const auto at = [&](int x, int y) { return picture[static_cast<std::size_t>(y * 16 + x)]; };
  const auto expected = [](int x, int y) -> Pixel {
    if (y == 15) return x == 15 ? 7 : x == 0 ? 1 : 5;
    if (y == 0) return 6;
    if (x == 0) return 1;
    if (x == 15) return 3;
    if (y == 1 && x < 14) return 4;
    if (x == 14) return 4;
    if (y == 14 || x == 1) return 2;
    return 9;
  };
  for (int y = 0; y < 16; ++y)
    for (int x = 0; x < 16; ++x) EXPECT_EQ(at(x, y), expected(x, y)) << x << ", " << y;
}

TEST(PixelEffects, TheEdgeOfAnyPictureIsTheLiteralOne) {
  const auto literal_edge = [](literal::Picture p) {
    const int W = p.width, H_ = p.height;
    const auto put = [&](int x, int y, Pixel pixel) {
      if (x >= 0 && x < W && y >= 0 && y < H_) p.at(x, y) = pixel;
    };
    for (int y = 1; y <= H_ - 1; ++y) {
      put(0, y, 1);
      put(1, y, 2);
      put(W - 1, y - 1, 3);
      put(W - 2, y - 1, 4);
    }
    for (int x = 0; x <= W - 1; ++x) {
      if (x > 3) put(x - 2, H_ - 2, 2);
      if (x + 1 < W) put(x + 1, H_ - 1, 5);
      put(x, 0, 6);
      if (x > 2) put(x - 2, 1, 4);
    }
    put(W - 1, H_ - 1, 7);
  };
  expect_same([](auto picture, auto&) { kexlib::draw_edge(picture, edge); },
              [&](auto picture, auto&) { literal_edge(picture); });
}

}  // namespace
