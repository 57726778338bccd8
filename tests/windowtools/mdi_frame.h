// A multiple-document interface of real windows.
#ifndef TESTS_WINDOWTOOLS_MDI_FRAME_H
#define TESTS_WINDOWTOOLS_MDI_FRAME_H

#include <windows.h>

class MdiFrame {
 public:
  MdiFrame() {
    WNDCLASSA description{};
    description.lpfnWndProc = &frame_procedure;
    description.hInstance = GetModuleHandleA(nullptr);
    description.lpszClassName = "test frame";
    RegisterClassA(&description);
    description.lpfnWndProc = &DefMDIChildProcA;
    description.lpszClassName = "test child";
    RegisterClassA(&description);
    frame = CreateWindowA("test frame", "frame", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 600, 400, nullptr, nullptr,
                          nullptr, nullptr);
    CLIENTCREATESTRUCT structure{nullptr, 1000};
    client = CreateWindowA("MDICLIENT", "", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 580, 360, frame, nullptr,
                           nullptr, &structure);
    SetWindowLongPtrA(frame, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(client));
  }
  MdiFrame(const MdiFrame&) = delete;
  MdiFrame& operator=(const MdiFrame&) = delete;
  ~MdiFrame() { DestroyWindow(frame); }

  // A child frame; it becomes the active one.
  HWND add_child() const {
    MDICREATESTRUCTA structure{"test child", "child", nullptr, 10, 10, 200, 150, 0, 0};
    return reinterpret_cast<HWND>(SendMessageA(client, WM_MDICREATE, 0, reinterpret_cast<LPARAM>(&structure)));
  }
  void activate(HWND child) const { SendMessageA(client, WM_MDIACTIVATE, reinterpret_cast<WPARAM>(child), 0); }
  void close(HWND child) const { SendMessageA(client, WM_MDIDESTROY, reinterpret_cast<WPARAM>(child), 0); }

  HWND frame;
  HWND client;

 private:
  static LRESULT CALLBACK frame_procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
    return DefFrameProcA(window, reinterpret_cast<HWND>(GetWindowLongPtrA(window, GWLP_USERDATA)), message, w, l);
  }
};

#endif
