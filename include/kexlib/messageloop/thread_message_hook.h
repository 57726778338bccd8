// Thread message hook: catches messages that are posted to a thread, whichever loop removes them from its queue.
//
// A message posted with PostThreadMessageA belongs to no window. The thread's own loop may look for it, but the loop of
// a message box, a menu or a dialog discards it. An object of a class derived from CThreadMessageHook sees such
// messages as they leave the queue, in all of these loops:
//
//     class Progress : public CThreadMessageHook {
//      public:
//       ~Progress() override { RemoveHook(); }             // while the handler still exists
//       const UINT* GetHookedMessages() override { return messages_; }
//       void OnHookedMessage(MSG* message) override { show(message->wParam); }
//
//      private:
//       const UINT messages_[2] = {RegisterWindowMessageA("Progress"), 0};
//     };
//
//     Progress progress;                                   // on the thread that receives the messages
//     progress.SetHook();
//     ...
//     progress.PostHookMessage(message, percent, 0);       // from any thread
//
// One object at a time, in the whole process: the hook procedure knows only the object that was hooked last. If a
// second object is hooked meanwhile, its handler gets all messages, also those that the hook of the first one catches.
// When either is unhooked, no message is handled until an object is hooked again.
//
// The message is not changed: after the handler it is passed to the loop that removed it. It is handled when it is
// removed from the queue (PM_REMOVE), not when a loop only peeks at it (PM_NOREMOVE). The test is for equality with
// PM_REMOVE: if Windows reports a PeekMessage with PM_REMOVE | PM_NOYIELD as such, the message is not handled.
//
// Threads. All members may be called on any thread. The handler runs on the hooked thread and with the lock of the
// object held: calls of other threads wait until it returns, so a handler must not wait for a thread that makes one.
// The handler itself may call every member, RemoveHook included.
//
// Removal. Once RemoveHook has returned S_OK, the handler neither runs nor is called again until SetHook, whichever
// thread called RemoveHook. The hook procedure, however, may still be about to enter the lock of the object on the
// hooked thread: UnhookWindowsHookEx does not wait for it. So the object has to outlive RemoveHook. Destroy it on the
// hooked thread, outside its handler, or on any thread after the hooked one has ended:
//
//     hook->RemoveHook();     // any thread; from here on the handler is not called
//     worker.join();          // the hooked thread has ended, or destroy the object on that thread
//     delete hook;
//
// The same holds for kexlib.dll and for the module of the derived class: remove the hook on the hooked thread, or end
// that thread, before the module is freed.
#ifndef KEXLIB_MESSAGELOOP_THREAD_MESSAGE_HOOK_H
#define KEXLIB_MESSAGELOOP_THREAD_MESSAGE_HOOK_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

/// The base of objects that handle messages posted to one thread.
class KEXLIB_API CThreadMessageHook {
 public:
  /// For the messages of `threadId`, a thread of this process. If `installNow` is not 0, calls SetHook; IsHooked
  /// returns whether that succeeded. Throws if the lock cannot be initialized (InitializeCriticalSectionEx):
  /// CMemoryException* if memory runs out, else COleException*.
  CThreadMessageHook(int installNow = 0, DWORD threadId = GetCurrentThreadId());

  /// RemoveHook(). A derived class whose object may still be hooked calls RemoveHook in its own destructor: here its
  /// handler no longer exists.
  virtual ~CThreadMessageHook();

  /// The messages to handle, a list that ends in 0; null for none. Called for each message of the thread: keep it
  /// quick. The derived class owns the list.
  virtual const UINT* GetHookedMessages() = 0;

  /// Handles one message of the list, on the hooked thread and inside the loop that removed it from the queue. `msg`
  /// belongs to that loop and is valid during the call. An exception that leaves the handler ends the program.
  virtual void OnHookedMessage(MSG* msg) = 0;

  /// Copies the members as they are: the copy has neither its own hook nor its own lock. Use only for objects that are
  /// never hooked and whose copies are never destroyed.
  CThreadMessageHook(const CThreadMessageHook&) = default;
  /// As the copy constructor.
  CThreadMessageHook& operator=(const CThreadMessageHook&) = default;

  /// Installs the hook (SetWindowsHookExA, WH_GETMESSAGE). S_OK; E_FAIL if this object is hooked already; or the
  /// system's error as HRESULT_FROM_WIN32: ERROR_INVALID_PARAMETER or ERROR_INVALID_THREAD_ID if there is no such
  /// thread.
  long SetHook();

  /// Removes the hook (UnhookWindowsHookEx); waits for a handler that runs on another thread. S_OK, also if there is no
  /// hook; or the system's error as HRESULT_FROM_WIN32, and the object stays hooked: ERROR_INVALID_HOOK_HANDLE after
  /// the end of the hooked thread. What is safe after it: see above.
  long RemoveHook();

  /// 1 if the object is hooked, else 0.
  int IsHooked();

  /// Posts a message of the list to the hooked thread (PostThreadMessageA), once more after a millisecond if that
  /// fails. Not 0 if it was posted; 0 if it is not in the list, the object is not hooked, or both posts failed.
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
