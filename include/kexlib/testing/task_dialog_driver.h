// A driver of task dialogs: it reads them and presses their buttons while the call that shows them waits. It is for the
// system's TaskDialogIndirect, and so for kexTaskDialog.
//
//     TaskDialogDriver user;
//     user.look([](const ShownTaskDialog& shown) {
//       EXPECT_EQ(shown.title(), L"Export");
//       EXPECT_EQ(shown.texts(), (std::vector<std::wstring>{L"The file already exists.", L"See what replacing
//       means."}));
//     });
//     user.press(L"Compare");                       // whose action shows both files
//     user.wait_for("both files", [&] { return both_are_shown; });
//     user.press(L"Replace");
//     EXPECT_EQ(ask(frame), replace);
//     EXPECT_EQ(user.problem(), "");
//
// The steps are done in their order, each as soon as it is possible: press(L"Replace") waits for an enabled button of
// that text. The time limit, and what happens then, are those of DialogDriver (kexlib/testing/dialog_driver.h).
//
// Texts are without the marks of access keys ("&") and of links ("<a>").
//
// What the system's task dialog contains is read from its windows, and where it draws texts itself, by the interfaces
// for assistive technology (oleacc.dll). Command links are found by their first line.
//
// Threads. As DialogDriver: the thread that shows the dialog.
#ifndef KEXLIB_TESTING_TASK_DIALOG_DRIVER_H
#define KEXLIB_TESTING_TASK_DIALOG_DRIVER_H

#include <kexlib/testing/dialog_driver.h>
#include <kexlib/windows.h>

#include <windows.h>
#include <commctrl.h>
#include <oaidl.h>
#include <objbase.h>
#include <oleacc.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kexlib::testing {

// What ShownTaskDialog calls.
namespace detail {

// The first line, without marks of access keys.
inline std::wstring label_of(const std::wstring& text) {
  std::wstring label;
  for (std::size_t i = 0; i < text.size() && text[i] != L'\r' && text[i] != L'\n'; ++i) {
    if (text[i] == L'&' && ++i == text.size()) break;
    label += text[i];
  }
  return label;
}

// Without the marks of links.
inline std::wstring without_links(const std::wstring& text) {
  std::wstring plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool is_mark = text.compare(i, 3, L"<a ") == 0 || text.compare(i, 3, L"<A ") == 0 ||
                         text.compare(i, 3, L"<a>") == 0 || text.compare(i, 3, L"<A>") == 0 ||
                         text.compare(i, 4, L"</a>") == 0 || text.compare(i, 4, L"</A>") == 0;
    const std::size_t end = is_mark ? text.find(L'>', i) : std::wstring::npos;
    if (end == std::wstring::npos)
      plain += text[i];
    else
      i = end;
  }
  return plain;
}

inline BOOL CALLBACK add_window(HWND window, LPARAM found) {
  reinterpret_cast<std::vector<HWND>*>(found)->push_back(window);
  return TRUE;
}

// The visible windows of a class in a dialog, however deep, from top to bottom and from left to right.
inline std::vector<HWND> windows_in(HWND dialog, const char* class_name) {
  std::vector<HWND> all;
  EnumChildWindows(dialog, add_window, reinterpret_cast<LPARAM>(&all));
  std::vector<std::pair<std::pair<LONG, LONG>, HWND>> placed;
  for (const HWND window : all) {
    if (!IsWindowVisible(window) || !has_class(window, class_name)) continue;
    RECT place{};
    GetWindowRect(window, &place);
    placed.push_back({{place.top, place.left}, window});
  }
  std::stable_sort(placed.begin(), placed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<HWND> found;
  for (const auto& one : placed) found.push_back(one.second);
  return found;
}

// A function of a DLL of the system that programs need not link; null if there is none.
template <typename Function>
Function system_function(const char* library, const char* name) {
  const HMODULE module = LoadLibraryExA(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  return module ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name))) : nullptr;
}

constexpr GUID iid_accessible = {0x618736e0, 0x3c3d, 0x11cf, {0x81, 0x0c, 0x00, 0xaa, 0x00, 0x38, 0x9b, 0x71}};

