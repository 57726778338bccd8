// Writes PNG files of every kind that the library writes to the current folder, for a checker.
#include <kexlib/imaging.h>

#include <rqgfx/duct_image.h>
#include <rqgfx/png_writer.h>
#include <support/crash_report.h>

#include <cstdint>
#include <cstdio>
#include <memory>

namespace {

// A gradient with noise, or a flat picture with a frame.
std::unique_ptr<hnDuctImage> make_image(int width, int height, bool has_alpha, bool flat) {
  auto image = std::make_unique<hnDuctImage>(width, height, has_alpha);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      const auto mixed = static_cast<std::uint32_t>(x * 7919 + y * 104729) * 2654435761u;
      const std::uint32_t pixel = flat ? (x % 100 == 0 || y == 0 ? 0x40112233 : 0xFFD4D0C8) : mixed;
      image->row(y)[x] = has_alpha ? pixel : pixel | 0xFF000000;
    }
  return image;
}

}  // namespace

int main() {
  report_crashes();
  int made = 0;
  for (auto [width, height] : {std::pair{1, 1}, {1, 300}, {300, 1}, {31, 33}, {800, 600}})
    for (bool has_alpha : {false, true})
      for (bool flat : {false, true})
        for (int filter : {0, 1, 2})
          for (int bits : {24, 32}) {
            char name[80];
            std::snprintf(name, sizeof name, "%dx%d %d%d filter %d bits %d.png", width, height, has_alpha, flat, filter,
                          bits);
            made += rqPNGWriterDuctImage::write_file(make_image(width, height, has_alpha, flat).get(), bzString(name),
                                                     filter, bits);
          }
  kexPNGGenerationThread job(make_image(640, 480, true, false), "thread.png", kexBuffer_create());
  job.Resume();
  job.Join(INFINITE);
  CString screen("screen.png");
  kex_screen_to_file(screen);
  return made == 120 ? 0 : 1;
}
