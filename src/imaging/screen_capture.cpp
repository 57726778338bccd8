#include <kexlib/imaging/screen_capture.h>

#include <pvwnd/window_dib.h>
#include <rqgfx/png_writer.h>

#include <memory>

long kex_screen_to_file(CString& path) {
  HWND desktop = GetDesktopWindow();
  HDC screen = GetDC(desktop);  // never released: kept for compatibility
  RECT place{};
  GetWindowRect(desktop, &place);

  // Kept for compatibility: callers get a picture that begins at (0, 0), whatever the desktop's upper left corner is.
  pvDIBStatus status{};
  pvWindowDIB copy(place.right, place.bottom, pvDIB_default, status, nullptr);
  BitBlt(copy.hdc(), 0, 0, place.right, place.bottom, screen, 0, 0, SRCCOPY);

  std::unique_ptr<hnDuctImage> image(rq_duct_image_from_dib(copy.bitmap()));
  if (!image) return E_FAIL;
  constexpr int encoders_default = -1;
  rqPNGWriterDuctImage::write_file(image.get(), bzString(path.GetString()), encoders_default, encoders_default);
  return S_OK;
}
