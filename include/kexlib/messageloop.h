// Message loops and threads: for threads that own windows.
//
//   message_wait.h          waits for kernel objects while the thread's messages are dispatched
//   thread_message_hook.h   catches messages posted to a thread, whichever loop removes them
//   windowless_timer.h      a timer for COM objects that have no window
#ifndef KEXLIB_MESSAGELOOP_H
#define KEXLIB_MESSAGELOOP_H

#include <kexlib/messageloop/message_wait.h>
#include <kexlib/messageloop/thread_message_hook.h>
#include <kexlib/messageloop/windowless_timer.h>

#endif
