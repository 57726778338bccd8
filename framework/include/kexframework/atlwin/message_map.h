// Message maps: macros that write ProcessWindowMessage. Part of <atlwin.h>.
#ifndef FRAMEWORK_ATLWIN_MESSAGE_MAP_H
#define FRAMEWORK_ATLWIN_MESSAGE_MAP_H

#include <atldef.h>
#include <commctrl.h>
#include <olectl.h>

namespace ATL {

// Handles messages. A map other than 0 is for other windows, or for classes that chain to it.
class CMessageMap {
 public:
  // Returns TRUE if the message is handled; lResult is its result then.
  virtual BOOL ProcessWindowMessage(HWND hWnd, UINT uMsg, WPARAM wParam, LPARAM lParam, LRESULT& lResult,
                                    DWORD dwMsgMapID) = 0;

 protected:
  CMessageMap() = default;
  CMessageMap(const CMessageMap&) = default;
  CMessageMap& operator=(const CMessageMap&) = default;
  ~CMessageMap() = default;
};

}  // namespace ATL

// Signatures of the handlers. A handler that sets bHandled to FALSE passes the message on: to the rest of the map, and
// to the window's own procedure.
//
//     LRESULT OnMessage(UINT uMsg, WPARAM wParam, LPARAM lParam, BOOL& bHandled);
//     LRESULT OnCommand(WORD wNotifyCode, WORD wID, HWND hWndCtl, BOOL& bHandled);
//     LRESULT OnNotify(int idCtrl, LPNMHDR pnmh, BOOL& bHandled);
#define BEGIN_MSG_MAP(theClass)                                                                     \
 public:                                                                                            \
  virtual BOOL ProcessWindowMessage([[maybe_unused]] HWND hWnd, [[maybe_unused]] UINT uMsg,         \
                                    [[maybe_unused]] WPARAM wParam, [[maybe_unused]] LPARAM lParam, \
                                    [[maybe_unused]] LRESULT& lResult, DWORD dwMsgMapID = 0) {      \
    [[maybe_unused]] BOOL bHandled = TRUE;                                                          \
    switch (dwMsgMapID) {                                                                           \
      case 0:

#define END_MSG_MAP() \
  break;              \
  default:            \
    break;            \
    }                 \
    return FALSE;     \
    }

#define KEXFRAMEWORK_MAP_ENTRY(condition, call) \
  if (condition) {                              \
    bHandled = TRUE;                            \
    lResult = call;                             \
    if (bHandled) return TRUE;                  \
  }

#define MESSAGE_HANDLER(msg, func) KEXFRAMEWORK_MAP_ENTRY(uMsg == (msg), func(uMsg, wParam, lParam, bHandled))
#define MESSAGE_RANGE_HANDLER(msgFirst, msgLast, func) \
  KEXFRAMEWORK_MAP_ENTRY(uMsg >= (msgFirst) && uMsg <= (msgLast), func(uMsg, wParam, lParam, bHandled))

#define KEXFRAMEWORK_COMMAND_ENTRY(message, condition, func) \
  KEXFRAMEWORK_MAP_ENTRY(uMsg == (message) && (condition),   \
                         func(HIWORD(wParam), LOWORD(wParam), reinterpret_cast<HWND>(lParam), bHandled))
#define COMMAND_HANDLER(id, code, func) \
  KEXFRAMEWORK_COMMAND_ENTRY(WM_COMMAND, (id) == LOWORD(wParam) && (code) == HIWORD(wParam), func)
#define COMMAND_ID_HANDLER(id, func) KEXFRAMEWORK_COMMAND_ENTRY(WM_COMMAND, (id) == LOWORD(wParam), func)
#define COMMAND_CODE_HANDLER(code, func) KEXFRAMEWORK_COMMAND_ENTRY(WM_COMMAND, (code) == HIWORD(wParam), func)
#define COMMAND_RANGE_HANDLER(idFirst, idLast, func) \
  KEXFRAMEWORK_COMMAND_ENTRY(WM_COMMAND, LOWORD(wParam) >= (idFirst) && LOWORD(wParam) <= (idLast), func)
// For a command that the parent reflected (REFLECT_NOTIFICATIONS).
#define REFLECTED_COMMAND_CODE_HANDLER(code, func) \
  KEXFRAMEWORK_COMMAND_ENTRY(OCM_COMMAND, (code) == HIWORD(wParam), func)

#define KEXFRAMEWORK_NOTIFY_ENTRY(message, condition, func)                            \
  KEXFRAMEWORK_MAP_ENTRY(uMsg == (message) && ATL::_AtlNotification(lParam).condition, \
                         func(static_cast<int>(wParam), reinterpret_cast<LPNMHDR>(lParam), bHandled))
#define NOTIFY_HANDLER(id, code, func) KEXFRAMEWORK_NOTIFY_ENTRY(WM_NOTIFY, is(id, code), func)
#define NOTIFY_CODE_HANDLER(code, func) KEXFRAMEWORK_NOTIFY_ENTRY(WM_NOTIFY, has_code(code), func)

// Passes what this map does not handle to the map of a base class.
#define CHAIN_MSG_MAP(theChainClass) \
  if (theChainClass::ProcessWindowMessage(hWnd, uMsg, wParam, lParam, lResult, 0)) return TRUE;

// Sends a control's notification back to the control, as OCM__BASE plus the message, and returns its result.
#define REFLECT_NOTIFICATIONS() KEXFRAMEWORK_MAP_ENTRY(true, this->ReflectNotifications(uMsg, wParam, lParam, bHandled))
// In the control: the system's default treatment of reflected messages that the map does not handle.
#define DEFAULT_REFLECTION_HANDLER() \
  if (this->DefaultReflectionHandler(hWnd, uMsg, wParam, lParam, lResult)) return TRUE;

namespace ATL {

// The header of a WM_NOTIFY, for the message maps.
struct _AtlNotification {
  explicit _AtlNotification(LPARAM lParam) : header(reinterpret_cast<const NMHDR*>(lParam)) {}
  template <typename Code>
  bool has_code(Code code) const {
    return header->code == static_cast<UINT>(code);
  }
  template <typename Id, typename Code>
  bool is(Id id, Code code) const {
    return header->idFrom == static_cast<UINT_PTR>(id) && has_code(code);
  }
  const NMHDR* header;
};

}  // namespace ATL

#endif
