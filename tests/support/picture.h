// Pictures that tests draw into and compare, and save to build/pictures for people to look at.
#ifndef TESTS_SUPPORT_PICTURE_H
#define TESTS_SUPPORT_PICTURE_H

#include <windows.h>

#include <string>

class Picture {
 public:
  // Of one colour.
  Picture(int width, int height, COLORREF background);
  // The client area of a window, as it is now.
  explicit Picture(HWND window);
  ~Picture();
  Picture(Picture&& other) noexcept;
  Picture& operator=(Picture&&) = delete;

  HDC dc() const { return dc_; }
  COLORREF at(int x, int y) const { return GetPixel(dc_, x, y); }
  // Whether the colours of all pixels are equal.
  bool operator==(const Picture& other) const;

  // Writes build/pictures/NAME.png, `magnified` times as large. Returns false if it cannot be written.
  bool save(const std::string& name, int magnified = 1) const;

 private:
  Picture(int width, int height);

  int width_;
  int height_;
  HDC dc_;
  void* bits_ = nullptr;
  HBITMAP bitmap_;
  HGDIOBJ original_;
};

#endif
