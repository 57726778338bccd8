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
// The user types what he likes. When the keyboard focus leaves, the text is read (kexNumericFormatting::getValue) and
// written again as the number that it stands for, so that "2,5x" becomes "2,500" with three places; text that is no
// number becomes 0. The parent hears of it what an edit control tells by itself (EN_UPDATE, EN_CHANGE, EN_KILLFOCUS),
// and nothing else.
//
// Windows. The object does not destroy its window; the window goes first, with its parent. Without a window the setters
// only store, and the first of them that finds one shows the value.
//
// Errors. None is reported. Running out of memory throws MFC's memory exception.
//
// Threads. For the thread of the window.
#ifndef KEXLIB_CONTROLS_NUMERIC_EDIT_BOX_H
#define KEXLIB_CONTROLS_NUMERIC_EDIT_BOX_H

#include <kexlib/controls/numeric_formatting.h>

/// The edit box. A copy has the same numbers and names the same window, whose messages it does not get.
class KEXLIB_API kexNumericEditBox
    : public ATL::CWindowImpl<kexNumericEditBox, WTL::CEditT<ATL::CWindow>,
                              ATL::CWinTraits<WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, 0>> {
 public:
  /// No window; 0 with three places, negative numbers allowed, and the decimal separator that the user has now.
  kexNumericEditBox();

  /// WM_KILLFOCUS reads and shows the number, and goes on to the edit control; nothing else is looked at. Always FALSE.
  BOOL ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result,
                            DWORD map = 0) override;

  /// Leaves the window alone.
  ~kexNumericEditBox() override;

  /// Makes an edit control with a sunken border and the identifier 0 in the window that the object holds, with the font
  /// of `font_source` (WM_GETFONT), and shows the number. The object holds the new control then, or none where it could
  /// not be made. It has no size: move it.
  ///
  ///     length.Attach(host);      // just before: a setter would take the host for the edit control
  ///     length.Create(host);
  ///     length.MoveWindow(10, 10, 80, 20);
  void Create(ATL::CWindow& font_source);

  /// The number. If there is a window it is read from the text first, also while the user is still typing; the text
  /// stays as it is.
  double get_value();

  /// Sets the number, and shows it.
  void set_value(double number);

  /// How many digits are shown behind the separator.
  int get_decimal_places() const;

  /// Sets that; below a million. The text is written again, from the number of the last read.
  void set_decimal_places(int places);

  /// Whether a minus sign is kept. The text is written again at once, while the number stays what it was until the next
  /// read: -1.5 is shown as 1.500, and get_value makes it 1.5.
  void allow_negative_values(bool allow);

 private:
  LRESULT on_lost_focus(UINT message, WPARAM wParam, LPARAM lParam, BOOL& handled);
  void update_display();
  void update_model();

  double value = 0.0;
  bool allow_negative = true;
  CStringA decimal_seperator;
  int decimal_places = 3;
};

#endif
