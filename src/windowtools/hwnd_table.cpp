#include <kexlib/windowtools/hwnd_table.h>

#include <module/process_end.h>
#include <windowtools/hwnd_table_state.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

using namespace kexlib;

namespace {

struct Hash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

// The windows of a name, in the order of registration. The first is stored apart: most names have no other, and need no
// vector then.
struct Named {
  HWND first;
  std::vector<HWND> others;
};
using Names = std::unordered_map<std::string, Named, Hash, std::equal_to<>>;

struct Entry {
  const Names::value_type* name = nullptr;
  unsigned long idd = 0;
};

std::string_view text_of(const char* name) { return name ? name : ""; }

bool is_mdi_client(HWND window) {
  char name[260];
  return GetClassNameA(window, name, sizeof name) && std::strcmp(name, "MDIClient") == 0;
}

// The MDI child frame that contains a window, or is the window; null outside an MDI client.
HWND mdi_child_frame(HWND window) {
  for (HWND parent = GetParent(window); parent; window = parent, parent = GetParent(parent))
    if (is_mdi_client(parent)) return window;
  return nullptr;
}

// Whether a window may be found now: outside an MDI client always, inside only in the active child. By design a child
// frame is not found: callers look for windows inside frames.
bool is_in_front(HWND window) {
  HWND client = window;
  while (client && !is_mdi_client(client)) client = GetParent(client);
  if (!client) return true;
  HWND active = reinterpret_cast<HWND>(SendMessageA(client, WM_MDIGETACTIVE, 0, 0));
  return active && IsChild(active, window);
}

bool can_be_given(HWND window) { return IsWindow(window) && IsWindowVisible(window) && is_in_front(window); }

// noexcept: an exception must not unwind the system's code.
LRESULT CALLBACK watch_destruction(int code, WPARAM wParam, LPARAM lParam) noexcept {
  const auto* const sent = reinterpret_cast<const CWPSTRUCT*>(lParam);
  // Kept for compatibility: callers that deleted the table see an empty one.
  if (code >= 0 && sent->message == WM_DESTROY) kexHWNDTable::singleton().unreg_window(sent->hwnd);
  return CallNextHookEx(hwnd_table.hook, code, wParam, lParam);
}

}  // namespace

struct kexHWNDTable::Entries {
  void add(HWND window, std::string_view name, unsigned long idd) {
    const auto entry = windows.try_emplace(window).first;
    try {
      const auto [named, is_new] = names.try_emplace(std::string(name), Named{window, {}});
      if (!is_new) named->second.others.push_back(window);
      entry->second = {&*named, idd};
    } catch (...) {
      windows.erase(entry);
      throw;
    }
  }

  void remove(HWND window) {
    const auto entry = windows.find(window);
    if (entry == windows.end()) return;
    const auto named = names.find(entry->second.name->first);
    auto& [first, others] = named->second;
    if (first != window) {
      std::erase(others, window);
    } else if (others.empty()) {
      names.erase(named);
    } else {
      first = others.front();
      others.erase(others.begin());
    }
    windows.erase(entry);
  }

  const Entry* of(HWND window) const {
    const auto found = windows.find(window);
    return found == windows.end() ? nullptr : &found->second;
  }

  const Named* named(std::string_view name) const {
    const auto found = names.find(name);
    return found == names.end() ? nullptr : &found->second;
  }

  std::unordered_map<HWND, Entry> windows;
  Names names;
};

HwndTableState::~HwndTableState() {
  if (!process_is_ending()) kexHWNDTable::delete_singleton();
}

kexHWNDTable::kexHWNDTable() : entries_(new Entries) {}

kexHWNDTable::kexHWNDTable(const kexHWNDTable& other) : kexHWNDTable() {
  const auto add = [&](HWND window, const std::string& name) {
    entries_->add(window, name, other.entries_->of(window)->idd);
  };
  for (const auto& [name, windows] : other.entries_->names) {
    add(windows.first, name);
    for (HWND window : windows.others) add(window, name);
  }
}

kexHWNDTable::kexHWNDTable(bzCopy, const kexHWNDTable& other) : kexHWNDTable(other) {}

kexHWNDTable::~kexHWNDTable() { delete entries_; }

kexHWNDTable& kexHWNDTable::singleton() {
  if (!hwnd_table.table) hwnd_table.table = new kexHWNDTable;
  return *hwnd_table.table;
}

kexHWNDTable* kexHWNDTable::access_singleton(bzSingletonAccessAction action) {
  if (action == bz_singleton_get) return &singleton();
  delete_singleton();
  return nullptr;
}

void kexHWNDTable::delete_singleton() {
  HwndTableState& state = hwnd_table;
  // The system refuses if the hook's thread has ended: the hook is removed already.
  if (state.hook) UnhookWindowsHookEx(state.hook);
  state.hook = nullptr;
  delete state.table;
  state.table = nullptr;
}

void kexHWNDTable::reg_window(HWND window, const char* name, unsigned long idd) {
  const Entry* const known = entries_->of(window);
  // Kept for compatibility: callers see that this does not install the hook.
  if (known && known->name->first == text_of(name)) return;
  if (!known && !check_name(name, window)) entries_->add(window, text_of(name), idd);
  HHOOK& hook = hwnd_table.hook;
  if (!hook)
    hook = SetWindowsHookExA(WH_CALLWNDPROC, &watch_destruction, GetModuleHandleA("kexlib.dll"), GetCurrentThreadId());
}

void kexHWNDTable::unreg_window(HWND window) { entries_->remove(window); }

HWND kexHWNDTable::get_handle(const char* name) const {
  const Named* const named = entries_->named(text_of(name));
  if (!named) return nullptr;
  const Named windows = *named;  // a window that is queried may register or unregister others
  if (can_be_given(windows.first)) return windows.first;
  for (HWND window : windows.others)
    if (can_be_given(window)) return window;
  return nullptr;
}

const char* kexHWNDTable::get_name(HWND window) const {
  const Entry* const entry = entries_->of(window);
  return entry ? entry->name->first.c_str() : nullptr;
}

int kexHWNDTable::get_idd(HWND window) const {
  const Entry* const entry = entries_->of(window);
  return entry ? static_cast<int>(entry->idd) : 0;
}

int kexHWNDTable::check_name(const char* name, HWND window) {
  const Named* const named = entries_->named(text_of(name));
  if (!named) return 0;
  const HWND frame = mdi_child_frame(window);
  if (!frame) return 1;
  // Kept for compatibility: callers may give a window the name of the frame around it.
  const auto is_inside = [frame](HWND other) { return IsChild(frame, other) != FALSE; };
  return is_inside(named->first) || std::any_of(named->others.begin(), named->others.end(), is_inside);
}
