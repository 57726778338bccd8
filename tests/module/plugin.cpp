// A plug-in that is the only user of kexlib in its program: when it is freed, kexlib is unloaded.
#include <kexlib/diagnostics.h>
#include <kexlib/imaging.h>
#include <kexlib/messageloop.h>
#include <kexlib/windowtools/hwnd_table.h>

#include <string>

extern "C" __declspec(dllexport) void run_plugin() {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  g_traceToFile.Trace("plug-in\n");
  kexProfileScope scope("plug-in");
}

// More than three megabytes of record, and profiling is not stopped.
extern "C" __declspec(dllexport) void profile_much() {
  kexProfileScope scope("plug-in");
  for (int i = 0; i < 200000; ++i) {
    kexProfileScope inner("inner");
  }
}

namespace {

class RefusedTimer : public CATLWindowLessTimer {
 public:
  void OnTimerTick() override {}
};

}  // namespace

// Writes a picture of a quarter of a megabyte and shows it, which uses WIC and GDI+.
extern "C" __declspec(dllexport) void show_pictures() {
  hnDuctImage image(256, 256, true);
  kexPNGGenerationThread::write_image(&image, "picture.png", nullptr);
  wbzStaticBitmapTemplate<WTL::CStaticT<ATL::CWindow>> picture;
  picture.get_static() =
      CreateWindowExA(0, "STATIC", "", WS_POPUP | SS_BITMAP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
  picture.set_bitmap_from_file("picture.png");
  if (!picture.get_static().GetBitmap()) ExitProcess(9);
  picture.SetBitmap(nullptr);
  picture.get_static().DestroyWindow();
}

// Each refused start leaves an entry in the list: three megabytes of them if all are refused.
extern "C" __declspec(dllexport) void start_many_timers() {
  static RefusedTimer timer;
  for (int i = 0; i < 100000; ++i) timer.SetEnabled(1);
}

// More than three megabytes of names.
extern "C" __declspec(dllexport) void register_many_windows() {
  const std::string text(200, 'n');
  for (INT_PTR i = 1; i <= 15000; ++i)
    kexHWNDTable::singleton().reg_window(reinterpret_cast<HWND>(-i), (text + std::to_string(i)).c_str(), 1);
}

extern "C" __declspec(dllexport) void register_window(HWND window) {
  kexHWNDTable::singleton().reg_window(window, "window", 1);
}
