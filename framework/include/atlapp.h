// WTL's application: the message loop with its filters and idle handlers, and the module.
//
//     CAppModule _Module;
//
//     int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int show) {
//       _Module.Init(nullptr, instance);
//       CMessageLoop loop;
//       _Module.AddMessageLoop(&loop);
//       ...                                  // windows may call
//       int result = loop.Run();
//       _Module.RemoveMessageLoop();
//       _Module.Term();
//       return result;
//     }
#ifndef FRAMEWORK_ATLAPP_H
#define FRAMEWORK_ATLAPP_H

#ifndef FRAMEWORK_ATLBASE_H
#error "atlapp.h requires atlbase.h to be included first"
#endif

#if defined(_ATL_NO_COMMODULE) || defined(_ATL_MIN_CRT) || defined(_ATL_NO_MSIMG)
#error "WTL needs all of ATL: build without _ATL_NO_COMMODULE, _ATL_MIN_CRT and _ATL_NO_MSIMG"
#endif
#if WINVER < 0x0501 || _WIN32_WINNT < 0x0501
#error "WTL needs WINVER and _WIN32_WINNT of 0x0501 or more"
#endif

// The version of WTL. Define 0x0910 for the meaning that version 9.1 has: classes of its own for geometry, and the
// former results of a page's handlers.
#ifndef _WTL_VER
#define _WTL_VER 0x1000
#endif

#include <atlwin.h>

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace ATL {
struct _ATL_OBJMAP_ENTRY;  // COM classes of a module; not supported by this subset
}

namespace WTL {

// Receives the messages of a loop before they are dispatched. The owner removes it from the loop before it is
// destroyed.
class CMessageFilter {
 public:
  // Returns TRUE if the message is handled: it is not dispatched.
  virtual BOOL PreTranslateMessage(MSG* message) = 0;

 protected:
  ~CMessageFilter() = default;
};

// Called when a loop is idle. The owner removes it from the loop before it is destroyed.
class CIdleHandler {
 public:
  // The result is ignored.
  virtual BOOL OnIdle() = 0;

 protected:
  ~CIdleHandler() = default;
};

// The message loop of a thread.
class CMessageLoop {
 public:
  CMessageLoop() = default;
  CMessageLoop(const CMessageLoop&) = delete;
  CMessageLoop& operator=(const CMessageLoop&) = delete;
  virtual ~CMessageLoop() = default;

  // One that is added twice is called twice. The Remove functions return whether it was in the list. A filter or
  // handler may remove itself while it is called.
  BOOL AddMessageFilter(CMessageFilter* filter) { return add(m_filters, filter); }
  BOOL RemoveMessageFilter(CMessageFilter* filter) { return remove(m_filters, filter); }
  BOOL AddIdleHandler(CIdleHandler* handler) { return add(m_handlers, handler); }
  BOOL RemoveIdleHandler(CIdleHandler* handler) { return remove(m_handlers, handler); }

  // Gets and dispatches messages until WM_QUIT, and returns its exit code. When no message is waiting, OnIdle is
  // called: once, and again as long as it returns TRUE.
  int Run() {
    int idle_count = 0;
    bool idle = true;
    for (;;) {
      while (idle && !::PeekMessage(&m_msg, nullptr, 0, 0, PM_NOREMOVE)) idle = OnIdle(idle_count++);

      BOOL got = ::GetMessage(&m_msg, nullptr, 0, 0);
      if (got == -1) continue;
      if (!got) return static_cast<int>(m_msg.wParam);

      // A handler may run a nested loop on this object, which changes m_msg.
      bool ends_idleness = IsIdleMessage(&m_msg);
      if (!PreTranslateMessage(&m_msg)) {
        ::TranslateMessage(&m_msg);
        ::DispatchMessage(&m_msg);
      }
      if (ends_idleness) {
        idle = true;
        idle_count = 0;
      }
    }
  }

  // Calls the filters, the last one added first, until one handles the message.
  virtual BOOL PreTranslateMessage(MSG* message) {
    for (size_t i = m_filters.size(); i-- > 0;)
      if (i < m_filters.size() && m_filters[i]->PreTranslateMessage(message)) return TRUE;
    return FALSE;
  }
  // Calls the idle handlers in the order in which they were added. TRUE requests another call before the next message.
  virtual BOOL OnIdle(int /*idleCount*/) {
    for (size_t i = 0; i < m_handlers.size();) {
      CIdleHandler* handler = m_handlers[i];
      handler->OnIdle();
      if (i < m_handlers.size() && m_handlers[i] == handler) ++i;
    }
    return FALSE;
  }
  // Whether the loop becomes idle again after this message. Messages that arrive frequently do not count: mouse moves,
  // painting, and the timer of the caret.
  static BOOL IsIdleMessage(MSG* message) {
    constexpr UINT caret_timer = 0x0118;
    switch (message->message) {
      case WM_MOUSEMOVE:
      case WM_NCMOUSEMOVE:
      case WM_PAINT:
      case caret_timer:
        return FALSE;
      default:
        return TRUE;
    }
  }

  MSG m_msg{};  // the current message

 private:
  template <typename T>
  static BOOL add(std::vector<T*>& list, T* item) {
    list.push_back(item);
    return TRUE;
  }
  template <typename T>
  static BOOL remove(std::vector<T*>& list, T* item) {
    auto found = std::find(list.begin(), list.end(), item);
    if (found == list.end()) return FALSE;
    list.erase(found);
    return TRUE;
  }

  std::vector<CMessageFilter*> m_filters;
  std::vector<CIdleHandler*> m_handlers;
};

// The module of an application, and the message loop of each of its threads.
class CAppModule {
 public:
  // The object map must be null: COM classes are not supported.
  HRESULT Init(ATL::_ATL_OBJMAP_ENTRY* /*objectMap*/, HINSTANCE instance, const GUID* /*libraryId*/ = nullptr) {
    m_hInst = instance;
    return S_OK;
  }
  void Term() {
    ATL::CComCritSecLock guard(m_section);
    m_loops.clear();
    m_hInst = nullptr;
  }

  HINSTANCE GetModuleInstance() const { return m_hInst; }
  HINSTANCE GetResourceInstance() const { return ATL::_AtlBaseModule.GetResourceInstance(); }

  // Sets the loop of the calling thread. Returns FALSE, and does nothing, if the thread has one.
  BOOL AddMessageLoop(CMessageLoop* loop) {
    ATL::CComCritSecLock guard(m_section);
    return m_loops.emplace(::GetCurrentThreadId(), loop).second;
  }
  BOOL RemoveMessageLoop() {
    ATL::CComCritSecLock guard(m_section);
    return m_loops.erase(::GetCurrentThreadId()) > 0;
  }
  // Null if the thread has none.
  CMessageLoop* GetMessageLoop(DWORD thread = ::GetCurrentThreadId()) const {
    ATL::CComCritSecLock guard(m_section);
    auto found = m_loops.find(thread);
    return found == m_loops.end() ? nullptr : found->second;
  }

  HINSTANCE m_hInst = nullptr;

 private:
  std::unordered_map<DWORD, CMessageLoop*> m_loops;
  mutable ATL::CComAutoCriticalSection m_section;
};

}  // namespace WTL

#ifndef _WTL_NO_AUTOMATIC_NAMESPACE
using namespace WTL;
#endif

#endif
