// ActiveX controls in dialogs, and fatal exceptions in COM servers.
//
//     case WM_INITDIALOG:
//       control = CreateControl(dialog, &host, IDC_PLACEHOLDER, "Maker.Control.1");
//
// The caller owns the host object. The dialog owns the host's window and destroys it.
#ifndef KEXLIB_COM_ACTIVEX_H
#define KEXLIB_COM_ACTIVEX_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

#include <atlbase.h>
#include <atlhost.h>

/// Creates an ActiveX control in place of a placeholder, a control of the dialog template that marks the position.
///
/// The placeholder is hidden, not destroyed: its identifier and its place in the tab order stay. The control is hosted
/// in a window of ATL's class "AtlAxWin140", at the placeholder's top left corner and in the control's natural size
/// (IOleObject::GetExtent, converted with the screen's pixels per inch). A control without IOleObject gets the
/// placeholder's size. Without a placeholder the control is at the dialog's top left corner.
///
/// dialog: the dialog window.
/// host: receives the host window, or null if it cannot be created.
/// placeholderId: the identifier of the placeholder.
/// control: the window text of the host: a ProgID, or a class identifier in braces.
///
/// Returns the control. Returns null, and does nothing, if `dialog` is not a window or `host` is null. Returns null if
/// there is no such control; a host window that was created stays in the dialog. Call it on the dialog's thread, with
/// COM initialised. ATL hosts the control and registers its window class at the first call: nothing else has to be
/// called before.
KEXLIB_API ATL::CComPtr<IUnknown> CreateControl(HWND dialog, ATL::CAxWindowT<ATL::CWindow>* host, UINT placeholderId,
                                                const char* control);

/// Disables COM's handling of fatal exceptions in servers: sets COMGLB_EXCEPTION_HANDLING to
/// COMGLB_EXCEPTION_DONOT_HANDLE (IGlobalOptions::Set), after initialising security from the process's AppID
/// (CoInitializeSecurity, EOAC_APPID).
///
/// By default COM catches every exception that leaves a server's method in a marshalled call, and the call fails with
/// an HRESULT. With this option a fatal exception, such as an access violation, ends the server's process instead.
/// Other exceptions, C++ exceptions among them, still fail the call. A call within one apartment is not marshalled: COM
/// takes no part in it, and an exception reaches the caller with or without this option. Wine accepts the option and
/// ignores it.
///
/// Call it once, early in the process, before any marshalled call, on a thread with COM initialised. Returns the
/// HRESULT of the first call that fails, otherwise that of setting the option. Security that is already initialised
/// (RPC_E_TOO_LATE) is not a failure, so a second call sets the option again.
KEXLIB_API long kexDisableComExceptionHandler();

#endif