// Adds the names of the static texts in what an accessible object contains.
inline void add_accessible_texts(IAccessible* object, std::vector<std::wstring>& texts, int depth = 0) {
  const auto children_of = system_function<decltype(&AccessibleChildren)>("oleacc.dll", "AccessibleChildren");
  const auto free_text = system_function<decltype(&SysFreeString)>("oleaut32.dll", "SysFreeString");
  LONG count = 0;
  if (!children_of || !free_text || depth > 8 || object->get_accChildCount(&count) != S_OK || count <= 0) return;
  std::vector<VARIANT> children(static_cast<std::size_t>(count));
  if (FAILED(children_of(object, 0, count, children.data(), &count))) return;
  children.resize(static_cast<std::size_t>(count));
  for (const VARIANT& child : children) {
    IAccessible* inner = nullptr;  // null: one without an object, which its parent answers for
    if (child.vt == VT_DISPATCH && child.pdispVal) {
      child.pdispVal->QueryInterface(iid_accessible, reinterpret_cast<void**>(&inner));
      child.pdispVal->Release();
    }
    if (!inner && child.vt != VT_I4) continue;
    IAccessible* const one = inner ? inner : object;
    VARIANT self{}, role{};
    self.vt = VT_I4;
    self.lVal = inner ? CHILDID_SELF : child.lVal;
    BSTR name = nullptr;
    if (one->get_accRole(self, &role) == S_OK && role.vt == VT_I4 && role.lVal == ROLE_SYSTEM_STATICTEXT &&
        one->get_accName(self, &name) == S_OK && name) {
      if (*name) texts.emplace_back(name);
      free_text(name);
    } else if (inner) {
      add_accessible_texts(inner, texts, depth + 1);
    }
    if (inner) inner->Release();
  }
}

// The static texts of a window, as a screen reader reads them.
inline std::vector<std::wstring> accessible_texts(HWND window) {
  std::vector<std::wstring> texts;
  const auto object_of =
      system_function<decltype(&AccessibleObjectFromWindow)>("oleacc.dll", "AccessibleObjectFromWindow");
  IAccessible* object = nullptr;
  if (object_of && SUCCEEDED(object_of(window, static_cast<DWORD>(OBJID_CLIENT), iid_accessible,
                                       reinterpret_cast<void**>(&object)))) {
    add_accessible_texts(object, texts);
    object->Release();
  }
  return texts;
}

}  // namespace detail

/// A task dialog that is shown. What is pressed takes effect when its thread dispatches messages again.
class ShownTaskDialog {
 public:
  /// The dialog with this window.
  explicit ShownTaskDialog(HWND window) : window_(window) {}

  /// The window.
  HWND window() const { return window_; }

  /// The title.
  std::wstring title() const { return window_text(window_); }

