// Shared by the tests of <atlwin.h>: a window that records its messages.
#ifndef TESTS_FRAMEWORK_RECORDER_H
#define TESTS_FRAMEWORK_RECORDER_H

#include <atlwin.h>

#include <algorithm>
#include <functional>
#include <map>
#include <vector>

using Messages = std::vector<UINT>;

inline bool contains(const Messages& messages, UINT message) {
  return std::find(messages.begin(), messages.end(), message) != messages.end();
}

// A window that records its messages.
class Recorder : public CWindowImpl<Recorder, CWindow, CFrameWinTraits> {
 public:
  BEGIN_MSG_MAP(Recorder)
    seen.push_back(uMsg);
    if (handles_seen_at.contains(uMsg)) handles_seen_at[uMsg] = m_hWnd;
    MESSAGE_HANDLER(WM_CREATE, OnCreate)
    MESSAGE_HANDLER(WM_USER, OnFirst)
    MESSAGE_HANDLER(WM_USER, OnSecond)
    MESSAGE_RANGE_HANDLER(WM_USER + 10, WM_USER + 12, OnRange)
  END_MSG_MAP()

  LRESULT OnCreate(UINT, WPARAM, LPARAM, BOOL& handled) {
    handled = FALSE;
    if (on_create) on_create();
    return create_result;
  }
  LRESULT OnFirst(UINT, WPARAM wParam, LPARAM, BOOL& handled) {
    handled = wParam == 1;
    return 11;
  }
  LRESULT OnSecond(UINT, WPARAM wParam, LPARAM, BOOL& handled) {
    handled = wParam == 2;
    return 22;
  }
  LRESULT OnRange(UINT message, WPARAM, LPARAM, BOOL&) { return static_cast<LRESULT>(message) - WM_USER; }

  void OnFinalMessage(HWND window) override { final_messages.push_back(window); }

  Messages seen;
  std::map<UINT, HWND> handles_seen_at;
  std::function<void()> on_create;
  LRESULT create_result = 0;
  std::vector<HWND> final_messages;
};

#endif
