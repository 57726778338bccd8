#include <pvwnd/window_dib.h>

pvWindowW::pvWindowW() : dc_(CreateCompatibleDC(nullptr)) {}

pvWindowW::~pvWindowW() { DeleteDC(dc_); }

pvWindowDIB::pvWindowDIB(int width, int height, pvDIB_DEPTH, pvDIBStatus& status, pvWinArgs*) {
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  bitmap_ = width > 0 && height > 0 ? CreateDIBSection(hdc(), &info, DIB_RGB_COLORS, &bits, nullptr, 0) : nullptr;
  if (bitmap_) original_ = SelectObject(hdc(), bitmap_);
  status = bitmap_ ? pvDIB_made : pvDIB_failed;
}

pvWindowDIB::~pvWindowDIB() {
  if (!bitmap_) return;
  SelectObject(hdc(), original_);
  DeleteObject(bitmap_);
}
