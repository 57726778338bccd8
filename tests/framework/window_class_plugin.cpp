// A plug-in with a window class, which must be unregistered when the plug-in is freed.
#include <atlwin.h>

namespace {

class Window : public CWindowImpl<Window, CWindow, CFrameWinTraits> {
 public:
  DECLARE_WND_CLASS("TestPluginWindow")
  BEGIN_MSG_MAP(Window)
  END_MSG_MAP()
};

}  // namespace

extern "C" __declspec(dllexport) BOOL make_and_destroy_window() {
  Window window;
  return window.Create(nullptr) && window.DestroyWindow();
}
