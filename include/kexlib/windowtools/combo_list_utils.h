// Combo box and list view utilities: bulk operations on lists.
//
//     kexWTLComboBoxUtils(units).populate({"inch", "millimetre"});
//
//     kexWTLListViewCtrlUtils utils(list);
//     for (int row : utils.get_selection()) remove(utils.get_item_text(row, 0));
//
// The objects keep a reference to the wrapper of the control, which must outlive them. If the wrapper has no window, or
// a destroyed one, the text and the selection are empty and populate does nothing.
//
// Threads. Call on the thread of the control's window.
#ifndef KEXLIB_WINDOWTOOLS_COMBO_LIST_UTILS_H
#define KEXLIB_WINDOWTOOLS_COMBO_LIST_UTILS_H

#include <kexlib/export.h>
#include <kexlib/framework.h>

#include <atlapp.h>
#include <atlctrls.h>

#include <vector>

/// Fills a combo box.
class KEXLIB_API kexWTLComboBoxUtils {
 public:
  /// Keeps the reference.
  kexWTLComboBoxUtils(WTL::CComboBoxT<ATL::CWindow>& combo) : combo_(combo) {}

  /// Replaces all items (CB_RESETCONTENT, CB_ADDSTRING), in the order of the vector unless the combo box sorts.
  void populate(const std::vector<CStringA>& items);

 private:
  WTL::CComboBoxT<ATL::CWindow>& combo_;
};

/// Reads a list view.
class KEXLIB_API kexWTLListViewCtrlUtils {
 public:
  /// Keeps the reference.
  kexWTLListViewCtrlUtils(WTL::CListViewCtrlT<ATL::CWindow>& list) : list_(list) {}

  /// The text of a cell, of any length (LVM_GETITEMTEXTA with a buffer of 256 characters, doubled until the text fits).
  /// Row and column begin with 0; a cell that does not exist is empty. If memory runs out, the text is truncated,
  /// or empty.
  CStringA get_item_text(int item, int subitem);

  /// The indices of the selected rows in ascending order (LVM_GETNEXTITEM, LVNI_SELECTED).
  std::vector<int> get_selection();

 private:
  WTL::CListViewCtrlT<ATL::CWindow>& list_;
};

#endif
