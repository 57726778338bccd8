// Dialogs: the system's own, built and driven with less.
//
//   task_dialog.h    a message with buttons that act, and links
#ifndef KEXLIB_DIALOGS_H
#define KEXLIB_DIALOGS_H

#include <kexlib/dialogs/task_dialog.h>

#endif
