// The gallery as an application: its window, and the loop that it lives in.
#ifndef GALLERY_APPLICATION_H
#define GALLERY_APPLICATION_H

#include <windows.h>

#include <functional>

namespace gallery {

// Exit statuses.
constexpr int as_promised = 0, not_as_promised = 1, cannot_start = 2;

// Opens the gallery in the current folder, and returns the exit status when it is closed. What keeps it from starting
// is said on the standard error output.
//
// `user`, where there is one, runs on a thread of its own, beside the window that it gets; the gallery is closed
// when it returns. False says that something was not as promised: a dialog may be open then that nobody closes any
// more, so the process ends at once.
int run(const std::function<bool(HWND frame)>& user);

}  // namespace gallery

#endif
