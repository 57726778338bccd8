// WTL's applications: the message loop with its filters and idle handlers, and what an application knows of itself.
//
//     CAppModule _Module;
//
//     int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int show) {
//       _Module.Init(nullptr, instance);
//       CMessageLoop loop;
//       _Module.AddMessageLoop(&loop);
//       ...                                  // windows may call loop.AddMessageFilter(this)
//       int result = loop.Run();
//       _Module.RemoveMessageLoop();
//       _Module.Term();
//       return result;
//     }
#ifndef FRAMEWORK_ATLAPP_H
#define FRAMEWORK_ATLAPP_H

#include <atlbase.h>
#include <atlwin.h>

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace ATL {
struct _ATL_OBJMAP_ENTRY;  // COM classes of a module: none are made here
}

namespace WTL {

// Sees the messages of a loop before they are dispatched. Its owner removes it from the loop before it goes.
class CMessageFilter {
 public:
  // TRUE where the message is dealt with: it is not dispatched then.
  virtual BOOL PreTranslateMessage(MSG* message) = 0;

 protected:
  ~CMessageFilter() = default;
};

// Called when a loop has nothing to do. Its owner removes it from the loop before it goes.
class CIdleHandler {
 public:
  // What it returns is not looked at.
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

  // Adding one twice has it called twice; removing says whether it was there. A filter or handler may remove
  // itself while it is called.
  BOOL AddMessageFilter(CMessageFilter* filter) { return add(m_filters, filter); }
  BOOL RemoveMessageFilter(CMessageFilter* filter) { return remove(m_filters, filter); }
  BOOL AddIdleHandler(CIdleHandler* handler) { return add(m_handlers, handler); }
  BOOL RemoveIdleHandler(CIdleHandler* handler) { return remove(m_handlers, handler); }

  // Gets and dispatches messages until WM_QUIT, and returns its exit code. Between messages, when none is waiting,
  // OnIdle is called: once, and again as long as it asks for more.
  int Run() {
    int idle_count = 0;
    bool idle = true;
    for (;;) {
      while (idle && !::PeekMessage(&m_msg, nullptr, 0, 0, PM_NOREMOVE)) idle = OnIdle(idle_count++);

      BOOL got = ::GetMessage(&m_msg, nullptr, 0, 0);
      if (got == -1) continue;
      if (!got) return static_cast<int>(m_msg.wParam);

      // The message may change on its way: a handler can run a loop of its own on this object.
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

  // Asks the filters, the last one added first, until one has dealt with the message.
  virtual BOOL PreTranslateMessage(MSG* message) {
    for (size_t i = m_filters.size(); i-- > 0;)
      if (i < m_filters.size() && m_filters[i]->PreTranslateMessage(message)) return TRUE;
    return FALSE;
  }
  // Calls the idle handlers in the order in which they were added. TRUE asks to be called again before the next
  // message.
  virtual BOOL OnIdle(int /*idleCount*/) {
    for (size_t i = 0; i < m_handlers.size();) {
      CIdleHandler* handler = m_handlers[i];
      handler->OnIdle();
      if (i < m_handlers.size() && m_handlers[i] == handler) ++i;
    }
    return FALSE;
  }
  // Whether the loop may become idle again after the message. Messages that come by themselves, or all the time, do
  // not count: mouse moves, painting, and the timer that blinks the caret.
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

  MSG m_msg{};  // the message that is worked on

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

// What an application knows of itself: its module, and the message loop of each of its threads.
class CAppModule {
 public:
  // The object map is null: no COM classes are made here.
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

  // The loop of the calling thread. FALSE, and nothing changed, where it has one already.
  BOOL AddMessageLoop(CMessageLoop* loop) {
    ATL::CComCritSecLock guard(m_section);
    return m_loops.emplace(::GetCurrentThreadId(), loop).second;
  }
  BOOL RemoveMessageLoop() {
    ATL::CComCritSecLock guard(m_section);
    return m_loops.erase(::GetCurrentThreadId()) > 0;
  }
  // Null for a thread without one.
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
