// Screen capture: the whole screen as a PNG file.
//
//     CString path("C:\\Temp\\screen.png");
//     if (FAILED(kex_screen_to_file(path))) ...
#ifndef KEXLIB_IMAGING_SCREEN_CAPTURE_H
#define KEXLIB_IMAGING_SCREEN_CAPTURE_H

#include <kexlib/export.h>

#include <atlstr.h>

/// Copies the primary screen (BitBlt from the desktop window) and writes it as PNG, in the ANSI code page of the path,
/// which is only read. S_OK (0) once there is a picture, even if the file cannot be written; E_FAIL otherwise. Screens
/// to the left of the primary one or above it are not in the picture, and a process that does not tell Windows that it
/// knows about resolutions gets a scaled one. Each call costs the system a device context of the desktop, which is not
/// given back.
KEXLIB_API long kex_screen_to_file(CString& path);

#endif
