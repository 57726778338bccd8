#include <windows.h>

#include <imaging/pixel_effects.h>
#include <support/bench.h>
#include <support/literal_effects.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::uint32_t face = 0xD4D0C8, highlight = 0xFFFFFF;
constexpr std::uint32_t dark = 0x500000, mid = 0xAA6030, light = 0xFFFFFF, skip = 0xFF00FF;
constexpr int rounds = 15;

// One pixel in eight is the key and one in eight the face, in an order that a branch predictor cannot learn.
std::vector<std::uint32_t> noise(std::size_t count) {
  std::mt19937 random(1);
  std::vector<std::uint32_t> pixels(count);
  for (std::uint32_t& pixel : pixels) {
    const auto number = static_cast<std::uint32_t>(random());
    pixel = number % 8 == 0 ? 0xFF00FF : number % 8 == 1 ? face : number;
  }
  return pixels;
}

// A DIB section, for the effects that GDI also implements.
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

// The pictures of one size, and a function for each effect.
class Measurement {
 public:
  Measurement(int width, int height, int count) : width_(width), height_(height), count_(count) {
    std::memset(section_.bits, 0, pixels_.size() * sizeof(kexlib::Pixel));
  }
  ~Measurement() { DeleteObject(brush_); }
  Measurement(const Measurement&) = delete;
  Measurement& operator=(const Measurement&) = delete;

  void measure_all() {
    measure_fill();
    measure_key_substitution();
    measure_merge();
    measure_ramp();
    measure_stipple();
    measure_shift();
  }

  void measure_shift() {
    bench::Comparison work = comparison("shift");
    add(work, "library", [&] { kexlib::shift_down_right(in_section_); });
    add(work, "GDI, BitBlt", [&] { BitBlt(section_.dc, 1, 1, width_ - 1, height_ - 1, section_.dc, 0, 0, SRCCOPY); });
    add_by_columns(work, [&] { literal::shift_down_right_by_columns(slow_); });
    work.run();
    bench::at_least(0.8, work.ratio("GDI, BitBlt", "library"),
                    {.name = "shift" + size(),
                     .compared = "of the speed of BitBlt onto itself",
                     .reason = "GDI shifts a picture so"});
    check_columns(work, "shift");
  }

 private:
  void measure_fill() {
    bench::Comparison work = comparison("fill");
    std::uint32_t pixel = 0;
    add(work, "library", [&] { kexlib::fill(quick_, ++pixel); });
    add(work, "memset", [&] { std::memset(pixels_.data(), 7, bytes()); });
    add_by_columns(work, [&] { literal::fill(slow_, 7); });
    work.run();
    bench::at_least(0.9, work.ratio("memset", "library"),
                    {.name = "fill" + size(),
                     .compared = "of memset's speed",
                     .reason = "memset is the fastest way to write memory, but knows no pixels"});
    check_columns(work, "fill");
  }

  void measure_key_substitution() {
    pixels_ = other_;
    bench::Comparison work = comparison("key substitution");
    // The substitute is the key itself: another colour would remove the key before the next round.
    add(work, "library", [&] { kexlib::substitute_key(quick_, skip); });
    add(work, "memcpy", [&] { std::memcpy(copy_.data(), pixels_.data(), bytes()); });
    add_by_columns(work, [&] { literal::substitute_key(slow_, skip); });
    work.run();
    check_memcpy(work, "key substitution");
    check_columns(work, "key substitution");
  }

  void measure_merge() {
    bench::Comparison work = comparison("merge");
    // A wide picture is not merged completely. A square with the same number of pixels replaces it.
    const int side = is_icon() ? width_ : 2880;
    add(work, "library", [&] { kexlib::merge({quick_.pixels, side, side}, other_.data(), face); });
    add(work, "memcpy", [&] { std::memcpy(copy_.data(), pixels_.data(), bytes()); });
    add_by_columns(work, [&] { literal::merge_by_columns(slow_, other_.data(), face); });
    work.run();
    check_memcpy(work, "merge");
    check_columns(work, "merge");
  }

  void measure_ramp() {
    pixels_ = other_;
    bench::Comparison work = comparison("three-colour ramp");
    add(work, "library", [&] { kexlib::tint_all(quick_, dark, mid, light, skip, 0); });
    add(work, "divisions, in rows", [&] { literal::tint_all(slow_, dark, mid, light, skip, 0); });
    add_by_columns(work, [&] {
      literal::tint_all_by_columns(slow_, dark, mid, light, skip, static_cast<std::uint8_t>(literal::luminance(mid)));
    });
    work.run();
    bench::at_least(is_icon() ? 6 : 11, work.ratio("divisions, in rows", "library"),
                    {.name = "three-colour ramp" + size(),
                     .compared = "times as fast as the divisions for each pixel, in rows",
                     .reason = "the formula of the ramp, written down",
                     .wanted = is_icon() ? "" : "12, which most runs reach: memory is the limit"});
    check_columns(work, "three-colour ramp");
  }

