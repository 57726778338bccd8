// Numeric edit box: an edit control that holds a number and shows it with the user's decimal separator.
//
//     kexNumericEditBox length;
//     length.set_decimal_places(2);
//     length.allow_negative_values(false);
//     length.SubclassWindow(dialog.GetDlgItem(IDC_LENGTH));   // the dialog's own edit control
//     length.set_value(2.5);                                  // shows 2.50, or 2,50
//     ...
//     const double value = length.get_value();                // 3 once the user has typed "3"
//
// Input is not filtered. When the control loses the keyboard focus, the text is parsed (kexNumericFormatting::getValue)
// and rewritten as the number: "2,5x" becomes "2,500" with three places, and text that is not a number becomes 0. The
// parent receives the notifications of an edit control (EN_UPDATE, EN_CHANGE, EN_KILLFOCUS) and no others.
//
// Windows. The object does not destroy its window: destroy the window first, with its parent. Without a window the
// setters only store; the first setter called with a window shows the value.
//
// Errors. None is reported. Out of memory throws MFC's memory exception. An exception that the parent throws in
// EN_UPDATE or EN_CHANGE while the text is written ends the program, since it would have to unwind the edit control.
//
// Threads. Call on the thread of the window.
#ifndef KEXLIB_CONTROLS_NUMERIC_EDIT_BOX_H
#define KEXLIB_CONTROLS_NUMERIC_EDIT_BOX_H

#include <kexlib/controls/numeric_formatting.h>

/// The edit box. A copy has the same numbers and the same window handle, but does not get the window's messages. An
/// object that gets the messages of a window keeps that window when another one is assigned to it, and shows the number
/// there.
class KEXLIB_API kexNumericEditBox
    : public ATL::CWindowImpl<kexNumericEditBox, WTL::CEditT<ATL::CWindow>,
                              ATL::CWinTraits<WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, 0>> {
 public:
  /// No window. The value is 0 with three decimal places, negative numbers are allowed, and the separator is the user's
  /// decimal separator at this moment.
  kexNumericEditBox();
  /// See the class.
  kexNumericEditBox(const kexNumericEditBox& other);
  /// See the class.
  kexNumericEditBox& operator=(const kexNumericEditBox& other);

  /// WM_KILLFOCUS reads and rewrites the number; the edit control gets the message as well. Returns FALSE.
  BOOL ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result,
                            DWORD map = 0) override;

  /// Does not destroy the window.
  ~kexNumericEditBox() override;

  /// Subclasses an edit control; the previous one is detached. FALSE, and nothing is changed, if the system refuses, or
  /// if other code has subclassed the previous one since: this object still receives its messages. To leave a
  /// subclassed window call UnsubclassWindow, not Detach.
  BOOL SubclassWindow(HWND edit);

  /// Creates an edit control with a sunken border and the identifier 0 as a child of the window that the object holds,
  /// with the font of `font_source` (WM_GETFONT), and shows the number. The object then holds the new control, or no
  /// window if the creation fails. An edit control that it held is detached; if other code has subclassed that one
  /// since, nothing is created. The new control has no size: move it.
  ///
  ///     length.Attach(host);      // immediately before Create: a setter would write into the host
  ///     length.Create(host);
  ///     length.MoveWindow(10, 10, 80, 20);
  void Create(ATL::CWindow& font_source);

  /// The number. With a window it is read from the text first, also while the user is typing; the text does not change.
  double get_value();

  /// Sets the number and shows it.
  void set_value(double number);

  /// The number of digits after the separator; a negative one shows six. Setting it rewrites the text from the number
  /// of the last read.
  int get_decimal_places() const;
  void set_decimal_places(int places);

  /// Whether a minus sign is kept. The text is rewritten at once; the number changes with the next read: -1.5 is shown
  /// as 1.500, and get_value then returns 1.5.
  void allow_negative_values(bool allow);

 private:
  LRESULT on_lost_focus(UINT message, WPARAM wParam, LPARAM lParam, BOOL& handled);
  void update_display();
  void update_model();

  double value_ = 0.0;
  bool allow_negative_ = true;
  CStringA decimal_seperator_;
  int decimal_places_ = 3;
};

#endif
