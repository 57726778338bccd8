// Thread message hook: catches messages that are posted to a thread, whichever loop takes them from its queue.
//
// A message posted with PostThreadMessageA belongs to no window. The thread's own loop may look for it, but the loop of
// a message box, a menu or a dialog throws it away. An object of a class derived from CThreadMessageHook sees such
// messages as they leave the queue, in all of these loops:
//
//     class Progress : public CThreadMessageHook {
//      public:
//       const UINT* GetHookedMessages() override { return messages_; }
//       void OnHookedMessage(MSG* message) override { show(message->wParam); }
//
//      private:
//       const UINT messages_[2] = {RegisterWindowMessageA("Progress"), 0};
//     };
//
//     Progress progress;                                   // on the thread that shall get the messages
//     progress.SetHook();
//     ...
//     progress.PostHookMessage(message, percent, 0);       // from any thread
//
// One object at a time, in the whole process: the hook procedure knows the object that was hooked last and no other.
// If a second object is hooked meanwhile, all messages go to its handler, those that the first one's hook catches too,
// and when either is unhooked, none is handled until an object is hooked again.
//
// The message itself is left alone: after the handler it goes to the loop that took it. It is handled when it is taken
// out of the queue (PM_REMOVE), not when a loop looks at it and leaves it (PM_NOREMOVE). The test is for PM_REMOVE and
// nothing else: where Windows tells of a PeekMessage with PM_REMOVE | PM_NOYIELD as it was called, its messages are not
// handled.
//
// Threads. All members may be called on any thread; the handler runs on the hooked one, with the lock of the object
// held: whatever another thread asks of the object waits until the handler returns, so a handler must not wait for a
// thread that does. The handler itself may call every member, RemoveHook among them. An object that is destroyed on
// another thread than the hooked one is unhooked first, while its handler still is there. Unhook before kexlib.dll is
// freed.
#ifndef KEXLIB_MESSAGELOOP_THREAD_MESSAGE_HOOK_H
#define KEXLIB_MESSAGELOOP_THREAD_MESSAGE_HOOK_H

#include <windows.h>

#include <kexlib/export.h>

/// The base of objects that handle messages posted to one thread.
class KEXLIB_API CThreadMessageHook {
 public:
  /// For the messages of `threadId`, a thread of this process. With `installNow` it is hooked at once as SetHook does
  /// it; IsHooked tells whether that succeeded. Where the lock cannot be made (InitializeCriticalSectionEx), throws the
  /// error: CMemoryException* where memory is short, COleException* for all else.
  CThreadMessageHook(int installNow = 0, DWORD threadId = GetCurrentThreadId());

  /// RemoveHook().
  virtual ~CThreadMessageHook();

  /// The messages to handle, a list that ends in 0; null for none. Asked anew for each message that goes by: keep it
  /// quick. The list stays the derived class's.
  virtual const UINT* GetHookedMessages() = 0;

  /// Handles one message of the list, on the hooked thread and inside the loop that took it from the queue. `msg` is
  /// that loop's and valid during the call. An exception that leaves it ends the program.
  virtual void OnHookedMessage(MSG* msg) = 0;

  /// Copies what the object knows, byte for byte: no second hook, no lock of its own. Of use only for objects that are
  /// never hooked and whose copies are never destroyed.
  CThreadMessageHook(const CThreadMessageHook&) = default;
  /// As the copy constructor.
  CThreadMessageHook& operator=(const CThreadMessageHook&) = default;

  /// Installs the hook (SetWindowsHookExA, WH_GETMESSAGE). S_OK; E_FAIL if this object is hooked already; or the
  /// system's error as HRESULT_FROM_WIN32, ERROR_INVALID_PARAMETER or ERROR_INVALID_THREAD_ID for a thread that there
  /// is not.
  long SetHook();

  /// Removes the hook (UnhookWindowsHookEx). S_OK, also if there is none; or the system's error as HRESULT_FROM_WIN32,
  /// with the object hooked as before: after the end of the hooked thread, ERROR_INVALID_HOOK_HANDLE.
  long RemoveHook();

  /// 1 if this object has its hook, else 0.
  int IsHooked();

  /// Posts a message of the list to the hooked thread (PostThreadMessageA), once more after a millisecond if that
  /// fails. 1 if it was posted; 0 if not: it is not in the list, the object is not hooked, or the system refused twice.
  int PostHookMessage(UINT message, WPARAM wParam, LPARAM lParam);

 private:
  int is_registered_message(UINT message);
  void on_message_removal(MSG* msg);
  static LRESULT CALLBACK static_callback_function(int code, WPARAM wParam, LPARAM lParam) noexcept;

  static CThreadMessageHook* s_hooked_instance;

  DWORD thread_id_;
  HHOOK hook_ = nullptr;
  CRITICAL_SECTION lock_;
};

#endif
