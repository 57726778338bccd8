#include <kexlib/controls/bitmap_button.h>

#include <uxtheme.h>

#include <support/bench.h>

namespace {

constexpr int paints = 200;
constexpr int size = 32;

HIMAGELIST images;
WNDPROC button_procedure;

// A hand-written version with the same system calls.
LRESULT CALLBACK paint_by_hand(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_ERASEBKGND) return 1;
  if (message != WM_PAINT) return CallWindowProcA(button_procedure, window, message, w, l);
  static bool painting = false;
  if (painting) return 0;  // painting the parent calls this procedure again
  painting = true;
  RECT rect;
  GetWindowRect(window, &rect);
  const HWND parent = GetParent(window);
  MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&rect), 2);
  InvalidateRect(parent, &rect, TRUE);
  UpdateWindow(parent);
  PAINTSTRUCT paint;
  const HDC dc = BeginPaint(window, &paint);
  RECT client;
  GetClientRect(window, &client);
  const HTHEME theme = OpenThemeData(window, L"BUTTON");
  DrawThemeBackground(theme, dc, 1, 1, &client, nullptr);  // BP_PUSHBUTTON, PBS_NORMAL
  CloseThemeData(theme);
  ImageList_Draw(images, 0, dc, (client.right - 16) / 2, (client.bottom - 16) / 2, ILD_NORMAL);
  EndPaint(window, &paint);
  painting = false;
  return 0;
}

HWND make_button(HWND parent, int left) {
  return CreateWindowA("BUTTON", "", WS_CHILD | WS_VISIBLE, left, 4, size, size, parent, nullptr, nullptr, nullptr);
}

double nanoseconds_a_paint(HWND window) {
  return bench::nanoseconds_each(paints, [window] {
    InvalidateRect(window, nullptr, FALSE);
    UpdateWindow(window);
  });
}

void measure_bitmap_button() {
  const HWND parent = bench::made(
      CreateWindowA("STATIC", "", WS_POPUP | WS_VISIBLE, 100, 100, 100, 40, nullptr, nullptr, nullptr, nullptr));
  const HWND by_hand = make_button(parent, 4), ours = make_button(parent, 50);
  images = ImageList_Create(16, 16, ILC_COLOR32, 2, 2);
  const HBITMAP bitmap = CreateBitmap(16, 16, 1, 32, nullptr);
  for (int i = 0; i < 2; ++i) ImageList_Add(images, bitmap, nullptr);
  DeleteObject(bitmap);

  button_procedure =
      reinterpret_cast<WNDPROC>(SetWindowLongPtrA(by_hand, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(paint_by_hand)));
  kexWTLBitmapButton button;
  button.SubclassWindow(ours);
  button.SetImageList(images);
  button.SetImages(0, 0, -1, 1);

  bench::Comparison work("a themed button painted, 32 x 32");
  work.add("the system's calls", [=] { return nanoseconds_a_paint(by_hand); });
  work.add("kexWTLBitmapButton", [=] { return nanoseconds_a_paint(ours); });
  work.run();
  bench::at_most(1.2, work.ratio("kexWTLBitmapButton", "the system's calls"),
                 {.name = "a themed button painted",
                  .compared = "kexWTLBitmapButton, of the time of a window procedure that paints the same",
                  .reason = "the calls of the system that the picture needs, in a procedure for this one button"});
  DestroyWindow(parent);
  ImageList_Destroy(images);
}

const bench::Benchmark bitmap_button_benchmark("bitmap button", measure_bitmap_button);

}  // namespace
