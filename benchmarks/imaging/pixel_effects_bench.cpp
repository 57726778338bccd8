#include <imaging/pixel_effects.h>

#include <windows.h>

#include <support/bench.h>
#include <support/literal_effects.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t face = 0xD4D0C8, highlight = 0xFFFFFF;
constexpr std::uint32_t dark = 0x500000, mid = 0xAA6030, light = 0xFFFFFF, skip = 0xFF00FF;
constexpr int rounds = 15;

// One pixel in eight is the key, and one the face: the worst for whoever branches.
std::vector<std::uint32_t> noise(std::size_t count) {
  std::mt19937 random(1);
  std::vector<std::uint32_t> pixels(count);
  for (std::uint32_t& pixel : pixels) {
    const auto number = static_cast<std::uint32_t>(random());
    pixel = number % 8 == 0 ? 0xFF00FF : number % 8 == 1 ? face : number;
  }
  return pixels;
}

// A DIB section of the size, for what GDI can do itself.
struct Section {
  Section(int width, int height) : dc(CreateCompatibleDC(nullptr)) {
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    original = SelectObject(dc, bitmap);
  }
  ~Section() {
    SelectObject(dc, original);
    DeleteObject(bitmap);
    DeleteDC(dc);
  }

  Section(const Section&) = delete;
  Section& operator=(const Section&) = delete;

  HDC dc;
  void* bits = nullptr;
  HBITMAP bitmap;
  HGDIOBJ original;
};

HBRUSH chessboard_brush() {
  const WORD rows[] = {0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA};
  HBITMAP pattern = CreateBitmap(8, 8, 1, 1, rows);
  HBRUSH brush = CreatePatternBrush(pattern);
  DeleteObject(pattern);
  return brush;
}

void measure(int width, int height, int count) {
  const auto size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  std::vector<std::uint32_t> pixels = noise(size), other = noise(size), copy = pixels;
  const kexlib::PixelSpan quick{pixels.data(), width, height};
  const literal::Picture slow{pixels.data(), width, height};
  Section section(width, height);
  std::memset(section.bits, 0, size * 4);
  const kexlib::PixelSpan in_section{static_cast<kexlib::Pixel*>(section.bits), width, height};
  HBRUSH brush = chessboard_brush();
  const RECT all{0, 0, width, height};
  const bool icon = width < 100;
  // Ink must not run out: what an effect has replaced would be no work the next time.
  std::uint32_t key = 0;

  const std::string at = " at " + std::to_string(width) + " x " + std::to_string(height);
  const auto add = [&](bench::Comparison& work, const char* name, auto run) {
    work.add(name, [=] { return bench::nanoseconds_each(count, run); });
  };
  const auto columns = [&](const bench::Comparison& work) {
    if (!icon) bench::at_least("T8", 5, work.ratio("by columns", "library"), "times as fast as by columns");
  };

  {
    bench::Comparison work("fill" + at, rounds);
    add(work, "library", [=, &key] { kexlib::fill(quick, ++key); });
    add(work, "memset", [&] { std::memset(pixels.data(), 7, size * 4); });
    if (!icon) add(work, "by columns", [=] { literal::fill(slow, 7); });
    work.run();
    bench::at_least("T8", 0.9, work.ratio("memset", "library"), "of memset's speed");
    columns(work);
  }
  pixels = other;
  {
    bench::Comparison work("key substitution" + at, rounds);
    add(work, "library", [=] { kexlib::substitute_key(quick, skip); });
    add(work, "memcpy", [&] { std::memcpy(copy.data(), pixels.data(), size * 4); });
    if (!icon) add(work, "by columns", [=] { literal::substitute_key(slow, skip); });
    work.run();
    if (!icon) bench::at_least("T8", 0.6, work.ratio("memcpy", "library"), "of memcpy's speed");
    columns(work);
  }
  {
    bench::Comparison work("merge" + at, rounds);
    const auto from = other.data();
    if (width == height) {
      add(work, "library", [=] { kexlib::merge(quick, from, face); });
    } else {  // a wide picture is not merged whole: as many pixels in a square
      const int side = icon ? width : 2880;
      add(work, "library", [=] { kexlib::merge({quick.pixels, side, side}, from, face); });
    }
    add(work, "memcpy", [&] { std::memcpy(copy.data(), pixels.data(), size * 4); });
    if (!icon) add(work, "by columns", [=] { literal::merge_by_columns(slow, from, face); });
    work.run();
    if (!icon) bench::at_least("T8", 0.6, work.ratio("memcpy", "library"), "of memcpy's speed");
    columns(work);
  }
  pixels = other;
  {
    bench::Comparison work("three-colour ramp" + at, rounds);
    add(work, "library", [=] { kexlib::tint_all(quick, dark, mid, light, skip, 0); });
    add(work, "divisions, in rows", [=] { literal::tint_all(slow, dark, mid, light, skip, 0); });
    if (!icon)
      add(work, "by columns", [=] {
        literal::tint_all_by_columns(slow, dark, mid, light, skip, static_cast<std::uint8_t>(literal::luminance(mid)));
      });
    work.run();
    bench::at_least("T8", icon ? 4 : 8, work.ratio("divisions, in rows", "library"), "times as fast as divisions");
    columns(work);
  }
  {
    std::fill(pixels.begin(), pixels.end(), face);
    kexlib::fill(in_section, face);
    bench::Comparison work("stipple" + at, rounds);
    add(work, "library", [=] { kexlib::stipple(in_section, face, face); });
    add(work, "GDI, pattern brush", [=, dc = section.dc] { FillRect(dc, &all, brush); });
    if (!icon) add(work, "by columns", [=] { literal::stipple(slow, face, face); });
    work.run();
    bench::at_least("T8", 2, work.ratio("GDI, pattern brush", "library"), "times as fast as a pattern brush");
    columns(work);
  }
  {
    bench::Comparison work("shift" + at, rounds);
    add(work, "library", [=] { kexlib::shift_down_right(in_section); });
    add(work, "GDI, BitBlt", [=, dc = section.dc] { BitBlt(dc, 1, 1, width - 1, height - 1, dc, 0, 0, SRCCOPY); });
    if (!icon) add(work, "by columns", [=] { literal::shift_down_right_by_columns(slow); });
    work.run();
    bench::at_least("T8", 0.8, work.ratio("GDI, BitBlt", "library"), "of BitBlt's speed");
    columns(work);
  }
  DeleteObject(brush);
}

}  // namespace

void measure_pixel_effects() {
  measure(3840, 2160, 1);
  measure(32, 32, 2000);
}
