// What a user's hand does with the mouse, for windows of any process.
#ifndef GALLERY_USER_INPUT_H
#define GALLERY_USER_INPUT_H

#include <kexlib/framework.h>

#include <functional>

namespace gallery {

// Looks until the condition holds. Returns false if it does not in this time.
bool comes_true(const std::function<bool()>& condition, int milliseconds);

// Moves the pointer on the screen and presses or releases a button there: MOUSEEVENTF_LEFTDOWN and its like, or 0.
void send_mouse(POINT place, DWORD what);

// Moves the pointer to a place on the screen, and returns when it stays there.
void move_mouse(POINT place);

}  // namespace gallery

#endif
