// Input by the real mouse and keyboard, for suites named ...OnScreen only.
//
// Input arrives later: pump until its effect is seen.
#ifndef TESTS_SUPPORT_USER_INPUT_H
#define TESTS_SUPPORT_USER_INPUT_H

#include <windows.h>

// Presses and releases a key while the key `held` is down.
void press_key(WORD code, WORD held = 0);

// Types letters, digits and the characters of the keyboard's layout.
void type_text(const char* text);

// Moves the mouse to a place in a window's client area. Dispatches no message.
void put_mouse(HWND window, int x, int y);
// The same in two small steps, as a hand does it. Dispatches their messages.
void move_mouse(HWND window, int x, int y);
// Moves the mouse to the middle of the window.
void move_mouse_over(HWND window);

// Moves to the middle of the window and returns whether the mouse has arrived. Call it until it has: the display may
// still report an earlier place.
bool mouse_reaches(HWND window);

// MOUSEEVENTF_LEFTDOWN and its like.
void mouse_button(DWORD what);

// Presses a button of the mouse and releases it where the mouse is.
void click_here(DWORD down = MOUSEEVENTF_LEFTDOWN, DWORD up = MOUSEEVENTF_LEFTUP);
// Moves to the middle of the window, waits until the mouse has arrived, presses and releases.
void click(HWND window, DWORD down = MOUSEEVENTF_LEFTDOWN, DWORD up = MOUSEEVENTF_LEFTUP);

// Moves the mouse to where no window of the tests is.
void park_mouse();

// Makes a top-level window the foreground window. Returns false if that takes too long.
bool bring_to_front(HWND window);

#endif
