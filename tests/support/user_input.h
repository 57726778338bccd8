// The real mouse and keyboard, as a person moves them. The display is one for all: only suites named ...OnScreen.
//
// What is sent arrives later: pump until it is seen to have happened.
#ifndef TESTS_SUPPORT_USER_INPUT_H
#define TESTS_SUPPORT_USER_INPUT_H

#include <windows.h>

// Presses a key and releases it, while those of the other codes are held down.
void press_key(WORD code, WORD held = 0);

// Types letters, digits and the signs of the keyboard's layout.
void type_text(const char* text);

// To a place in a window's client area, in two small steps as a hand does it.
void move_mouse(HWND window, int x, int y);
// To the middle of the window.
void move_mouse_over(HWND window);

// MOUSEEVENTF_LEFTDOWN and its like.
void mouse_button(DWORD what);

// Moves to the middle of the window, presses and releases.
void click(HWND window, DWORD down = MOUSEEVENTF_LEFTDOWN, DWORD up = MOUSEEVENTF_LEFTUP);

// To where no window of the tests is.
void park_mouse();

// Makes a top-level window the one that has the keyboard; false where that takes too long.
bool bring_to_front(HWND window);

#endif
