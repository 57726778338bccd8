#include <kexlib/framework.h>

#include <atlapp.h>
#include <atlctrls.h>

#include <gallery/frame.h>
#include <gallery/page.h>
#include <gallery/screen_picture.h>
#include <gallery/tour.h>
#include <gallery/user_input.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <stdexcept>

namespace gallery {

namespace {

constexpr int patience = 20'000;  // milliseconds

// Ends the tour: its next steps depend on the missing event.
class Stuck : public std::runtime_error {
  using runtime_error::runtime_error;
};

// The gallery's own thread may be busy or waiting for the user.
LRESULT ask(HWND window, UINT message, WPARAM wide = 0, LPARAM longer = 0) {
  DWORD_PTR result = 0;
  SendMessageTimeoutA(window, message, wide, longer, SMTO_ABORTIFHUNG, patience, &result);
  return static_cast<LRESULT>(result);
}

POINT middle_of(HWND window) {
  RECT place;
  GetWindowRect(window, &place);
  return {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
}

void send_key(WORD key, DWORD flags) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = key;
  input.ki.wScan = static_cast<WORD>(MapVirtualKeyA(key, MAPVK_VK_TO_VSC));
  input.ki.dwFlags = flags;
  SendInput(1, &input, sizeof input);
}

}  // namespace

bool Tour::run(const std::string& part_of_title, const std::string& family) {
  const auto& all = pages();
  try {
    for (size_t i = 0; i < all.size(); ++i) {
      if (!std::strstr(all[i].title, part_of_title.c_str()) || !(family.empty() || family == all[i].family)) continue;
      const int checks_before = checks_;
      std::printf("%2zu/%zu  %s: %s", i + 1, all.size(), all[i].family, all[i].title);
      std::fflush(stdout);
      go_through(all[i]);
      std::printf(", %d checks\n", checks_ - checks_before);
      std::fflush(stdout);
    }
    if (checks_ == 0) failures_.push_back("there is a page with \"" + part_of_title + "\" in its title");
  } catch (const Stuck& stuck) {
    failures_.emplace_back(stuck.what());
    std::printf(", stuck\n");
    const RECT screen{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    if (save_screen_picture(screen, "stuck.png")) tell_of_file("stuck.png");
  }
  std::printf("\nThe tour made:\n");
  for (const std::string& file : files_) std::printf("  %s\n", file.c_str());
  std::printf("\n%d checks, %zu failed\n", checks_, failures_.size());
  for (const std::string& failure : failures_) std::printf("  FAILED  %s\n", failure.c_str());
  std::fflush(stdout);
  return failures_.empty();
}

void Tour::go_through(const PageEntry& entry) {
  open(entry);
  entry.tour(*this);
}

// Finds the page in the tree at the left, and double-clicks on it.
void Tour::open(const PageEntry& entry) {
  const HWND tree = GetDlgItem(frame_, Frame::id_tree);
  page_ = nullptr;
  const auto find = [&](HTREEITEM family) {
    for (auto item =
             reinterpret_cast<HTREEITEM>(ask(tree, TVM_GETNEXTITEM, TVGN_CHILD, reinterpret_cast<LPARAM>(family)));
         item;
         item = reinterpret_cast<HTREEITEM>(ask(tree, TVM_GETNEXTITEM, TVGN_NEXT, reinterpret_cast<LPARAM>(item)))) {
      TVITEMA description{};
      description.mask = TVIF_PARAM;
      description.hItem = item;
      ask(tree, TVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&description));
      if (reinterpret_cast<const PageEntry*>(description.lParam) == &entry) return item;
    }
    return HTREEITEM{};
  };
  for (auto family = reinterpret_cast<HTREEITEM>(ask(tree, TVM_GETNEXTITEM, TVGN_ROOT)); family;
       family = reinterpret_cast<HTREEITEM>(ask(tree, TVM_GETNEXTITEM, TVGN_NEXT, reinterpret_cast<LPARAM>(family)))) {
    const HTREEITEM item = find(family);
    if (!item) continue;
    ask(tree, TVM_ENSUREVISIBLE, 0, reinterpret_cast<LPARAM>(item));
    RECT place;
    const auto handle = reinterpret_cast<LPARAM>(item);
    std::memcpy(&place, &handle, sizeof handle);  // TVM_GETITEMRECT expects the item in the rectangle
    ask(tree, TVM_GETITEMRECT, TRUE, reinterpret_cast<LPARAM>(&place));
    click(tree, (place.left + place.right) / 2, (place.top + place.bottom) / 2);
    press(VK_RETURN);
    break;
  }
  wait_until(std::string("the page ") + entry.title, [&] {
    page_ = reinterpret_cast<HWND>(ask(frame_, Frame::message_active_page));
    return page_ && text_of(page_) == entry.title;
  });
}

bool Tour::close_pages() {
  const HWND client = GetDlgItem(frame_, Frame::id_client);
  while (const HWND top = GetWindow(client, GW_CHILD)) {
    press_with(VK_CONTROL, VK_F4);
    if (!comes_true([top] { return !IsWindow(top); }, patience)) return false;
  }
  return true;
}

HWND Tour::control(int id) const {
  const HWND found = GetDlgItem(page_, id);
  if (!found) throw Stuck("there is no control " + std::to_string(id));
  return found;
}

void Tour::click(HWND window) {
  point_at(window);
  press_mouse();
  release_mouse();
}

void Tour::click(HWND window, int x, int y) {
  mouse_ = {x, y};
  ClientToScreen(window, &mouse_);
  move_mouse(mouse_);
  press_mouse();
  release_mouse();
}

void Tour::point_at(HWND window) {
  mouse_ = middle_of(window);
  move_mouse(mouse_);
}

void Tour::press_mouse() { send_mouse(mouse_, MOUSEEVENTF_LEFTDOWN); }

void Tour::release_mouse() { send_mouse(mouse_, MOUSEEVENTF_LEFTUP); }

void Tour::type(const std::string& text) {
  for (const char letter : text) {
    const SHORT key = VkKeyScanA(letter);
    if (HIBYTE(key) & 1) send_key(VK_SHIFT, 0);
    press(LOBYTE(key));
    if (HIBYTE(key) & 1) send_key(VK_SHIFT, KEYEVENTF_KEYUP);
  }
}

void Tour::press(WORD key) {
  send_key(key, 0);
  send_key(key, KEYEVENTF_KEYUP);
}

void Tour::press_with(WORD held, WORD key) {
  send_key(held, 0);
  press(key);
  send_key(held, KEYEVENTF_KEYUP);
}

void Tour::write(int id, const std::string& text) {
  click(id);
  press(VK_HOME);
  press_with(VK_SHIFT, VK_END);
  press(VK_DELETE);
  type(text);
  wait_until('"' + text + "\" to be typed", [&] { return this->text(id) == text; });
}

void Tour::choose_from_menu(char menu, char item) {
  press_with(VK_MENU, static_cast<WORD>(menu));
  const HWND open = wait_for_menu();
  press(static_cast<WORD>(item));
  wait_for_end_of(open);
}

void Tour::wait_until(const std::string& what, const std::function<bool()>& happened) {
  if (!comes_true(happened, patience)) throw Stuck("waited in vain for " + what);
}

HWND Tour::wait_for_window(const std::string& title) {
  HWND found = nullptr;
  wait_until("the window \"" + title + '"', [&] {
    found = FindWindowA(nullptr, title.c_str());
    DWORD process = 0;
    GetWindowThreadProcessId(found, &process);
    return process == GetCurrentProcessId() && IsWindowVisible(found);
  });
  return found;
}

HWND Tour::wait_for_menu() {
  HWND found = nullptr;
  wait_until("a menu", [&] { return (found = FindWindowA("#32768", nullptr)) && IsWindowVisible(found); });
  return found;
}

void Tour::wait_for_end_of(HWND window) {
  wait_until("a window to go", [&] { return !IsWindow(window); });
}

std::string Tour::text_of(HWND window) {
  std::string text(static_cast<size_t>(ask(window, WM_GETTEXTLENGTH)) + 1, '\0');
  text.resize(static_cast<size_t>(ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
  return text;
}

bool Tour::is_checked(int id) const { return ask(control(id), BM_GETCHECK) == BST_CHECKED; }

COLORREF Tour::color_at(HWND window, int x, int y) {
  POINT place{x, y};
  ClientToScreen(window, &place);
  const HDC screen = GetDC(nullptr);
  const COLORREF color = GetPixel(screen, place.x, place.y);
  ReleaseDC(nullptr, screen);
  return color;
}

void Tour::check(const std::string& promise, const std::function<bool()>& holds) {
  constexpr int at_most = 5'000;
  ++checks_;
  if (!comes_true(holds, at_most)) failures_.push_back(promise);
}

void Tour::check_text(int id, const std::string& expected) {
  std::string shown;
  const auto holds = [&] { return (shown = text(id)) == expected; };
  check("the control " + std::to_string(id) + " says \"" + expected + '"', holds);
  if (shown != expected) failures_.back() += ", but says \"" + shown + '"';
}

void Tour::take_picture(const std::string& name, HWND window) {
  const std::string path = name + ".png";
  if (!window) window = GetParent(page_);
  RECT place;
  GetWindowRect(window, &place);
  ask(frame_, Frame::message_paint, reinterpret_cast<WPARAM>(window));
  check("the picture " + path + " is written", [&] { return save_screen_picture(place, path); });
  tell_of_file(path);
}

}  // namespace gallery
