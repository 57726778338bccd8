// Task dialog: a builder of the system's task dialog (TaskDialogIndirect, version 6 of the common controls).
//
//     kexTaskDialog dialog;
//     dialog.set_title("Export");
//     dialog.set_main_instruction("The file already exists.");
//     dialog.set_message("See <a href=\"https://example.com/help\">what replacing means</a>.");
//     const int replace = dialog.add_button("Replace");
//     const int compare = dialog.add_button("Compare");
//     dialog.add_button("Leave it");
//     dialog.add_action(compare, [&](const kexTaskDialogActionContext&) { show_both(); });  // the dialog stays
//     dialog.set_default_button(replace);
//     if (dialog.raise() == replace) write();
//
// Buttons get the identifiers 101, 102 and so on in the order of add_button. A button with actions does not close the
// dialog, and neither Escape nor the close box does: at least one button must have no actions. `raise` writes a warning
// for the debugger if all buttons have actions. Give buttons with actions no access key ("&Compare"): the system
// presses them twice.
//
// Links work in the message. Without a handler the shell opens the target, which may be a program. If a part of the
// message comes from an untrusted source, set a handler or remove "<a" from that part.
//
// Texts are narrow, in the calling thread's code page (CP_THREAD_ACP), and copied; null is the empty text. Out of
// memory, a text throws E_OUTOFMEMORY (AtlThrow), everything else std::bad_alloc.
//
// The program needs no manifest for the common controls: the library's own is active while the dialog is shown, also
// in the actions.
//
// Threads. Use the object on one user-interface thread. Actions run on it, inside `raise`.
#ifndef KEXLIB_DIALOGS_TASK_DIALOG_H
#define KEXLIB_DIALOGS_TASK_DIALOG_H

#include <kexlib/export.h>
#include <kexlib/windows.h>

#include <atlbase.h>

#include <functional>
#include <memory>

class kexTaskDialog;

/// The icon of a dialog. Any other value shows the warning icon.
enum kexTaskDialogIcon : int {
  kexTDIcon_Error = 0,        ///< TD_ERROR_ICON
  kexTDIcon_Warning = 1,      ///< TD_WARNING_ICON
  kexTDIcon_Information = 2,  ///< TD_INFORMATION_ICON
  kexTDIcon_Shield = 3        ///< TD_SHIELD_ICON
};

/// The argument of a button's action.
struct kexTaskDialogActionContext {
  kexTaskDialog* dialog;  ///< the dialog that is shown
  int button_id;          ///< the button that was pressed
};

/// The argument of the hyperlink action.
struct kexTaskDialogHyperlinkActionContext {
  kexTaskDialog* dialog;  ///< the dialog that is shown
  const wchar_t* url;     ///< the link's target; valid during the call
};

/// Builds a task dialog and shows it.
class KEXLIB_API kexTaskDialog {
 public:
  /// Empty texts, no buttons, the warning icon.
  kexTaskDialog();

  kexTaskDialog(const kexTaskDialog&) = delete;
  kexTaskDialog& operator=(const kexTaskDialog&) = delete;

  /// Must not run while the dialog is shown.
  ~kexTaskDialog();

  /// Sets the window's title. If it is empty the system shows the program's name.
  void set_title(const char* text);

  /// Sets the large text; an empty one is omitted.
  void set_main_instruction(const char* text);

  /// Sets the text below, with links in the task dialog's markup: `<a href="target">text</a>`.
  void set_message(const char* text);

  /// Sets the icon. The value is not checked.
  void set_icon(kexTaskDialogIcon icon);

  /// Sets the owner window, which is disabled while the dialog is shown. Null means the main window of this thread's
  /// MFC object (AfxGetMainWnd), if there is one.
  void set_parent(HWND parent);

  /// Appends a button and returns its identifier: 101 for the first. A dialog without buttons has the system's OK.
  int add_button(const char* text);

  /// Sets the button that the Enter key presses. The value is passed to the system, which uses the first button for an
  /// unknown one.
  void set_default_button(int id);

  /// Appends an action to a button's list. The identifier may belong to a button that is added later, or to none. An
  /// empty function throws std::bad_function_call when it is called; see raise.
  ///   id      the button
  ///   action  runs at each press, after the actions added before
  void add_action(int id, std::function<void(const kexTaskDialogActionContext&)> action);

  /// Sets the handler of clicked links; the previous one is destroyed. An empty function means open_url_or_file.
  void set_hyperlink_action(std::function<void(const kexTaskDialogHyperlinkActionContext&)> action);

  /// Opens a target with the shell (ShellExecuteW, "open"); the owner is the main window of this thread's MFC object. A
  /// failure is not reported.
  void open_url_or_file(const wchar_t* target);

  /// Shows the dialog until a button without actions is pressed and returns that button's identifier: IDOK if no button
  /// was added, 0 if the dialog could not be shown. May be called again, also in an action.
  ///
  /// An exception of an action or a handler closes the dialog and unwinds through the system's frames. Whether it
  /// arrives here is unspecified: catch exceptions in the action.
  int raise();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

#endif
