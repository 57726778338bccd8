// Writes image files with GDI+.
#ifndef TESTS_SUPPORT_ENCODED_IMAGE_H
#define TESTS_SUPPORT_ENCODED_IMAGE_H

#include <windows.h>

#include <filesystem>

enum class ImageFormat : unsigned { Bmp = 0, Jpeg = 1, Tiff = 5, Png = 6 };  // as GDI+ numbers its encoders

CLSID encoder_of(ImageFormat format);

// A picture of one colour, 0x808080. Its alpha, if any, is full. False if it cannot be written.
bool save_grey_image(const std::filesystem::path& path, ImageFormat format, int width, int height, bool alpha = false);

#endif
