// HWND table: windows by name, for the whole process.
//
//     kexHWNDTable& table = kexHWNDTable::singleton();
//     table.reg_window(m_hWnd, "outline", IDD_OUTLINE);         // once the window exists
//     ...
//     if (HWND outline = table.get_handle("outline")) ...       // anywhere else
//
// A name belongs to one window; in a multiple-document interface to one window in each child frame, and get_handle
// returns the one in the active frame. A window is inside an MDI client if one of its parents (GetParent) has the class
// "MDIClient", compared with case. An owned dialog is outside, as its owner, the main window, is.
//
// Register windows inside a child frame, not the frame: get_handle looks for descendants of the active frame and never
// returns the frame itself.
//
// Entries are removed when their windows are destroyed. For that the first registration installs a hook on its thread
// (SetWindowsHookExA, WH_CALLWNDPROC), one for the process. It does not see windows of other threads: unregister them,
// or their names stay taken, and Windows may reuse their handles. The hook ends with its thread, which the table does
// not detect: call delete_singleton and register again. Hook and table are removed when kexlib.dll is unloaded.
//
// Names are compared byte by byte; a null name is the empty name. Handles are not checked: a handle without a window
// can be registered and is never found by name.
//
// Speed. The time of a look-up does not depend on the number of windows. Only windows of that name are queried.
//
// Errors. None is reported. Out of memory throws std::bad_alloc and does not change the table.
//
// Threads. No lock. Use the table on the one thread whose windows are registered.
#ifndef KEXLIB_WINDOWTOOLS_HWND_TABLE_H
#define KEXLIB_WINDOWTOOLS_HWND_TABLE_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

#include <bzbase/copy.h>
#include <bzbase/singleton.h>

/// The table. `singleton` returns the only one.
class KEXLIB_API kexHWNDTable {
 public:
  /// The table, created by the first call.
  static kexHWNDTable& singleton();

  /// With bz_singleton_get, the table. Any other value calls `delete_singleton` and returns null.
  static kexHWNDTable* access_singleton(bzSingletonAccessAction action);

  /// Removes the hook (UnhookWindowsHookEx) and destroys the table, if they exist. References to the table and names
  /// that it returned become invalid. The next `singleton` creates a new table.
  static void delete_singleton();

  /// Registers a window, unless check_name reports a clash. A registered window keeps its name and identifier:
  /// unregister it first. Then installs the hook if there is none, unless the window already has this name; if the
  /// system refuses the hook, the next registration tries again.
  ///   window  the window
  ///   name    copied
  ///   idd     identifier of the dialog resource; not interpreted
  void reg_window(HWND window, const char* name, unsigned long idd);

  /// Removes a window's entry, if any.
  void unreg_window(HWND window);

  /// The window of a name, or null. Only existing, visible windows are returned (IsWindow, IsWindowVisible), and inside
  /// an MDI client only descendants of its active child. The client is queried by SendMessage (WM_MDIGETACTIVE), which
  /// waits for its thread. Of several windows the first registered one is returned.
  HWND get_handle(const char* name) const;

  /// The name of a registered window, or null. It is valid as long as the entry exists.
  const char* get_name(HWND window) const;

  /// The identifier of a registered window, or 0.
  int get_idd(HWND window) const;

  /// 1 if the name is taken for this window, else 0. Outside an MDI client any window of that name takes it, in an MDI
  /// child frame a descendant of that frame.
  int check_name(const char* name, HWND window);

  kexHWNDTable& operator=(const kexHWNDTable&) = delete;

 protected:
  /// Empty.
  kexHWNDTable();
  /// Copies the entries.
  kexHWNDTable(const kexHWNDTable& other);
  /// As the copy constructor.
  kexHWNDTable(bzCopy, const kexHWNDTable& other);
  /// Destroys the entries. Does not remove the hook.
  ~kexHWNDTable();

 private:
  struct Entries;
  Entries* entries_;
};

#endif
