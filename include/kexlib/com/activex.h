// ActiveX controls in dialogs, and crashes of COM servers that are not to be hidden.
//
//     case WM_INITDIALOG:
//       control = CreateControl(dialog, &host, IDC_PLACEHOLDER, "Maker.Control.1");
//
// The host is the caller's window object; its window belongs to the dialog and goes with it.
#ifndef KEXLIB_COM_ACTIVEX_H
#define KEXLIB_COM_ACTIVEX_H

#include <atlbase.h>
#include <atlwin.h>

#include <kexlib/export.h>

/// Puts an ActiveX control in the place of a dialog's placeholder, a control of the dialog template that marks the
/// spot.
///
/// The placeholder is hidden, not destroyed: its identifier and its place in the tab order stay. The control is hosted
/// in a window of ATL's class "AtlAxWin140", at the placeholder's top left corner and in its own natural size
/// (IOleObject::GetExtent, by the screen's pixels to the inch); a control without IOleObject has the placeholder's
/// size. Without a placeholder it stands at the dialog's top left corner.
///
/// host: gets the window made, or null where there is none. control: what the host takes as its window's text: a
/// ProgID, a class identifier in braces.
///
/// Returns the control, or null where `dialog` is no window or `host` is null (nothing is done then), and where there
/// is no control of this name. A host window that was made all the same stays in the dialog. On the dialog's thread,
/// with COM initialised.
KEXLIB_API ATL::CComPtr<IUnknown> CreateControl(HWND dialog, ATL::CAxWindowT<ATL::CWindow>* host, UINT placeholderId,
                                                const char* control);

/// Lets crashes inside COM servers come through, instead of being turned into error codes: sets COM's exception
/// handling to COMGLB_EXCEPTION_DONOT_HANDLE (IGlobalOptions), after initialising its security from the process's AppID
/// (CoInitializeSecurity, EOAC_APPID). Once, early in the process, before any marshalled call, on a thread with COM
/// initialised.
///
/// Returns the HRESULT of the first call that fails, else that of setting the option. Security that is initialised
/// already is no failure, so a second call sets the option again.
KEXLIB_API long kexDisableComExceptionHandler();

#endif
