// kexWTLDIB: the effects with the system's colours.
#define _WTL_NO_AUTOMATIC_NAMESPACE
#include <imaging/dib_fixture.h>
#include <support/import_override.h>
#include <support/picture.h>

namespace {

TEST(Dib, FillingStoresTheColorWithRedAndBlueExchanged) {
  Dib dib(3, Pixels(6, 0xFFFFFFFF));
  dib.Fill(RGB(1, 2, 3));
  EXPECT_EQ(dib.pixels(), Pixels(6, 0x00010203));
}

TEST(Dib, EffectsSeeWhatGdiHasJustDrawn) {
  Dib dib(2, Pixels(4, 0));
  for (int i = 0; i < 100; ++i) {
    SetPixel(dib.m_dc, 0, 1, RGB(255, 0, 255));
    SetPixel(dib.m_dc, 1, 1, RGB(i, 0, 0));
    dib.UpdateSubstituteBits(substitute);
    ASSERT_EQ(dib.m_bits[0], S);
    ASSERT_EQ(dib.m_bits[1] & 0xFFFFFF, static_cast<DWORD>(i) << 16);
  }
}

int flushes = 0;
BOOL WINAPI count_flush() {
  ++flushes;
  return GdiFlush();
}

TEST(Dib, EveryEffectFlushesGdiBeforeItTouchesThePixels) {
  const ImportOverride flush("kexlib.dll", "gdi32.dll", "GdiFlush", count_flush);
  ASSERT_TRUE(flush.made());
  Dib dib(2, {1, 2, 3, 4}), other(2, {5, 6, 7, 8});
  const auto flushes_of = [&](auto effect) {
    flushes = 0;
    effect();
    return flushes;
  };
  EXPECT_EQ(flushes_of([&] { dib.Fill(0); }), 1);
  EXPECT_EQ(flushes_of([&] { dib.UpdateSubstituteBits(0); }), 1);
  EXPECT_EQ(flushes_of([&] { dib.Color3Tint(0, substitute, 0, 0, 0); }), 1);
  EXPECT_EQ(flushes_of([&] { dib.insensitive(0); }), 1);
  EXPECT_EQ(flushes_of([&] { dib.cool_stipple(); }), 1);
  EXPECT_EQ(flushes_of([&] { dib.down(); }), 1);
  EXPECT_EQ(flushes_of([&] { dib.draw_button_edge(1, 0); }), 1);
  EXPECT_EQ(flushes_of([&] { dib.draw_button_flat(kexEdgeRaised, 0); }), 1);
  EXPECT_GE(flushes_of([&] { dib.merge(other); }), 1);
  EXPECT_GE(flushes_of([&] { dib.copy_from(&other); }), 1);
}

TEST(Dib, TintsOnePixel) {
  EXPECT_EQ(kexWTLDIB::TintColor(0x406080, RGB(0, 0, 0), RGB(0x40, 0x60, 0x80), RGB(255, 255, 255)), 0x406080u);
}

TEST(Dib, TheDisabledLookGoesFromShadowOverFaceToWhite) {
  const COLORREF shadow = GetSysColor(COLOR_BTNSHADOW), face = GetSysColor(COLOR_BTNFACE);
  const DWORD face_pixel = system_pixel(COLOR_BTNFACE);
  Dib dib(4, {0x80000000, face_pixel, 0xFFFFFF, X}), same(4, {0x80000000, face_pixel, 0xFFFFFF, X});
  dib.insensitive(RGB(1, 2, 3));
  same.Color3Tint(shadow, face, RGB(255, 255, 255), RGB(1, 2, 3), 0);
  EXPECT_EQ(dib.pixels(), same.pixels());
  EXPECT_EQ(dib.pixels()[0], 0x80000000u | system_pixel(COLOR_BTNSHADOW));
  EXPECT_EQ(dib.pixels()[1], face_pixel);
  EXPECT_EQ(dib.pixels()[3], X);
}

TEST(Dib, TheStippleMixesHighlightIntoTheFace) {
  const DWORD face = system_pixel(COLOR_BTNFACE), highlight = system_pixel(COLOR_BTNHIGHLIGHT);
  ASSERT_NE(face, highlight);
  Dib dib(5, Pixels(25, face));
  dib.cool_stipple();
  Pixels expected(25, face);
  expected[1 * 5 + 2] = highlight;
  EXPECT_EQ(dib.pixels(), expected);
}

TEST(Dib, ThePressedLookOfTwoByTwoMovesOnePixel) {
  Dib dib(2, {1, 2, 3, 4});
  dib.down();
  EXPECT_EQ(dib.pixels(), (Pixels{1, 3, 3, 4}));
}

TEST(Dib, MergingTakesWhatIsNotTheFaceFromAPictureOfTheSameSize) {
  const DWORD face = system_pixel(COLOR_BTNFACE);
  Dib dib(2, {1, 2, 3, 4}), other(2, {face, 5, face | 0x80000000, 6}), high(1, {7, 7, 7, 7});
  dib.merge(high);
  EXPECT_EQ(dib.pixels(), (Pixels{1, 2, 3, 4}));
  dib.merge(other);
  EXPECT_EQ(dib.pixels(), (Pixels{1, 5, face | 0x80000000, 6}));
}

constexpr DWORD white = 0xFFFFFF, grey = 0x808080, black = 0x000000, face_color = 0x102030;
constexpr COLORREF face = RGB(0x10, 0x20, 0x30);

TEST(Dib, TheRaisedEdgeIsLightAboveAndDarkBelow) {
  Dib dib(4, Pixels(16, X));
  dib.draw_button_edge(1, face);
  EXPECT_EQ(dib.pixels(), (Pixels{black, black, black, black,      // bottom
                                  white, grey, grey, black,        //
                                  white, face_color, grey, black,  //
                                  white, white, white, black}));
}

TEST(Dib, TheSunkenEdgeHasABlackCornerToo) {
  Dib dib(4, Pixels(16, X));
  dib.draw_button_edge(0, face);
  EXPECT_EQ(dib.pixels(), (Pixels{white, white, white, white,            //
                                  black, face_color, face_color, white,  //
                                  black, grey, face_color, white,        //
                                  black, black, black, black}));
}

TEST(Dib, FlatEdgesHaveTheSystemsColors) {
  const DWORD light = system_pixel(COLOR_BTNHIGHLIGHT), shadow = system_pixel(COLOR_BTNSHADOW), f = face_color;
  Dib raised(4, Pixels(16, X)), sunken(4, Pixels(16, X)), flat(4, Pixels(16, X)), unknown(4, Pixels(16, X));
  raised.draw_button_flat(kexEdgeRaised, face);
  sunken.draw_button_flat(kexEdgeSunken, face);
  flat.draw_button_flat(kexEdgeFlat, face);
  unknown.draw_button_flat(static_cast<kexWTLDIBEdgeStyle>(3), face);
  EXPECT_EQ(raised.pixels(), (Pixels{shadow, shadow, shadow, shadow,  //
                                     light, f, f, shadow,             //
                                     light, f, f, shadow,             //
                                     light, light, light, shadow}));
  EXPECT_EQ(sunken.pixels(), (Pixels{light, light, light, light,  //
                                     shadow, f, f, light,         //
                                     shadow, f, f, light,         //
                                     shadow, shadow, shadow, light}));
  EXPECT_EQ(flat.pixels(), Pixels(16, f));
  EXPECT_EQ(unknown.pixels(), Pixels(16, f));
}

// Writes a picture of the effects for inspection.
TEST(Dib, TheEffectsLookAsTheyShould) {
  const DWORD face_pixel = system_pixel(COLOR_BTNFACE);
  const auto make = [&](Dib* dib) {
    dib->create(32, 32);
    dib->Fill(GetSysColor(COLOR_BTNFACE));
    for (int y = 8; y < 24; ++y)
      for (int x = 8; x < 24; ++x)
        dib->m_bits[y * 32 + x] = static_cast<DWORD>(x * 8) << 16 | static_cast<DWORD>(y * 8) << 8 | 0x40;
  };
  Picture picture(6 * 36 + 4, 40, GetSysColor(COLOR_BTNFACE));
  WTL::CDC dc(picture.dc());
  int x = 4;
  const auto show = [&](auto effect) {
    Dib dib;
    make(&dib);
    effect(dib);
    dib.copy_to_dc(&dc, x, 4);
    x += 36;
  };
  show([](Dib& dib) { dib.draw_button_edge(1, GetSysColor(COLOR_BTNFACE)); });
  show([](Dib& dib) {
    dib.down();
    dib.cool_stipple();
    dib.draw_button_edge(0, GetSysColor(COLOR_BTNFACE));
  });
  show([](Dib& dib) { dib.insensitive(GetSysColor(COLOR_BTNFACE)); });
  show([](Dib& dib) { dib.Color3Tint(0x500000, 0xAA0000, 0xFFFFFF, GetSysColor(COLOR_BTNFACE), 0); });
  show([](Dib& dib) { dib.draw_button_flat(kexEdgeRaised, GetSysColor(COLOR_BTNFACE)); });
  show([](Dib& dib) { dib.draw_button_flat(kexEdgeSunken, GetSysColor(COLOR_BTNFACE)); });
  dc.Detach();
  EXPECT_EQ(picture.at(4, 4), RGB(255, 255, 255));
  EXPECT_NE(picture.at(20, 20), face_pixel);
  EXPECT_TRUE(picture.save("dib_effects", 3));
}

}  // namespace
