// Message-pumping waits: a thread that owns windows waits for kernel objects, and its windows stay alive meanwhile.
//
//     MSG quit{};
//     const HANDLE handles[] = {finished, cancelled};
//     switch (SafeWaitWithMessageLoop(2, handles, 5000, TRUE, &quit)) {
//       case WAIT_OBJECT_0: ...        // finished
//       case WAIT_OBJECT_0 + 1: ...    // cancelled
//       case WAIT_OBJECT_0 + 2: PostQuitMessage(static_cast<int>(quit.wParam)); return;   // the thread is to end
//       case WAIT_TIMEOUT: ...
//     }
//
// Both functions take every message of the calling thread, to whichever window or to the thread itself, with
// PeekMessageA, and do with it what a message loop does (TranslateMessage, DispatchMessageA). So window procedures,
// timer callbacks and hooks of this thread run inside these calls; be ready for what they may do to your data. A window
// procedure that runs a loop of its own (a menu, a message box, a window being dragged) holds the wait up for as long
// as that loop runs: neither the objects nor the time are looked at until it returns.
//
// Dropping user input. With `dropUserInput`, messages of the mouse (WM_MOUSEFIRST to WM_MOUSELAST, 0x200 to 0x20E) and
// of the keyboard (WM_KEYFIRST to WM_UNICHAR, 0x100 to 0x109), and posted WM_SETCURSOR are taken out of the queue and
// thrown away. Painting, timers, posted messages and clicks on title bars and borders still get through. The release of
// a button or key that was pressed before the wait is dropped too: let go of the capture first.
//
// Quitting. A WM_QUIT ends the wait only for those who pass a record for it. Without a record it is posted again, so
// that the thread's own loop ends after the wait. It is found again at once, though, so from then on the wait takes a
// whole processor, and since Windows gives out WM_QUIT before input, painting and timers, none of these comes any more;
// posted messages and messages sent from other threads still do.
//
// Threads. Each call works on the queue of the thread that makes it. No lock is taken.
#ifndef KEXLIB_MESSAGELOOP_MESSAGE_WAIT_H
#define KEXLIB_MESSAGELOOP_MESSAGE_WAIT_H

#include <windows.h>

#include <kexlib/export.h>

/// Waits until one of `count` objects is signalled, and dispatches messages meanwhile, one at a time: before each of
/// them the objects are asked (WaitForMultipleObjects without waiting), so they come first even in a flood of messages.
/// While the queue is empty the thread sleeps (MsgWaitForMultipleObjects).
///
/// count: 0 to 63. With 0, `handles` is not used and this is a sleep that keeps messages going. 64 objects can be
/// asked, but not slept on: WAIT_FAILED as soon as the queue is empty; more than 64: WAIT_FAILED at once. handles:
/// borrowed; what SYNCHRONIZE access was given for. An object that the wait is for, an event with automatic reset or a
/// mutex, is taken as any wait takes it. timeoutMs: milliseconds, as exact as GetTickCount (10 to 16 ms), or INFINITE.
/// With 0 the objects are asked once, and the queue is not touched. dropUserInput: not 0: see above. quitMessage: null,
/// or what gets a WM_QUIT, whole: the exit code is in its wParam. Its `message` becomes 0 whenever the queue is looked
/// at; a wait that ends before that leaves it as it was.
///
/// Returns
///   WAIT_OBJECT_0 + i      object i is signalled, the lowest such index
///   WAIT_ABANDONED_0 + i   object i is a mutex whose owner ended; it is the caller's now
///   WAIT_TIMEOUT           the time went by
///   count                  a WM_QUIT lies in `quitMessage`. With a count of 0 that is 0.
///   WAIT_FAILED            the wait failed; GetLastError tells why, ERROR_INVALID_HANDLE for one
KEXLIB_API DWORD SafeWaitWithMessageLoop(DWORD count, const HANDLE* handles, DWORD timeoutMs, BOOL dropUserInput,
                                         MSG* quitMessage);

/// Takes one message out of the queue and deals with it as above; never waits. Returns 1 if there was one (dispatched,
/// dropped, or a quit), or 0.
///
/// quitMessage: null, or what gets a WM_QUIT; its `message` is 0 after every other outcome.
KEXLIB_API int SafeWaitServiceMessageQueue(int dropUserInput, MSG* quitMessage);

#endif
