// wbzframe: faces of push buttons with the visual styles on and off.
#include <gtest/gtest.h>

#include <windows.h>
#include <uxtheme.h>

#include <support/expect_flat.h>
#include <support/picture.h>
#include <wbzframe/themed_std_button.h>

#include <string>
#include <utility>

namespace {

constexpr COLORREF behind = RGB(255, 255, 200);
constexpr wbzThemeStyle states[] = {wbzThemeNormal, wbzThemeDisabled, wbzThemeHot, wbzThemePressed};

// A drawer that draws a mark for each state at a separate position.
class Marks : public wbzThemeDrawer {
 public:
  Marks(int place, bool can) : place_(place), can_(can) {}
  bool can_draw() const override { return can_; }
  void draw(HDC dc, const RECT& rect, wbzThemeStyle style) const override {
    SetPixel(dc, rect.left + place_, rect.top, RGB(style, place_, 7));
    SetPixel(dc, rect.left, rect.bottom - 1, RGB(0, 0, place_));
  }

 private:
  int place_;
  bool can_;
};

class ThemedStdButton : public testing::Test {
 protected:
  ThemedStdButton() {
    window_ = CreateWindowA("BUTTON", "", WS_POPUP, 0, 0, 40, 30, nullptr, nullptr, nullptr, nullptr);
    drawer_ = wbzThemedStdButton::create(&window_);
  }
  ~ThemedStdButton() override { DestroyWindow(window_); }

  void turn_styles_off() const { ASSERT_EQ(SetWindowTheme(window_, L" ", L" "), S_OK); }

  Picture face(wbzThemeStyle style) const {
    Picture picture(40, 30, behind);
    drawer_->draw(picture.dc(), RECT{2, 2, 38, 28}, style);
    return picture;
  }
  // The four states side by side.
  void save_faces(const std::string& name) const {
    Picture sheet(4 * 44, 38, behind);
    for (int i = 0; i < 4; ++i) BitBlt(sheet.dc(), i * 44 + 2, 4, 40, 30, face(states[i]).dc(), 0, 0, SRCCOPY);
    EXPECT_TRUE(sheet.save(name, 3));
  }

  HWND window_;
  std::shared_ptr<wbzThemeDrawer> drawer_;
};

TEST_F(ThemedStdButton, DrawsWhatTheVisualStyleHas) {
  ASSERT_TRUE(drawer_->can_draw());
  const HTHEME theme = OpenThemeData(window_, L"BUTTON");
  constexpr std::pair<wbzThemeStyle, int> styles[] = {{wbzThemeNormal, 1},    // PBS_NORMAL
                                                      {wbzThemeHot, 2},       // PBS_HOT
                                                      {wbzThemePressed, 3},   // PBS_PRESSED
                                                      {wbzThemeDisabled, 4},  // PBS_DISABLED
                                                      {static_cast<wbzThemeStyle>(9), 1}};
  for (const auto& [style, state] : styles) {
    const Picture expected(40, 30, behind);
    const RECT rect{2, 2, 38, 28};
    DrawThemeBackground(theme, expected.dc(), 1, state, &rect, nullptr);
    EXPECT_TRUE(face(style) == expected) << style;
  }
  CloseThemeData(theme);
  EXPECT_FALSE(face(wbzThemeNormal) == face(wbzThemePressed));
  EXPECT_FALSE(face(wbzThemeNormal) == face(wbzThemeHot));
  save_faces("wbzframe_styled");
}

TEST_F(ThemedStdButton, DrawsPlainlyWhereTheStylesAreOff) {
  turn_styles_off();
  EXPECT_FALSE(drawer_->can_draw());
  constexpr std::pair<wbzThemeStyle, UINT> styles[] = {
      {wbzThemeNormal, 0}, {wbzThemeDisabled, DFCS_INACTIVE}, {wbzThemeHot, DFCS_HOT}, {wbzThemePressed, DFCS_PUSHED}};
  for (const auto& [style, state] : styles) {
    const Picture expected(40, 30, behind);
    RECT rect{2, 2, 38, 28};
    DrawFrameControl(expected.dc(), &rect, DFC_BUTTON, DFCS_BUTTONPUSH | state);
    EXPECT_TRUE(face(style) == expected) << style;
  }
  EXPECT_FALSE(face(wbzThemeNormal) == face(wbzThemePressed));
  save_faces("wbzframe_plain");
  ASSERT_EQ(SetWindowTheme(window_, nullptr, nullptr), S_OK);
  EXPECT_TRUE(drawer_->can_draw()) << "they are on again";
}

TEST_F(ThemedStdButton, ReadsTheWindowWhenItDraws) {
  const HWND window = std::exchange(window_, nullptr);
  EXPECT_FALSE(drawer_->can_draw());
  EXPECT_NE(face(wbzThemeNormal).at(20, 15), behind) << "plainly, but drawn";
  window_ = window;
  EXPECT_TRUE(drawer_->can_draw());
}

TEST_F(ThemedStdButton, MayHaveNoWindowAtAll) {
  drawer_ = wbzThemedStdButton::create(nullptr);
  EXPECT_FALSE(drawer_->can_draw());
  EXPECT_NE(face(wbzThemeNormal).at(20, 15), behind);
}

TEST_F(ThemedStdButton, LeavesNothingBehind) {
  expect_flat(1000, [this] {
    drawer_ = wbzThemedStdButton::create(&window_);
    drawer_->can_draw();
    face(wbzThemeHot);
  });
}

TEST(Themer, DrawsWithTheFirstAndThenWithTheSecond) {
  const Picture picture(10, 10, behind);
  const auto themer = wbzThemer::create(std::make_shared<Marks>(3, true), std::make_shared<Marks>(5, true));
  themer->draw_theme(picture.dc(), RECT{0, 0, 10, 10}, wbzThemePressed);
  EXPECT_EQ(picture.at(3, 0), RGB(3, 3, 7));
  EXPECT_EQ(picture.at(5, 0), RGB(3, 5, 7));
  EXPECT_EQ(picture.at(0, 9), RGB(0, 0, 5)) << "the second is on top";
}

TEST(Themer, CanDrawWhereAllItsDrawersCan) {
  const auto able = std::make_shared<Marks>(1, true), unable = std::make_shared<Marks>(1, false);
  EXPECT_TRUE(wbzThemer::can_draw(wbzThemer::create(able, nullptr)));
  EXPECT_TRUE(wbzThemer::can_draw(wbzThemer::create(nullptr, able)));
  EXPECT_TRUE(wbzThemer::can_draw(wbzThemer::create(able, able)));
  EXPECT_FALSE(wbzThemer::can_draw(wbzThemer::create(unable, nullptr)));
  EXPECT_FALSE(wbzThemer::can_draw(wbzThemer::create(able, unable)));
  EXPECT_FALSE(wbzThemer::can_draw(wbzThemer::create(nullptr, nullptr)));
  EXPECT_FALSE(wbzThemer::can_draw(nullptr));
}

TEST(Themer, WithoutDrawersDrawsNothing) {
  const Picture picture(10, 10, behind), untouched(10, 10, behind);
  wbzThemer::create(nullptr, nullptr)->draw_theme(picture.dc(), RECT{0, 0, 10, 10}, wbzThemeNormal);
  EXPECT_TRUE(picture == untouched);
}

}  // namespace
