#ifndef TESTS_SUPPORT_WINDOW_TEXT_H
#define TESTS_SUPPORT_WINDOW_TEXT_H

#include <windows.h>

#include <string>

// The text of a window or control, whole (GetWindowTextA).
std::string window_text(HWND window);

#endif
