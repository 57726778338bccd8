// Reads image files with GDI+, which does not encode the images under test.
#ifndef TESTS_SUPPORT_DECODED_IMAGE_H
#define TESTS_SUPPORT_DECODED_IMAGE_H

#include <cstdint>
#include <string>
#include <vector>

struct DecodedImage {
  int width = 0;  // 0 if the file is not an image
  int height = 0;
  bool has_alpha = false;
  std::vector<std::uint32_t> pixels;  // 0xAARRGGBB, the top row first
};

DecodedImage decode_image(const std::string& path);

#endif
