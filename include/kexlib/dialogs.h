// Dialogs: the system's own, built and driven with less.
//
//   task_dialog.h    a message with buttons that act, and links
//   wizard_dialog.h  a wizard of property pages that share data and help
#ifndef KEXLIB_DIALOGS_H
#define KEXLIB_DIALOGS_H

#include <kexlib/dialogs/task_dialog.h>
#include <kexlib/dialogs/wizard_dialog.h>

#endif
