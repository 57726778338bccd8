// Screen capture: the whole screen as a PNG file.
//
//     CString path("C:\\Temp\\screen.png");
//     if (FAILED(kex_screen_to_file(path))) ...
#ifndef KEXLIB_IMAGING_SCREEN_CAPTURE_H
#define KEXLIB_IMAGING_SCREEN_CAPTURE_H

#include <kexlib/export.h>
#include <kexlib/framework.h>

/// Copies the primary screen (BitBlt from the desktop window) and writes it to a PNG file; an existing file is
/// replaced. The path is in the ANSI code page and is not changed. S_OK (0) if the screen could be copied, even if the
/// file cannot be written; E_FAIL otherwise. Screens to the left of the primary screen or above it are not captured. In
/// a process that is not DPI-aware the picture is scaled. The device context of the desktop is not released (kept for
/// compatibility): each call leaks one. Throws std::bad_alloc if there is no memory for the path.
KEXLIB_API long kex_screen_to_file(CString& path);

#endif