  void measure_stipple() {
    std::fill(pixels_.begin(), pixels_.end(), face);
    kexlib::fill(in_section_, face);
    bench::Comparison work = comparison("stipple");
    const RECT all{0, 0, width_, height_};
    add(work, "library", [&] { kexlib::stipple(in_section_, face, face); });
    add(work, "GDI, pattern brush", [&] { FillRect(section_.dc, &all, brush_); });
    add(work, "memset", [&] { std::memset(pixels_.data(), 7, bytes()); });
    add_by_columns(work, [&] { literal::stipple(slow_, face, face); });
    work.run();
    bench::at_least(
        is_icon() ? 3 : 1.8, work.ratio("GDI, pattern brush", "library"),
        {.name = "stipple" + size(),
         .compared = "times as fast as FillRect with a pattern brush",
         .reason = "GDI draws a chessboard so",
         .wanted = is_icon() ? "" : "4. It reads and writes each pixel as fast as memset only writes them"});
    if (!is_icon())
      bench::at_least(0.7, work.ratio("memset", "library"),
                      {.name = "stipple" + size() + ", memset",
                       .compared = "of memset's speed",
                       .reason = "memset is the fastest way to write memory"});
    check_columns(work, "stipple");
  }

  bench::Comparison comparison(const std::string& effect) const { return bench::Comparison(effect + size(), rounds); }
  std::string size() const { return " at " + std::to_string(width_) + " x " + std::to_string(height_); }
  template <typename Run>
  void add(bench::Comparison& work, const char* name, Run run) const {
    work.add(name, [run, count = count_] { return bench::nanoseconds_each(count, run); });
  }
  // Only large pictures are compared with a loop over columns: they exceed the processor's cache.
  template <typename Run>
  void add_by_columns(bench::Comparison& work, Run run) const {
    if (!is_icon()) add(work, "by columns", run);
  }
  void check_memcpy(const bench::Comparison& work, const std::string& effect) const {
    if (is_icon()) return;
    bench::at_least(0.6, work.ratio("memcpy", "library"),
                    {.name = effect + size(),
                     .compared = "of memcpy's speed",
                     .reason = "whatever reads and writes each pixel once takes as long as a copy at best"});
  }
  void check_columns(const bench::Comparison& work, const std::string& effect) const {
    if (is_icon()) return;
    bench::at_least(5, work.ratio("by columns", "library"),
                    {.name = effect + size() + ", columns",
                     .compared = "times as fast as a loop over columns",
                     .reason = "a loop over x around one over y, as pictures are often gone through"});
  }
  bool is_icon() const { return width_ < 100; }
  std::size_t bytes() const { return pixels_.size() * sizeof(kexlib::Pixel); }

  const int width_, height_, count_;
  std::vector<std::uint32_t> pixels_ = noise(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
  std::vector<std::uint32_t> other_ = pixels_, copy_ = pixels_;
  Section section_{width_, height_};
  const kexlib::PixelSpan quick_{pixels_.data(), width_, height_};
  const kexlib::PixelSpan in_section_{static_cast<kexlib::Pixel*>(section_.bits), width_, height_};
  const literal::Picture slow_{pixels_.data(), width_, height_};
  const HBRUSH brush_ = chessboard_brush();
};

void measure_pixel_effects() {
  Measurement(3840, 2160, 1).measure_all();
  Measurement(1024, 1024, 4).measure_shift();  // its rows begin at the same place of each page of memory
  Measurement(48, 48, 1000).measure_shift();
  Measurement(32, 32, 2000).measure_all();
}

void grow_pictures() {
  struct Effect {
    const char* name;
    void (*run)(kexlib::PixelSpan, const kexlib::Pixel* other);
  };
  for (const Effect& effect :
       {Effect{"fill", [](auto picture, auto) { kexlib::fill(picture, 7); }},
        Effect{"merge", [](auto picture, auto other) { kexlib::merge(picture, other, face); }},
        Effect{"ramp", [](auto picture, auto) { kexlib::tint_all(picture, dark, mid, light, skip, 0); }},
        Effect{"stipple", [](auto picture, auto) { kexlib::stipple(picture, face, 0xFFFFFF); }}})
    bench::grow({.name = effect.name,
                 .x = "pixels",
                 .y = "nanoseconds a pixel",
                 .sizes = {16 * 16, 64 * 64, 256 * 256, 1024 * 1024, 2880 * 2880, 5760 * 5760},
                 .own_exponent = 0,
                 .explained = "pictures of more than some million pixels exceed the processor's caches, and memory is "
                              "slower",
                 .measure = [&](std::size_t pixels) {
                   static std::vector<std::uint32_t> own = noise(5760 * 5760), other = own;
                   const int side = static_cast<int>(std::sqrt(pixels) + 0.5);
                   const kexlib::PixelSpan picture{own.data(), side, side};
                   const int repeats = static_cast<int>(std::max<std::size_t>(1, 1000000 / pixels));
                   return bench::nanoseconds_each(repeats, [&] { effect.run(picture, other.data()); }) /
                          static_cast<double>(pixels);
                 }});
}

const bench::Growth pictures_growth("pictures", grow_pictures);
const bench::Benchmark pixel_effects_benchmark("pixel effects", measure_pixel_effects);

}  // namespace
