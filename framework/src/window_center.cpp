#include <atlwin.h>

#include <algorithm>

namespace ATL {

namespace {

// The area to centre over, and the area to stay inside.
struct Places {
  RECT center;
  RECT limits;
};

Places places_of_child(HWND window, HWND center) {
  Places places;
  HWND parent = GetParent(window);
  GetClientRect(parent, &places.limits);
  GetClientRect(center, &places.center);
  MapWindowPoints(center, parent, reinterpret_cast<LPPOINT>(&places.center), 2);
  return places;
}

Places places_of_top_level(HWND window, HWND center) {
  Places places;
  bool seen = center && IsWindowVisible(center) && !IsIconic(center);
  MONITORINFO monitor = {};
  monitor.cbSize = sizeof monitor;
  GetMonitorInfo(MonitorFromWindow(seen ? center : window, MONITOR_DEFAULTTONEAREST), &monitor);
  places.limits = monitor.rcWork;
  places.center = monitor.rcWork;
  if (seen) GetWindowRect(center, &places.center);
  return places;
}

// Returns the start of `length` in the middle of a range. If it does not fit, its beginning stays visible.
LONG middle(LONG from, LONG to, LONG length, LONG lowest, LONG highest) {
  return std::max(std::min((from + to) / 2 - length / 2, highest - length), lowest);
}

}  // namespace

BOOL CWindow::CenterWindow(HWND center) noexcept {
  bool child = GetStyle() & WS_CHILD;
  if (!center) center = child ? ::GetParent(m_hWnd) : ::GetWindow(m_hWnd, GW_OWNER);
  RECT own;
  if (!GetWindowRect(&own)) return FALSE;
  Places places = child ? places_of_child(m_hWnd, center) : places_of_top_level(m_hWnd, center);
  LONG x =
      middle(places.center.left, places.center.right, own.right - own.left, places.limits.left, places.limits.right);
  LONG y =
      middle(places.center.top, places.center.bottom, own.bottom - own.top, places.limits.top, places.limits.bottom);
  return SetWindowPos(nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace ATL
