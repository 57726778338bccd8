// ATL's windows: a handle with methods (CWindow), windows and dialogs written in C++ (CWindowImpl, CDialogImpl), the
// message maps that both use, and ActiveX hosting.
//
//     class Box : public CWindowImpl<Box, CWindow, CControlWinTraits> {
//       BEGIN_MSG_MAP(Box)
//         MESSAGE_HANDLER(WM_PAINT, OnPaint)
//         COMMAND_HANDLER(IDOK, BN_CLICKED, OnOk)
//         REFLECT_NOTIFICATIONS()
//       END_MSG_MAP()
//       ...
//     };
//
// A window and its object belong to the thread that created the window.
#ifndef FRAMEWORK_ATLWIN_H
#define FRAMEWORK_ATLWIN_H

#include <kexframework/atlwin/ax.h>
#include <kexframework/atlwin/dialog.h>
#include <kexframework/atlwin/message_map.h>
#include <kexframework/atlwin/window.h>
#include <kexframework/atlwin/window_class.h>
#include <kexframework/atlwin/window_impl.h>

#endif
