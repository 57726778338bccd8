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

void move_mouse(HWND window, int x, int y) {
  POINT place{x, y};
  ClientToScreen(window, &place);
  SetCursorPos(place.x + 1, place.y);
  pump_waiting();
  SetCursorPos(place.x, place.y);
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

void click(HWND window, DWORD down, DWORD up) {
  // The display may still be telling of where the mouse was before.
  POINT middle = middle_of(window);
  ClientToScreen(window, &middle);
  pump_until([&] {
    move_mouse_over(window);
    POINT now;
    GetCursorPos(&now);
    return now.x == middle.x && now.y == middle.y;
  });
  mouse_button(down);
  mouse_button(up);
}

void park_mouse() {
  SetCursorPos(5, 5);
  pump_waiting();
}

bool bring_to_front(HWND window) {
  SetForegroundWindow(window);
  return pump_until([window] { return GetForegroundWindow() == window; });
}
