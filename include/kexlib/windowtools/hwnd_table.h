// HWND table: windows by name, for the whole process.
//
//     kexHWNDTable& table = kexHWNDTable::singleton();
//     table.reg_window(m_hWnd, "outline", IDD_OUTLINE);         // when the window is there
//     ...
//     if (HWND outline = table.get_handle("outline")) ...       // anywhere else
//
// A name stands for one window, but in a multiple-document interface for one in each child frame: get_handle gives the
// one in the frame that is active. What is inside an MDI client is found by the parents (GetParent) and their window
// class, "MDIClient" letter for letter; a client of another class is none. An owned dialog is outside, as its owner,
// the main window, is.
//
// Register what lies in a child frame, not the frame: get_handle looks for descendants of the active frame and never
// gives the frame itself.
//
// Entries go by themselves when their windows are destroyed. The first registration installs a hook for that
// (SetWindowsHookExA, WH_CALLWNDPROC) on the thread that makes it, one for the process. Windows of other threads are
// not seen by it: unregister them, or their names stay taken, and Windows may give their handles to other windows. The
// hook goes with its thread, and the table does not notice; delete_singleton and a new registration make a new one.
// Hook and table are removed when kexlib.dll is unloaded.
//
// Names are compared byte by byte; a null name is the empty one. Handles are not checked: what is no window may be
// registered, and is never found by its name.
//
// Speed. A look-up takes the same time however many windows there are, and asks the system about windows of the name
// only.
//
// Errors. None is reported. Where memory is short, std::bad_alloc, with the table as it was.
//
// Threads. No lock: for the one thread whose windows are registered.
#ifndef KEXLIB_WINDOWTOOLS_HWND_TABLE_H
#define KEXLIB_WINDOWTOOLS_HWND_TABLE_H

#include <windows.h>

#include <bzbase/copy.h>
#include <bzbase/singleton.h>
#include <kexlib/export.h>

/// The table. There is one, which `singleton` gives.
class KEXLIB_API kexHWNDTable {
 public:
  /// The table, made with the first call.
  static kexHWNDTable& singleton();

  /// With bz_singleton_get the table, as `singleton` gives it; with any other value deletes it as `delete_singleton`
  /// does, and gives null.
  static kexHWNDTable* access_singleton(bzSingletonAccessAction action);

  /// Removes the hook (UnhookWindowsHookEx) and destroys the table, if they are there. References to the table and
  /// names that it gave are no longer valid. A new table may be made at any time.
  static void delete_singleton();

  /// Registers a window under a name, of which a copy is kept, with the identifier of the dialog resource that it was
  /// made from (any number will do). Nothing is registered where check_name tells of a clash. A window that is
  /// registered already keeps its name and identifier: unregister it first. The hook is installed if there is none,
  /// unless the window has this very name already; where the system refuses it, the next registration tries again.
  void reg_window(HWND window, const char* name, unsigned long idd);

  /// Removes a window's entry; does nothing where there is none.
  void unreg_window(HWND window);

  /// The window of a name, or null. Only windows that there are and that are visible (IsWindow, IsWindowVisible); of
  /// those in an MDI client only descendants of its active child, for which the client is asked (WM_MDIGETACTIVE, sent:
  /// it waits for the client's thread). Of several, the one that was registered first.
  HWND get_handle(const char* name) const;

  /// The name under which a window is registered, or null. It is there as long as the entry.
  const char* get_name(HWND window) const;

  /// The identifier with which a window was registered, or 0 where it is not.
  int get_idd(HWND window) const;

  /// 1 if a window could not be registered under a name, because the name is taken; else 0. For a window outside an MDI
  /// client a name is taken by any other window, for one in an MDI child frame by the descendants of that frame.
  int check_name(const char* name, HWND window);

  kexHWNDTable& operator=(const kexHWNDTable&) = delete;

 protected:
  /// Empty.
  kexHWNDTable();
  /// With the same entries.
  kexHWNDTable(const kexHWNDTable& other);
  /// As the copy constructor.
  kexHWNDTable(bzCopy, const kexHWNDTable& other);
  /// Forgets the entries; the hook is none of its business.
  ~kexHWNDTable();

 private:
  struct Entries;
  Entries* entries_;
};

#endif
