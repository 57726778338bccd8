// Message-pumping waits: a thread that owns windows waits for kernel objects while its windows keep working.
//
//     MSG quit{};
//     const HANDLE handles[] = {finished, cancelled};
//     switch (SafeWaitWithMessageLoop(2, handles, 5000, TRUE, &quit)) {
//       case WAIT_OBJECT_0: ...        // finished
//       case WAIT_OBJECT_0 + 1: ...    // cancelled
//       case WAIT_OBJECT_0 + 2: PostQuitMessage(static_cast<int>(quit.wParam)); return;   // the thread shall end
//       case WAIT_TIMEOUT: ...
//     }
//
// Both functions remove the messages of the calling thread, for any window or for the thread, with PeekMessageA, and
// process them as a message loop does (TranslateMessage, DispatchMessageA). Window procedures, timer callbacks and
// hooks of the thread run inside these calls and may change your data. A window procedure that runs its own loop (a
// menu, a message box, a window being dragged) blocks the wait until that loop returns: meanwhile neither the objects
// nor the time are checked.
//
// Dropping user input. With `dropUserInput`, messages of the mouse (WM_MOUSEFIRST to WM_MOUSEHWHEEL, 0x200 to 0x20E)
// and of the keyboard (WM_KEYFIRST to WM_UNICHAR, 0x100 to 0x109), and posted WM_SETCURSOR are removed from the queue
// and discarded. Painting, timers, posted messages and clicks on title bars and borders are still processed. The
// release of a button or key that was pressed before the wait is discarded too: release the capture first.
//
// Quitting. A WM_QUIT ends the wait only if the caller passes a record for it. Without a record it is posted again, so
// that the thread's own loop ends after the wait. The wait finds it again at once: from then on it uses a whole
// processor, and because Windows returns WM_QUIT before input, painting and timers, these are not processed any more.
// Posted messages and messages sent by other threads still are.
//
// Threads. Each call works on the queue of the calling thread. No lock is taken.
#ifndef KEXLIB_MESSAGELOOP_MESSAGE_WAIT_H
#define KEXLIB_MESSAGELOOP_MESSAGE_WAIT_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

/// Waits until one of the objects is signalled, and dispatches messages meanwhile, one at a time. Before each message
/// the objects are polled (WaitForMultipleObjects with no time), so they take priority even in a flood of messages.
/// While the queue is empty the thread sleeps (MsgWaitForMultipleObjects).
///
/// count          0 to 63. With 0, a sleep that processes messages. 64 objects can be polled but not slept on:
///                WAIT_FAILED once the queue is empty. More than 64: WAIT_FAILED at once.
/// handles        Borrowed, with SYNCHRONIZE access; unused with a count of 0. The object that ends the wait is
///                acquired: an event with automatic reset is reset, a mutex is owned.
/// timeoutMs      Milliseconds, as exact as GetTickCount (10 to 16 ms), or INFINITE. With 0 the objects are polled once
///                and the queue is not accessed.
/// dropUserInput  Not 0: user input is discarded, see above.
/// quitMessage    Null, or receives a WM_QUIT, whole: its wParam is the exit code. Its `message` is set to 0 each time
///                the queue is polled; a wait that ends before that leaves it unchanged.
///
/// Returns
///   WAIT_OBJECT_0 + i      object i is signalled, the lowest such index
///   WAIT_ABANDONED_0 + i   object i is a mutex whose owner ended; the caller owns it now
///   WAIT_TIMEOUT           the time has passed
///   count                  `quitMessage` holds a WM_QUIT. With a count of 0 this is 0.
///   WAIT_FAILED            the wait failed; see GetLastError: ERROR_INVALID_HANDLE for an invalid handle
KEXLIB_API DWORD SafeWaitWithMessageLoop(DWORD count, const HANDLE* handles, DWORD timeoutMs, BOOL dropUserInput,
                                         MSG* quitMessage);

/// Removes one message from the queue and processes it as above; never waits. Returns 1 if there was one (dispatched,
/// discarded, or a quit), else 0.
///
/// dropUserInput  Not 0: user input is discarded.
/// quitMessage    Null, or receives a WM_QUIT; its `message` is 0 after every other outcome.
KEXLIB_API int SafeWaitServiceMessageQueue(int dropUserInput, MSG* quitMessage);

#endif
