// GUI tools: small things that dialogs do to their controls.
//
//     kexGUITools::fill_combo_box_from_resource_ids(module, combo, ids, 3);
//     kexGUITools::show_contained_controls(m_hWnd, GetDlgItem(IDC_ADVANCED), SW_HIDE);
//
// Errors. None is reported: what has no window, or one that is destroyed, is left alone.
//
// Threads. For the thread of the windows.
#ifndef KEXLIB_WINDOWTOOLS_GUI_TOOLS_H
#define KEXLIB_WINDOWTOOLS_GUI_TOOLS_H

#include <kexlib/export.h>

#include <atlbase.h>

#include <atlapp.h>
#include <atlctrls.h>

#include <vector>

class CDataExchange;

/// A place for the functions; there are no objects of it. All sizes are in pixels.
class KEXLIB_API kexGUITools {
 public:
  /// MFC's DDX_Check for a bool: call it in DoDataExchange. An undetermined box counts as checked.
  static void ddx_check(CDataExchange* dx, int control_id, bool& value);

  /// Replaces a combo box's items by string resources of a module (CB_RESETCONTENT, CB_ADDSTRING); a resource that
  /// there is not makes an empty item. `ids` is a list of `count` identifiers; null for none. Then the list's width and
  /// length are set as resize_dropdown_to_content does it.
  static void fill_combo_box_from_resource_ids(HINSTANCE module, WTL::CComboBoxT<ATL::CWindow>& combo,
                                               unsigned int* const ids, int count);

  /// The least width of a combo box's list: what its border takes (2 * SM_CXEDGE + 2), and the scroll bar
  /// (SM_CXVSCROLL) where it has more than ten items. The texts of the items do not count.
  static int get_dropdown_width(WTL::CComboBoxT<ATL::CWindow>& combo);

  /// Makes the list as wide as asked, but not narrower than the combo box (CB_SETDROPPEDWIDTH).
  static void set_dropdown_width(WTL::CComboBoxT<ATL::CWindow>& combo, int width);

  /// Makes the list get_dropdown_width wide, as set_dropdown_width does; without items it forgets the width
  /// (CB_SETDROPPEDWIDTH 0).
  static void resize_dropdown_width(WTL::CComboBoxT<ATL::CWindow>& combo);

  /// Makes the list as long as its items, ten at most (SetWindowPos, with the field, those items, and 4 * SM_CYEDGE as
  /// the height); without items it stays as it is.
  static void resize_dropdown_length(WTL::CComboBoxT<ATL::CWindow>& combo);

  /// resize_dropdown_width, then resize_dropdown_length.
  static void resize_dropdown_to_content(WTL::CComboBoxT<ATL::CWindow>& combo);

  /// Lays the visible buttons out from left to right, in the order of the vector, `gap` between them (SetWindowPos).
  /// The first is put at `x_origin` of its parent, all at `y_shift`, less what a button has of a border above its
  /// client area. Hidden buttons stay where they are and take no room; so do null pointers.
  static void rearrange_buttons_on_toolbar(const std::vector<ATL::CWindow*>& buttons, int x_origin, int y_shift,
                                           int gap);

  /// Adds LVCFMT_ bits to the format of a list view's column, counted from 0 (LVM_GETCOLUMNA, LVM_SETCOLUMNA). Bits are
  /// added, never removed.
  static void set_column_fmt(WTL::CListViewCtrlT<ATL::CWindow>& list, int column, int fmt);

  /// Shows or hides (ShowWindow) each descendant of `parent` whose window lies wholly inside that of `frame`: the frame
  /// itself too, if it is a descendant. Nothing where one of the two is no window.
  static void show_contained_controls(HWND parent, HWND frame, int show_command);

 private:
  kexGUITools() = default;
};

#endif
