// The gallery as an application: its window and its message loop.
#ifndef GALLERY_APPLICATION_H
#define GALLERY_APPLICATION_H

#include <kexlib/framework.h>

#include <functional>

namespace gallery {

// Exit statuses.
constexpr int as_promised = 0, not_as_promised = 1, cannot_start = 2;

// Opens the gallery in the current folder, and returns the exit status when it is closed. If it cannot start,
// the reason is written to the standard error output.
//
// `user`, if not empty, runs on a separate thread and receives the main window. The gallery is closed when it returns.
// If it returns false, a check failed: a dialog may still be open, so the process ends immediately.
int run(const std::function<bool(HWND frame)>& user);

}  // namespace gallery

#endif
