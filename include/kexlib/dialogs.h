// Dialogs: wrappers of the system's task dialog and property sheet.
//
//   task_dialog.h    a message with buttons that run actions, and links
//   wizard_dialog.h  a wizard of property pages that share data and context help
#ifndef KEXLIB_DIALOGS_H
#define KEXLIB_DIALOGS_H

#include <kexlib/dialogs/task_dialog.h>
#include <kexlib/dialogs/wizard_dialog.h>

#endif
