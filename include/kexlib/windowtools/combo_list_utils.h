// Combo box and list view utilities: what dialogs do to their lists again and again.
//
//     kexWTLComboBoxUtils(units).populate({"inch", "millimetre"});
//
//     kexWTLListViewCtrlUtils utils(list);
//     for (int row : utils.get_selection()) remove(utils.get_item_text(row, 0));
//
// The objects keep a reference to the wrapper of the control, which must outlive them. Where the wrapper has no window,
// or one that is destroyed, there is no text and no selection, and nothing is filled.
//
// Threads. For the thread of the control's window.
#ifndef KEXLIB_WINDOWTOOLS_COMBO_LIST_UTILS_H
#define KEXLIB_WINDOWTOOLS_COMBO_LIST_UTILS_H

#include <kexlib/export.h>

#include <atlbase.h>
#include <atlstr.h>

#include <atlapp.h>
#include <atlctrls.h>

#include <vector>

/// Works on a combo box.
class KEXLIB_API kexWTLComboBoxUtils {
 public:
  /// Keeps the reference.
  explicit kexWTLComboBoxUtils(WTL::CComboBoxT<ATL::CWindow>& combo) : combo_(combo) {}

  /// Replaces all items (CB_RESETCONTENT, CB_ADDSTRING). They keep their order, unless the combo box sorts.
  void populate(const std::vector<CStringA>& items);

 private:
  WTL::CComboBoxT<ATL::CWindow>& combo_;
};

/// Works on a list view.
class KEXLIB_API kexWTLListViewCtrlUtils {
 public:
  /// Keeps the reference.
  explicit kexWTLListViewCtrlUtils(WTL::CListViewCtrlT<ATL::CWindow>& list) : list_(list) {}

  /// The whole text of a cell, however long it is (LVM_GETITEMTEXTA, with a buffer of 256 characters that is doubled
  /// until the text fits). Row and column are counted from 0; empty for a cell that there is not. Where memory does not
  /// suffice, as much as was got.
  CStringA get_item_text(int item, int subitem);

  /// The selected rows, from the top (LVM_GETNEXTITEM, LVNI_SELECTED).
  std::vector<int> get_selection();

 private:
  WTL::CListViewCtrlT<ATL::CWindow>& list_;
};

#endif
