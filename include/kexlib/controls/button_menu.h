// Button menu: a small push button with an arrow that opens a menu below itself.
//
//     atlButtonMenu more;
//     more.SetMenu(instance, IDR_MORE);                      // the first submenu of this menu resource is shown
//     more.SubclassWindow(dialog.GetDlgItem(IDC_MORE));
//
//     BEGIN_MSG_MAP(Dialog)                                  // in the dialog
//       COMMAND_ID_HANDLER(ID_MORE_COPY, OnCopy)             // the menu's commands, as from a menu bar
//       REFLECT_NOTIFICATIONS()                              // required: reflects the click to the button
//     END_MSG_MAP()
//
// Errors. None is reported. If the menu resource or its first submenu is missing, a click leaves the button checked.
//
// Threads. Call on the thread of the dialog.
#ifndef KEXLIB_CONTROLS_BUTTON_MENU_H
#define KEXLIB_CONTROLS_BUTTON_MENU_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

#include <atlbase.h>
#include <atlapp.h>
#include <atlctrls.h>
#include <atlgdi.h>

/// The button. It does not destroy its window: destroy the window first, with the dialog.
///
/// A copy has the same menu and the same window handle, but does not get the window's messages. It shares the font with
/// its source; the first of the two to be destroyed deletes it. An object that gets the messages of a window keeps that
/// window when another one is assigned to it. The font that it had is not deleted.
class KEXLIB_API atlButtonMenu
    : public ATL::CWindowImpl<atlButtonMenu, WTL::CButtonT<ATL::CWindow>,
                              ATL::CWinTraits<WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, 0>> {
 public:
  /// No window and no menu.
  atlButtonMenu() = default;
  /// See the class.
  atlButtonMenu(const atlButtonMenu& other);
  /// See the class.
  atlButtonMenu& operator=(const atlButtonMenu& other);

  /// A click that the parent reflects (OCM_COMMAND with BN_CLICKED) calls OnClick; other reflected messages are passed
  /// to DefaultReflectionHandler. Message maps other than 0 handle nothing.
  BOOL ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result,
                            DWORD map = 0) override;

  /// Deletes the font. Does not destroy the window.
  ~atlButtonMenu() override;

  /// Sets the menu for the next click. It is loaded at each click (LoadMenuA). With 0, a click does nothing.
  void SetMenu(HINSTANCE module, UINT menu_id);

  /// Subclasses a push button and replaces its text or icon by an arrow of the font Marlett. The previous button is
  /// detached; its window keeps the font, which the object owns. FALSE, and nothing is changed, if the system refuses,
  /// or if other code has subclassed the previous button since.
  BOOL SubclassWindow(HWND button);

  /// Checks the button (BM_SETCHECK) and shows the menu below it (TrackPopupMenu) until the menu is closed. The chosen
  /// command is posted to the parent (WM_COMMAND). If the button's lower left corner is on no monitor, the menu is
  /// moved horizontally into the work area of the nearest one. Returns 0.
  LRESULT OnClick(WORD notify_code, WORD id, HWND control, BOOL& handled);

 private:
  UINT menu_id_ = 0;
  HINSTANCE menu_module_ = nullptr;
  WTL::CFont arrow_font_;
};

#endif
