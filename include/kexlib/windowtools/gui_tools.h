// GUI tools: static functions for the controls of dialogs.
//
//     kexGUITools::fill_combo_box_from_resource_ids(module, combo, ids, 3);
//     kexGUITools::show_contained_controls(m_hWnd, GetDlgItem(IDC_ADVANCED), SW_HIDE);
//
// Errors. None is reported. A control without a window, or with a destroyed one, is ignored.
//
// Threads. Call on the thread of the windows.
#ifndef KEXLIB_WINDOWTOOLS_GUI_TOOLS_H
#define KEXLIB_WINDOWTOOLS_GUI_TOOLS_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

#include <atlbase.h>
#include <atlapp.h>
#include <atlctrls.h>

#include <vector>

class CDataExchange;

/// A class of static functions without objects. All sizes are in pixels.
class KEXLIB_API kexGUITools {
 public:
  /// DDX_Check for a bool; call it in DoDataExchange. An indeterminate check box counts as checked.
  ///   dx          the exchange and its direction
  ///   control_id  identifier of the check box
  ///   value       shown or stored
  static void ddx_check(CDataExchange* dx, int control_id, bool& value);

  /// Replaces the items of a combo box by string resources (CB_RESETCONTENT, CB_ADDSTRING), then calls
  /// resize_dropdown_to_content.
  ///   module  has the resources
  ///   combo   the combo box
  ///   ids     identifiers of the strings; a missing resource adds an empty item. Null adds none
  ///   count   number of identifiers
  static void fill_combo_box_from_resource_ids(HINSTANCE module, WTL::CComboBoxT<ATL::CWindow>& combo,
                                               unsigned int* const ids, int count);

  /// The width of the list's borders, 2 * SM_CXEDGE + 2, plus SM_CXVSCROLL if it has more than ten items. Kept for
  /// compatibility: callers see that the texts of the items are not measured.
  static int get_dropdown_width(WTL::CComboBoxT<ATL::CWindow>& combo);

  /// Sets the width of the list (CB_SETDROPPEDWIDTH), at least that of the combo box.
  static void set_dropdown_width(WTL::CComboBoxT<ATL::CWindow>& combo, int width);

  /// Calls set_dropdown_width with get_dropdown_width. Without items it resets the width (CB_SETDROPPEDWIDTH 0).
  static void resize_dropdown_width(WTL::CComboBoxT<ATL::CWindow>& combo);

  /// Sets the height of the combo box with its list (SetWindowPos): the field, at most ten items, and 4 * SM_CYEDGE.
  /// Without items it does nothing.
  static void resize_dropdown_length(WTL::CComboBoxT<ATL::CWindow>& combo);

  /// Calls resize_dropdown_width, then resize_dropdown_length.
  static void resize_dropdown_to_content(WTL::CComboBoxT<ATL::CWindow>& combo);

  /// Lays out the visible buttons from left to right (SetWindowPos). Hidden buttons keep their position and leave no
  /// gap.
  ///   buttons   in this order; null pointers are ignored
  ///   x_origin  left edge of the first visible button in its parent
  ///   y_shift   top edge in the parent, less the height of the button's border above its client area
  ///   gap       between two buttons
  static void rearrange_buttons_on_toolbar(const std::vector<ATL::CWindow*>& buttons, int x_origin, int y_shift,
                                           int gap);

  /// Adds bits to the format of a list view's column (LVM_GETCOLUMNA, LVM_SETCOLUMNA). Bits are never removed.
  ///   list    the list view
  ///   column  index from 0
  ///   fmt     LVCFMT_ bits
  static void set_column_fmt(WTL::CListViewCtrlT<ATL::CWindow>& list, int column, int fmt);

  /// Calls ShowWindow for each descendant of a window that lies wholly inside a frame.
  ///   parent        the window whose descendants are enumerated
  ///   frame         the frame, which is shown or hidden itself if it is a descendant
  ///   show_command  SW_ value
  /// Ignored if `parent` or `frame` is not a window.
  static void show_contained_controls(HWND parent, HWND frame, int show_command);

 private:
  kexGUITools() = default;
};

#endif
