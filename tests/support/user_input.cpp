#include <support/message_pump.h>
#include <support/user_input.h>

namespace {

void key(WORD code, DWORD flags) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = code;
  input.ki.dwFlags = flags;
  SendInput(1, &input, sizeof input);
}

// In the client area.
POINT middle_of(HWND window) {
  RECT client;
  GetClientRect(window, &client);
  return {client.right / 2, client.bottom / 2};
}

}  // namespace

void press_key(WORD code, WORD held) {
  if (held) key(held, 0);
  key(code, 0);
  key(code, KEYEVENTF_KEYUP);
  if (held) key(held, KEYEVENTF_KEYUP);
}

void type_text(const char* text) {
  for (; *text; ++text) {
    const SHORT code = VkKeyScanA(*text);
    press_key(LOBYTE(code), HIBYTE(code) & 1 ? VK_SHIFT : 0);
  }
}

void put_mouse(HWND window, int x, int y) {
  POINT place{x, y};
  ClientToScreen(window, &place);
  SetCursorPos(place.x, place.y);
}

void move_mouse(HWND window, int x, int y) {
  put_mouse(window, x + 1, y);
  pump_waiting();
  put_mouse(window, x, y);
  pump_waiting();
}

void move_mouse_over(HWND window) {
  const POINT middle = middle_of(window);
  move_mouse(window, middle.x, middle.y);
}

void mouse_button(DWORD what) {
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dwFlags = what;
  SendInput(1, &input, sizeof input);
}

bool mouse_reaches(HWND window) {
  move_mouse_over(window);
  POINT wanted = middle_of(window), now;
  ClientToScreen(window, &wanted);
  GetCursorPos(&now);
  return now.x == wanted.x && now.y == wanted.y;
}

void click_here(DWORD down, DWORD up) {
  mouse_button(down);
  mouse_button(up);
}

void click(HWND window, DWORD down, DWORD up) {
  pump_until([&] { return mouse_reaches(window); });
  click_here(down, up);
}

void park_mouse() {
  SetCursorPos(5, 5);
  pump_waiting();
}

bool bring_to_front(HWND window) {
  SetForegroundWindow(window);
  return pump_until([window] { return GetForegroundWindow() == window; });
}
