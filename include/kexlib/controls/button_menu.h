// Button menu: a small push button with an arrow that opens a menu below itself.
//
//     atlButtonMenu more;
//     more.SetMenu(instance, IDR_MORE);                      // a menu resource, of which the first submenu is shown
//     more.SubclassWindow(dialog.GetDlgItem(IDC_MORE));
//
//     BEGIN_MSG_MAP(Dialog)                                  // in the dialog
//       COMMAND_ID_HANDLER(ID_MORE_COPY, OnCopy)             // the menu's commands, as from a menu bar
//       REFLECT_NOTIFICATIONS()                              // without it no menu is opened
//     END_MSG_MAP()
//
// Errors. None is reported. Where there is no menu resource, or no submenu in it, the click leaves the button checked.
//
// Threads. For the thread of the dialog.
#ifndef KEXLIB_CONTROLS_BUTTON_MENU_H
#define KEXLIB_CONTROLS_BUTTON_MENU_H

#include <kexlib/export.h>

#include <atlbase.h>

#include <atlapp.h>
#include <atlctrls.h>
#include <atlgdi.h>

/// The button. It does not destroy its window; the window goes first, with the dialog. A copy shares the font with its
/// source, and the first of the two to go deletes it.
class KEXLIB_API atlButtonMenu
    : public ATL::CWindowImpl<atlButtonMenu, WTL::CButtonT<ATL::CWindow>,
                              ATL::CWinTraits<WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, 0>> {
 public:
  /// No window and no menu.
  atlButtonMenu() = default;

  /// A click that the parent reflects (OCM_COMMAND with BN_CLICKED) goes to OnClick, other reflected messages get the
  /// system's default treatment. Of other message maps than 0 nothing is handled.
  BOOL ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result,
                            DWORD map = 0) override;

  /// Deletes the font; leaves the window alone.
  ~atlButtonMenu() override;

  /// The menu from the next click on, which is loaded anew at each click (LoadMenuA). 0 is none: then a click does
  /// nothing.
  void SetMenu(HINSTANCE module, UINT menu_id);

  /// Takes a push button over: an arrow in the system's symbol font replaces its text or its icon. FALSE, and nothing
  /// is changed, for what is no window. A button of before is let go of; its font stays the object's.
  BOOL SubclassWindow(HWND button);

  /// Shows the button checked (BM_SETCHECK) and the menu below it, until the menu is closed; the chosen command is then
  /// in the parent's message queue (WM_COMMAND). Where the button's lower left corner is on no monitor, the menu moves
  /// sideways into the nearest one's work area. Always 0.
  LRESULT OnClick(WORD notify_code, WORD id, HWND control, BOOL& handled);

 private:
  UINT menu_id = 0;
  HINSTANCE menu_module = nullptr;
  WTL::CFont arrow_font;
};

#endif
