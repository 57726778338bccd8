// A part of the screen as a PNG file.
#ifndef GALLERY_SCREEN_PICTURE_H
#define GALLERY_SCREEN_PICTURE_H

#include <kexlib/framework.h>

#include <string>

namespace gallery {

// Writes a part of the screen, in screen coordinates. Returns false if the file cannot be written.
bool save_screen_picture(const RECT& place, const std::string& path);

}  // namespace gallery

#endif