  /// The texts that are no button's, from top to bottom: the main instruction, the content, the footer and so on.
  std::vector<std::wstring> texts() const {
    std::vector<std::pair<LONG, std::wstring>> placed;
    for (const char* const name : {"Static", "SysLink"})
      for (const HWND window : detail::windows_in(window_, name)) {
        RECT place{};
        GetWindowRect(window, &place);
        if (const std::wstring text = detail::without_links(window_text(window)); !text.empty())
          placed.emplace_back(place.top, text);
      }
    std::stable_sort(placed.begin(), placed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::wstring> found;
    for (const auto& one : placed) found.push_back(one.second);
    const bool draws_itself = FindWindowExA(window_, nullptr, "DirectUIHWND", nullptr) != nullptr;
    return draws_itself ? detail::accessible_texts(window_) : found;
  }

  /// The texts of its buttons, from top to bottom and from left to right: radio buttons, the check box, command links
  /// and push buttons.
  std::vector<std::wstring> buttons() const {
    std::vector<std::wstring> found;
    for (const HWND button : detail::windows_in(window_, "Button"))
      found.push_back(detail::label_of(window_text(button)));
    return found;
  }

  /// The button of this text; null if there is none that is visible.
  HWND find_button(const std::wstring& text) const {
    for (const HWND button : detail::windows_in(window_, "Button"))
      if (detail::label_of(window_text(button)) == text) return button;
    return nullptr;
  }

  /// Whether there is a button of this text that can be pressed.
  bool is_enabled(const std::wstring& text) const {
    const HWND button = find_button(text);
    return button && IsWindowEnabled(button);
  }

  /// Whether the radio button or check box of this text is set.
  bool is_checked(const std::wstring& text) const {
    const HWND button = find_button(text);
    return button && SendMessageA(button, BM_GETCHECK, 0, 0) == BST_CHECKED;
  }

  /// Presses the button of this text, of whatever kind (BM_CLICK). False if it cannot be pressed now.
  bool press(const std::wstring& text) const {
    if (!is_enabled(text)) return false;
    // A button in an inactive dialog may ignore the message.
    if (GetWindowThreadProcessId(window_, nullptr) == GetCurrentThreadId()) SetActiveWindow(window_);
    return PostMessageA(find_button(text), BM_CLICK, 0, 0) != 0;
  }

  /// Presses the button or command link with this identifier (TDM_CLICK_BUTTON). With an identifier that no button has,
  /// the system closes the dialog and returns that.
  bool press(int id) const { return PostMessageA(window_, TDM_CLICK_BUTTON, static_cast<WPARAM>(id), 0) != 0; }

  /// Presses the radio button with this identifier (TDM_CLICK_RADIO_BUTTON).
  bool choose(int id) const { return PostMessageA(window_, TDM_CLICK_RADIO_BUTTON, static_cast<WPARAM>(id), 0) != 0; }

  /// Clicks a link: `number` counts those of the dialog, from 0 and from top to bottom. False if there is no such link.
  bool click_link(int number = 0) const {
    for (const HWND text : detail::windows_in(window_, "SysLink")) {
      NMLINK notification{};
      notification.item.mask = LIF_ITEMINDEX | LIF_URL | LIF_ITEMID;
      int& index = notification.item.iLink;
      for (; SendMessageW(text, LM_GETITEM, 0, reinterpret_cast<LPARAM>(&notification.item)); ++index) {
        if (number-- != 0) continue;
        notification.hdr.hwndFrom = text;
        notification.hdr.idFrom = static_cast<UINT_PTR>(GetDlgCtrlID(text));
        notification.hdr.code = static_cast<UINT>(NM_CLICK);
        SendMessageW(GetParent(text), WM_NOTIFY, notification.hdr.idFrom, reinterpret_cast<LPARAM>(&notification));
        return true;
      }
    }
    return false;
  }

  /// Presses the close box (WM_CLOSE), which is what Escape does too. A dialog that allows no cancelling stays.
  bool cancel() const { return PostMessageA(window_, WM_CLOSE, 0, 0) != 0; }

 private:
  HWND window_;
};

/// Does steps on the task dialogs that its thread shows.
class TaskDialogDriver : public DialogDriver {
 public:
  using DialogDriver::DialogDriver;

  /// Lets the test read the dialog.
  void look(std::function<void(const ShownTaskDialog&)> function) {
    add("look", [function = std::move(function)](HWND dialog) { return function(ShownTaskDialog(dialog)), true; });
  }

  /// Waits until this is true; `what` says what.
  void wait_for(std::string what, std::function<bool()> happened) {
    add("wait for " + std::move(what), [happened = std::move(happened)](HWND) { return happened(); });
  }

  /// Waits for a dialog with this title.
  void wait_for_title(const std::wstring& title) {
    add("wait for the dialog \"" + detail::narrow(title) + "\"",
        [title](HWND dialog) { return ShownTaskDialog(dialog).title() == title; });
  }

  /// Presses the button, radio button, check box or command link of this text, once it is enabled.
  void press(const std::wstring& text) {
    add("press \"" + detail::narrow(text) + "\"", [text](HWND dialog) { return ShownTaskDialog(dialog).press(text); });
  }

  /// Presses the button or command link with this identifier: see ShownTaskDialog::press.
  void press(int id) {
    add("press button " + std::to_string(id), [id](HWND dialog) { return ShownTaskDialog(dialog).press(id); });
  }

  /// Presses the radio button with this identifier.
  void choose(int id) {
    add("choose " + std::to_string(id), [id](HWND dialog) { return ShownTaskDialog(dialog).choose(id); });
  }

  /// Clicks a link, once there is one: `number` counts from 0.
  void click_link(int number = 0) {
    add("click link " + std::to_string(number),
        [number](HWND dialog) { return ShownTaskDialog(dialog).click_link(number); });
  }

  /// Presses the close box.
  void cancel() {
    add("cancel", [](HWND dialog) { return ShownTaskDialog(dialog).cancel(); });
  }
};

}  // namespace kexlib::testing

#endif
