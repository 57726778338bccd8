// Task dialog: a builder of the system's task dialog (TaskDialogIndirect, version 6 of the common controls).
//
//     kexTaskDialog dialog;
//     dialog.set_title("Export");
//     dialog.set_main_instruction("The file is there already.");
//     dialog.set_message("See <a href=\"https://example.com/help\">what replacing means</a>.");
//     const int replace = dialog.add_button("Replace");
//     const int compare = dialog.add_button("Compare");
//     dialog.add_button("Leave it");
//     dialog.add_action(compare, [&](const kexTaskDialogActionContext&) { show_both(); });  // the dialog stays
//     dialog.set_default_button(replace);
//     if (dialog.raise() == replace) write();
//
// Buttons are numbered as they are added: 101, 102 and so on. One that has actions does not close the dialog, so leave
// one without: neither Escape nor the close button ends a dialog whose every button acts. `raise` tells the debugger
// when it is given such a one. An access key ("&Compare") makes the system press a button that stays twice: give none
// to buttons with actions.
//
// Links work in the message. Without a handler the shell opens what they name, and that may be a program: where a part
// of the message comes from elsewhere, set a handler, or leave no "<a" in that part.
//
// Texts are narrow, in the calling thread's code page (CP_THREAD_ACP), and copied; null is the empty text. A text that
// there is no memory for throws E_OUTOFMEMORY (AtlThrow), anything else std::bad_alloc.
//
// The program needs no manifest for the common controls: the library brings its own, which holds while the dialog is
// there, in the actions too.
//
// Threads. For one user-interface thread. Actions run on it, inside `raise`.
#ifndef KEXLIB_DIALOGS_TASK_DIALOG_H
#define KEXLIB_DIALOGS_TASK_DIALOG_H

#include <atlbase.h>

#include <kexlib/export.h>

#include <functional>
#include <memory>

class kexTaskDialog;

/// The icon of a dialog; any other value is shown as a warning.
enum kexTaskDialogIcon : int {
  kexTDIcon_Error = 0,        ///< TD_ERROR_ICON
  kexTDIcon_Warning = 1,      ///< TD_WARNING_ICON
  kexTDIcon_Information = 2,  ///< TD_INFORMATION_ICON
  kexTDIcon_Shield = 3        ///< TD_SHIELD_ICON
};

/// What an action of a button is told.
struct kexTaskDialogActionContext {
  kexTaskDialog* dialog;  ///< the one that is shown
  int button_id;          ///< the button that was pressed
};

/// What the handler of links is told.
struct kexTaskDialogHyperlinkActionContext {
  kexTaskDialog* dialog;  ///< the one that is shown
  const wchar_t* url;     ///< what the link names; valid during the call
};

/// Holds what a task dialog is to show, and shows it.
class KEXLIB_API kexTaskDialog {
 public:
  /// No texts, no buttons, the warning icon.
  kexTaskDialog();

  kexTaskDialog(const kexTaskDialog&) = delete;
  kexTaskDialog& operator=(const kexTaskDialog&) = delete;

  /// Not to be called while the dialog is shown.
  ~kexTaskDialog();

  /// The window's title. The system puts the program's name where it is empty.
  void set_title(const char* text);

  /// The large text. Where it is empty there is none.
  void set_main_instruction(const char* text);

  /// The text below, with links in the task dialog's own markup: <a href="target">text</a>.
  void set_message(const char* text);

  /// The icon, unchecked.
  void set_icon(kexTaskDialogIcon icon);

  /// The window that the dialog belongs to and disables. Null stands for the main window of this thread's MFC object
  /// (AfxGetMainWnd), if there is one.
  void set_parent(HWND parent);

  /// Adds a button behind the others and returns its identifier: 101 for the first. Without any button the dialog has
  /// the system's OK.
  int add_button(const char* text);

  /// The button that the Enter key presses. Any value goes on to the system, which takes the first button for one that
  /// it does not know.
  void set_default_button(int id);

  /// Adds an action to a button, behind those that it has. The identifier may be of a button that is added later, or
  /// never. An empty function throws std::bad_function_call when its turn comes; see raise for exceptions.
  void add_action(int id, std::function<void(const kexTaskDialogActionContext&)> action);

  /// What happens when a link is clicked, instead of what was set before. An empty function stands for
  /// open_url_or_file.
  void set_hyperlink_action(std::function<void(const kexTaskDialogHyperlinkActionContext&)> action);

  /// Has the shell open a target (ShellExecuteW, "open"), on behalf of the main window of this thread's MFC object.
  /// That it cannot is not told.
  void open_url_or_file(const wchar_t* target);

  /// Shows the dialog until a button without actions is pressed, and returns that button's identifier: IDOK where no
  /// button was added, 0 where the dialog could not be shown. May be called again, in an action too.
  ///
  /// An exception of an action or a handler closes the dialog and goes on through the system's frames, which is for the
  /// system to judge: at best it arrives here. Better catch in the action what may be thrown.
  int raise();

 private:
  struct State;
  std::unique_ptr<State> m_state;
};

#endif
