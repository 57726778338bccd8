// A module with a window procedure that raises faults. Those of the tests' own modules end the program at once.
#include <windows.h>

// After WM_APP the window's next move raises a fault, inside the system: WPARAM 0 reads from the address in LPARAM, 1
// writes to it, 2 divides by zero.
extern "C" __declspec(dllexport) LRESULT CALLBACK
    faulty_procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  static bool armed = false;
  static WPARAM kind = 0;
  static volatile int* place = nullptr;
  if (message == WM_APP) {
    armed = true;
    kind = wparam;
    place = reinterpret_cast<volatile int*>(lparam);
  }
  if (message == WM_WINDOWPOSCHANGING && armed) {
    armed = false;
    volatile int seven = 7, zero = 0;
    if (kind == 0) return *place;
    if (kind == 2) return seven / zero;
    *place = 1;
  }
  return DefWindowProcA(window, message, wparam, lparam);
}
