#include <kexlib/imaging/png_thread.h>

#include <atlbase.h>
#include <wincodec.h>

#include <rqgfx/png_writer.h>
#include <support/bench.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

namespace {

constexpr int full_width = 1920, full_height = 1080;

// Panels, lines, a gradient of so many colours, and a pattern similar to text.
std::unique_ptr<hnDuctImage> interface_picture(int gradient, int width = full_width, int height = full_height) {
  auto image = std::make_unique<hnDuctImage>(width, height, false);
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      std::uint32_t pixel = 0xFFD4D0C8;
      if (y < 30) pixel = 0xFF000000 | static_cast<std::uint32_t>(0x20 + x * gradient / width);
      if (x > 300 && y > 80) pixel = 0xFFFFFFFF;
      if (x > 320 && x < 1500 && y > 90 && y % 16 < 9 && (x * 7 + y / 16 * 13) % 11 < 4)
        pixel = 0xFF000000 | static_cast<std::uint32_t>((x * 31 + y * 17) % 5 * 0x333333);
      if (x % 300 == 0 || y % 80 == 0) pixel = 0xFF808080;
      image->row(y)[x] = pixel;
    }
  return image;
}

// Smooth colours with noise.
std::unique_ptr<hnDuctImage> photograph() {
  constexpr int width = full_width, height = full_height;
  auto image = std::make_unique<hnDuctImage>(width, height, false);
  std::uint32_t noise = 1;
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x) {
      noise = noise * 1664525 + 1013904223;
      const auto red = static_cast<std::uint32_t>(x / 9) + (noise >> 28), green = static_cast<std::uint32_t>(y / 5);
      image->row(y)[x] = 0xFF000000 | red << 16 | (green + (noise >> 24 & 15)) << 8 | (noise >> 20 & 15);
    }
  return image;
}

// The hand-written alternative: WIC with its defaults, into memory.
unsigned long long plain_wic(hnDuctImage* image) {
  CComPtr<IWICImagingFactory> factory;
  factory.CoCreateInstance(CLSID_WICImagingFactory);
  CComPtr<IStream> stream;
  CreateStreamOnHGlobal(nullptr, TRUE, &stream);
  CComPtr<IWICBitmapEncoder> encoder;
  factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, &encoder);
  encoder->Initialize(stream, WICBitmapEncoderNoCache);
  CComPtr<IWICBitmapFrameEncode> frame;
  encoder->CreateNewFrame(&frame, nullptr);
  frame->Initialize(nullptr);
  frame->SetSize(full_width, full_height);
  WICPixelFormatGUID format = GUID_WICPixelFormat32bppBGRA;
  frame->SetPixelFormat(&format);
  frame->WritePixels(full_height, full_width * 4, full_width * full_height * 4, reinterpret_cast<BYTE*>(image->row(0)));
  frame->Commit();
  encoder->Commit();
  STATSTG description{};
  stream->Stat(&description, STATFLAG_NONAME);
  return description.cbSize.QuadPart;
}

bool append(void* buffer, const unsigned char* data, unsigned __int64 count) {
  static_cast<kexBuffer*>(buffer)->write(data, count);
  return true;
}

unsigned long long ours(hnDuctImage* image) {
  auto buffer = kexBuffer_create();
  rqPNGWriterDuctImage::write_file(image, append, buffer.get(), 1, 32);
  buffer->close();
  return buffer->size();
}

void measure(const char* what, hnDuctImage* image, double limit, int rounds, const char* wanted = "") {
  bench::Comparison work(std::string("PNG of ") + what + ", 1920 x 1080", rounds);
  double size = 0, plain_size = 0;
  work.add("library", [&] { return bench::nanoseconds_each(1, [&] { size = static_cast<double>(ours(image)); }); });
  work.add("plain WIC",
           [&] { return bench::nanoseconds_each(1, [&] { plain_size = static_cast<double>(plain_wic(image)); }); });
  work.run();
  std::printf("    %.0f bytes, plain WIC %.0f\n", size, plain_size);
  const std::string reason = "WIC with its defaults is the way of Windows to write a PNG file";
  bench::at_most(limit, work.ratio("library", "plain WIC"),
                 {.name = std::string("PNG of ") + what,
                  .compared = "1920 x 1080 into a buffer, of the time of WIC's encoder",
                  .reason = reason,
                  .wanted = wanted});
  bench::at_most(1, size / plain_size,
                 {.name = std::string("the size of a PNG of ") + what,
                  .compared = "of the size of what WIC's encoder makes",
                  .reason = reason});
}

void measure_png() {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  measure("an interface", interface_picture(160).get(), 0.3, 7);
  measure("an interface of many colours", interface_picture(400).get(), 0.5, 7,
          "0.30. WIC packs three bytes a pixel where there is no palette, and takes no order to pack less thoroughly");
  measure("a photograph", photograph().get(), 1.03, 3);
  CoUninitialize();
}

void grow_png() {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  bench::grow({.name = "PNG of an interface",
               .x = "pixels of a picture",
               .y = "nanoseconds a pixel in PNG",
               .sizes = {16 * 16, 64 * 64, 256 * 256, 1024 * 1024, 2880 * 2880, 5760 * 5760},
               .own_exponent = 0,
               .explained = "",
               .measure =
                   [](std::size_t pixels) {
                     const int side = static_cast<int>(std::sqrt(pixels) + 0.5);
                     const auto image = interface_picture(160, side, side);
                     return bench::nanoseconds_each(1, [&] { ours(image.get()); }) / static_cast<double>(pixels);
                   },
               .rounds = 3});
  CoUninitialize();
}

const bench::Growth png_growth("PNG", grow_png);
const bench::Benchmark png_benchmark("PNG", measure_png);

}  // namespace
