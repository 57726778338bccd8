// Window classes, and how a new window finds its object. Part of <atlwin.h>.
#ifndef FRAMEWORK_ATLWIN_WINDOW_CLASS_H
#define FRAMEWORK_ATLWIN_WINDOW_CLASS_H

#include <atlbase.h>

namespace ATL {

// The default styles for Create.
template <DWORD t_dwStyle = 0, DWORD t_dwExStyle = 0>
class CWinTraits {
 public:
  static DWORD GetWndStyle(DWORD style) { return style ? style : t_dwStyle; }
  static DWORD GetWndExStyle(DWORD style) { return style ? style : t_dwExStyle; }
};
using CControlWinTraits = CWinTraits<WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, 0>;
using CFrameWinTraits =
    CWinTraits<WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, WS_EX_APPWINDOW | WS_EX_WINDOWEDGE>;

// A window class of this module. It is registered at its first use and unregistered when the module is unloaded.
//
// With m_lpszOrigName it is a superclass: a copy of that class. Its windows pass unhandled messages to the original
// procedure (pWndProc).
struct CWndClassInfo {
  WNDCLASSEX m_wc;
  LPCTSTR m_lpszOrigName;
  WNDPROC pWndProc = nullptr;
  ATOM m_atom = 0;
  char m_szAutoName[sizeof("ATL:") + 2 * sizeof(void*)] = {};
  CWndClassInfo* next = nullptr;

  // Returns the class, or 0 on failure. `*original` receives the procedure of the copied class.
  ATOM Register(WNDPROC* original);
};

// Declares the window class of a C++ class, by name, or null for a generated name. The first form has CS_HREDRAW,
// CS_VREDRAW and CS_DBLCLKS.
#define DECLARE_WND_CLASS(WndClassName) \
  DECLARE_WND_CLASS_EX(WndClassName, CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS, COLOR_WINDOW)
#define DECLARE_WND_CLASS_EX(WndClassName, classStyle, background)                                          \
  static ATL::CWndClassInfo& GetWndClassInfo() {                                                            \
    static ATL::CWndClassInfo info = {                                                                      \
        {sizeof(WNDCLASSEX), classStyle, StartWindowProc, 0, 0, nullptr, nullptr, nullptr,                  \
         reinterpret_cast<HBRUSH>(static_cast<INT_PTR>((background) + 1)), nullptr, WndClassName, nullptr}, \
        nullptr};                                                                                           \
    return info;                                                                                            \
  }
#define DECLARE_WND_SUPERCLASS(WndClassName, OrigWndClassName)                                                  \
  static ATL::CWndClassInfo& GetWndClassInfo() {                                                                \
    static ATL::CWndClassInfo info = {{sizeof(WNDCLASSEX), 0, StartWindowProc, 0, 0, nullptr, nullptr, nullptr, \
                                       nullptr, nullptr, WndClassName, nullptr},                                \
                                      OrigWndClassName};                                                        \
    return info;                                                                                                \
  }

// Announces the object of the next window on this thread, until it is destroyed. The first message of the window
// retrieves it. That message is not WM_NCCREATE, so a creation parameter is too late. Creations may nest.
class KEXFRAMEWORK_API _AtlCreateWndData {
 public:
  explicit _AtlCreateWndData(void* object) noexcept;
  _AtlCreateWndData(const _AtlCreateWndData&) = delete;
  _AtlCreateWndData& operator=(const _AtlCreateWndData&) = delete;
  // Withdraws the object if no window was created.
  ~_AtlCreateWndData();

  // Returns the object for the window whose first message this is; null if there is none.
  static void* Extract() noexcept;

 private:
  void* m_object;
  _AtlCreateWndData* m_outer;
};

// The window classes of one module.
class CAtlWinModule {
 public:
  constexpr CAtlWinModule() = default;
  CAtlWinModule(const CAtlWinModule&) = delete;
  CAtlWinModule& operator=(const CAtlWinModule&) = delete;
  ~CAtlWinModule() { unregister(m_classes); }

  // Registers the class if it is not registered yet. Thread-safe.
  ATOM Register(CWndClassInfo& info) noexcept {
    return register_once(info, _AtlBaseModule.GetModuleInstance(), m_classes);
  }

 private:
  KEXFRAMEWORK_API static ATOM register_once(CWndClassInfo& info, HINSTANCE instance, CWndClassInfo*& classes) noexcept;
  KEXFRAMEWORK_API static void unregister(CWndClassInfo* classes) noexcept;

  CWndClassInfo* m_classes = nullptr;
};
inline constinit CAtlWinModule _AtlWinModule;

inline ATOM CWndClassInfo::Register(WNDPROC* original) {
  ATOM atom = _AtlWinModule.Register(*this);
  if (m_lpszOrigName) *original = pWndProc;
  return atom;
}

}  // namespace ATL

#endif
