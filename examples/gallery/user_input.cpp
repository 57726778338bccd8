#include <gallery/user_input.h>

namespace gallery {

bool comes_true(const std::function<bool()>& condition, int milliseconds) {
  constexpr int look_again = 10;
  for (const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(milliseconds);; Sleep(look_again)) {
    if (condition()) return true;
    if (GetTickCount64() > end) return false;
  }
}

// Position and button in one event: between two events the pointer could be moved by something else.
void send_mouse(POINT place, DWORD what) {
  const auto normalized = [](int position, int size) { return (position * 0x10000 + 0x8000) / size; };
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dx = normalized(place.x, GetSystemMetrics(SM_CXSCREEN));
  input.mi.dy = normalized(place.y, GetSystemMetrics(SM_CYSCREEN));
  input.mi.dwFlags = what | MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
  SendInput(1, &input, sizeof input);
}

// Pending events of the display may move the pointer again, so check that it stays.
void move_mouse(POINT place) {
  constexpr int looks = 3, patience = 20'000;  // milliseconds
  int looked = 0;
  comes_true(
      [&] {
        POINT now;
        GetCursorPos(&now);
        const bool there = now.x == place.x && now.y == place.y;
        looked = there ? looked + 1 : 0;
        if (!there) send_mouse(place, 0);
        return looked >= looks;
      },
      patience);
}

}  // namespace gallery
