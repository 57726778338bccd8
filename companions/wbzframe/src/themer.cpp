#include <wbzframe/themer.h>

#include <utility>

wbzThemeDrawer::~wbzThemeDrawer() = default;

wbzThemer::wbzThemer(std::shared_ptr<wbzThemeDrawer> drawer, std::shared_ptr<wbzThemeDrawer> second)
    : drawer_(std::move(drawer)), second_(std::move(second)) {}

std::shared_ptr<wbzThemer> wbzThemer::create(std::shared_ptr<wbzThemeDrawer> drawer,
                                             std::shared_ptr<wbzThemeDrawer> second) {
  return std::shared_ptr<wbzThemer>(new wbzThemer(std::move(drawer), std::move(second)));
}

// By value, since callers depend on this signature.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool wbzThemer::can_draw(std::shared_ptr<wbzThemer> themer) {
  if (!themer || (!themer->drawer_ && !themer->second_)) return false;
  return (!themer->drawer_ || themer->drawer_->can_draw()) && (!themer->second_ || themer->second_->can_draw());
}

void wbzThemer::draw_theme(HDC dc, const RECT& rect, wbzThemeStyle state) const {
  if (drawer_) drawer_->draw(dc, rect, state);
  if (second_) second_->draw(dc, rect, state);
}
