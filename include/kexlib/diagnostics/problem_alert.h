// Problem alert: a warning, "The problem has occurred", that any thread can raise without waiting for it.
//
//     CProblemAlert alert;                // made and ended by one thread
//     ...
//     alert.RaiseProblemMessage();        // from any thread, whatever locks it holds
//
// The box (MessageBoxA with MB_OK | MB_ICONEXCLAMATION | MB_SYSTEMMODAL, and the system's caption for errors) is shown
// by a thread that the object has for it. At most one is on screen, and whatever is raised while it is there is part of
// it.
//
// The end. EndThread and the destructor wait for the user to close a box that is on screen. Therefore never make such
// an object a static one of a DLL: while the DLL is unloaded, its thread cannot end and the wait would last for ever.
// End it where the program ends in order.
#ifndef KEXLIB_DIAGNOSTICS_PROBLEM_ALERT_H
#define KEXLIB_DIAGNOSTICS_PROBLEM_ALERT_H

#include <afxmt.h>

#include <kexlib/export.h>

/// The alert, with the thread that shows it.
class KEXLIB_API CProblemAlert {
 public:
  /// Not 0: as StartThread does, whose result nobody sees; 0: no thread until StartThread is called. Where the system
  /// has no more events, throws what CEvent throws.
  CProblemAlert(int startNow = 1);

  /// EndThread().
  virtual ~CProblemAlert();

  CProblemAlert(const CProblemAlert&) = delete;
  CProblemAlert& operator=(const CProblemAlert&) = delete;

  /// Starts the thread (AfxBeginThread); what was raised before is forgotten. 1 if it runs, also if it did already; 0
  /// if it cannot be started. For the owner's thread, as EndThread.
  int StartThread();

  /// Ends the thread and waits for that, without limit; a raise that it has not seen yet is lost. Nothing if none runs.
  void EndThread();

  /// Asks for the box and returns at once. Without a thread nothing is shown, neither now nor later. For any thread.
  void RaiseProblemMessage();

 private:
  static unsigned ThreadEntry(void* param);
  void ThreadLoop();

  CWinThread* thread_ = nullptr;  // ours; null while none runs
  CEvent stop_event_;
  CEvent problem_event_;
};

#endif
