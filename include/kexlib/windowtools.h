// Window bookkeeping: windows by name, and bulk operations on controls of dialogs.
//
//   combo_list_utils.h   filling combo boxes, reading list views
//   gui_tools.h          drop-down lists, rows of buttons, columns, frames with their controls, check boxes
//   hwnd_table.h         windows by name, once for each MDI child
//   tree_iterators.h     range loops over the items of a tree view
#ifndef KEXLIB_WINDOWTOOLS_H
#define KEXLIB_WINDOWTOOLS_H

#include <kexlib/windowtools/combo_list_utils.h>
#include <kexlib/windowtools/gui_tools.h>
#include <kexlib/windowtools/hwnd_table.h>
#include <kexlib/windowtools/tree_iterators.h>

#endif
