// Problem alert: a message box, "The problem has occurred", that any thread can raise without waiting for it.
//
//     CProblemAlert alert;                // constructed and ended by one thread
//     ...
//     alert.RaiseProblemMessage();        // from any thread, whatever locks it holds
//
// A worker thread of the object shows the box (MessageBoxA with MB_OK | MB_ICONEXCLAMATION | MB_SYSTEMMODAL and the
// system's caption for errors). At most one is on screen; raises while it is shown are discarded.
//
// EndThread and the destructor wait for the user to close a box that is on screen. Never make such an object a static
// object of a DLL: its thread cannot end while the DLL is unloaded, and the wait would not end. Call EndThread before.
#ifndef KEXLIB_DIAGNOSTICS_PROBLEM_ALERT_H
#define KEXLIB_DIAGNOSTICS_PROBLEM_ALERT_H

#include <kexlib/export.h>
#include <kexlib/framework.h>

#include <afxmt.h>

/// The alert, with the thread that shows it.
class KEXLIB_API CProblemAlert {
 public:
  /// If `startNow` is not 0, calls StartThread and ignores its result. If an event cannot be created, throws what
  /// CEvent throws.
  CProblemAlert(int startNow = 1);

  /// EndThread().
  virtual ~CProblemAlert();

  CProblemAlert(const CProblemAlert&) = delete;
  CProblemAlert& operator=(const CProblemAlert&) = delete;

  /// Starts the thread (AfxBeginThread); earlier raises are discarded. 1 if the thread runs, also if it was running
  /// already; 0 if it cannot be started, for lack of memory too. Call it, as EndThread, on the thread that owns the
  /// object.
  int StartThread();

  /// Ends the thread and waits for its end, without limit. A raise that it has not handled yet is discarded: ending
  /// takes priority. Does nothing if no thread runs.
  void EndThread();

  /// Requests the box and returns at once. Without a thread nothing is shown, not even later. Any thread may call it.
  void RaiseProblemMessage();

 private:
  static unsigned ThreadEntry(void* param);
  void ThreadLoop();

  CWinThread* thread_ = nullptr;  // owned; null while none runs
  CEvent stop_event_;
  CEvent problem_event_;
};

#endif
