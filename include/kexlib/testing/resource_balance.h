// A balance of what the process holds: GDI objects, USER objects, kernel handles, references of COM objects.
//
//     const ResourceBalance balance;
//     { Chart chart; chart.draw(); }
//     EXPECT_EQ(balance.problem(), "");               // "1 more GDI object"
//
//     EXPECT_EQ(leak_of_rounds(100, [] { Chart().draw(); }), "");     // "after 100 rounds: 100 more GDI objects"
//
// The system creates objects at the first use of something and keeps them: prefer rounds, which do not count the first
// ones, or do the same once before the balance.
//
// The counts are the system's (GetGuiResources, GetProcessHandleCount). Wine's functions count nothing; there GDI
// objects are read from a table of the system, kernel handles are asked for one by one, and of the USER objects only
// windows are counted, without the system's own. A kernel handle is found there if fewer than 256 handles were opened
// before it since the last count: what opens more makes a ResourceCounts while they are open. Where a kind cannot be
// counted, problem() says so: a test must not pass then.
//
// Threads. The counts are those of the whole process: other threads that are busy disturb them.
#ifndef KEXLIB_TESTING_RESOURCE_BALANCE_H
#define KEXLIB_TESTING_RESOURCE_BALANCE_H

#include <kexlib/testing/counting_object.h>
#include <kexlib/windows.h>

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace kexlib::testing {

// What the count functions call.
namespace detail {

template <typename Function>
Function function_of(const char* module, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(module), name)));
}

inline bool is_wine() { return function_of<void*>("ntdll.dll", "wine_get_version") != nullptr; }

// GR_GDIOBJECTS and GR_USEROBJECTS, which not all headers of the system have.
constexpr DWORD gdi_kind = 0, user_kind = 1;

// GetGuiResources, or -1 if it counts nothing: not even the object that is there meanwhile.
inline int gui_resources(DWORD kind) {
  static const bool counts = [] {
    const HDC context = CreateCompatibleDC(nullptr);
    const bool found = GetGuiResources(GetCurrentProcess(), gdi_kind) > 0;
    DeleteDC(context);
    return found;
  }();
  return counts ? static_cast<int>(GetGuiResources(GetCurrentProcess(), kind)) : -1;
}

// Wine maps the table of the process's GDI handles where Windows has that of the session.
inline int gdi_objects_of_wine() {
  struct Entry {
    unsigned long long object;
    unsigned short process, reserved, count;
    unsigned char type, flags;
    unsigned long long user;
  };
  struct Process {
    void* status;
    const char* environment_block;
    void* others[4];
  } process{};
  constexpr std::size_t entries = 16384, place_in_environment_block = 0xF8;
  using Query = long(WINAPI*)(HANDLE, int, void*, ULONG, ULONG*);
  const auto query = function_of<Query>("ntdll.dll", "NtQueryInformationProcess");
  if (!query || query(GetCurrentProcess(), 0, &process, sizeof process, nullptr) < 0) return -1;
  const Entry* table = nullptr;
  std::memcpy(&table, process.environment_block + place_in_environment_block, sizeof table);
  if (!table) return -1;
  int count = 0;
  for (std::size_t i = 0; i < entries; ++i) count += table[i].type != 0;
  return count;
}

// Asks for each handle: Wine's list of the handles of all processes ends its server if a process begins meanwhile. A
// new handle gets the lowest free value, so only those of handles that were closed again can lie between the ones seen
// and one that is higher.
inline int kernel_handles_of_wine() {
  constexpr ULONG_PTR step = 4, gap = 256 * step;  // each place costs a call of the server
  static std::atomic<ULONG_PTR> highest = 0;       // that was ever seen: many below it may have been closed since
  int count = 0;
  for (ULONG_PTR handle = step; handle <= highest + gap; handle += step) {
    DWORD flags;
    if (!GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags)) continue;
    ++count;
    if (handle > highest) highest = handle;
  }
  return count;
}

// A window of the system's own is not counted: it comes and goes by itself.
inline BOOL CALLBACK count_window(HWND window, LPARAM counted) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != GetCurrentProcessId()) return TRUE;
  char name[64] = "";
  GetClassNameA(window, name, sizeof name);
  for (const char* const own : {"IME", "MSCTFIME UI", "OleMainThreadWndClass", "OleDdeWndClass"})
    if (std::strcmp(name, own) == 0) return TRUE;
  ++*reinterpret_cast<int*>(counted);
  if (GetAncestor(window, GA_PARENT) == GetDesktopWindow()) EnumChildWindows(window, count_window, counted);
  return TRUE;
}

inline int windows_of_process() {
  int count = 0;
  EnumWindows(count_window, reinterpret_cast<LPARAM>(&count));
  for (HWND window = nullptr; (window = FindWindowExA(HWND_MESSAGE, window, nullptr, nullptr));)
    count_window(window, reinterpret_cast<LPARAM>(&count));
  return count;
}

}  // namespace detail

/// Bitmaps, fonts, pens, brushes, device contexts and so on of this process; -1 if they cannot be counted.
inline int count_gdi_objects() {
  GdiFlush();
  const int count = detail::gui_resources(detail::gdi_kind);
  return count < 0 && detail::is_wine() ? detail::gdi_objects_of_wine() : count;
}

/// Windows, menus, cursors, icons, hooks and so on of this process, under Wine its windows only; -1 if they cannot be
/// counted.
inline int count_user_objects() {
  const int count = detail::gui_resources(detail::user_kind);
  return count < 0 && detail::is_wine() ? detail::windows_of_process() : count;
}

/// Events, threads, files and so on of this process; -1 if they cannot be counted.
inline int count_kernel_handles() {
  using Count = BOOL(WINAPI*)(HANDLE, DWORD*);
  const auto count_handles = detail::function_of<Count>("kernel32.dll", "GetProcessHandleCount");
  DWORD count = 0;
  if (count_handles && count_handles(GetCurrentProcess(), &count) && count > 0) return static_cast<int>(count);
  return detail::is_wine() ? detail::kernel_handles_of_wine() : -1;
}

/// What the process holds now.
struct ResourceCounts {
  int gdi_objects = count_gdi_objects();        ///< see count_gdi_objects
  int user_objects = count_user_objects();      ///< see count_user_objects
  int kernel_handles = count_kernel_handles();  ///< see count_kernel_handles

  /// Whether both have as many of each.
  bool operator==(const ResourceCounts&) const = default;
};

/// Prints "12 GDI objects, 3 USER objects, 40 kernel handles".
inline std::ostream& operator<<(std::ostream& out, const ResourceCounts& counts) {
  return out << counts.gdi_objects << " GDI objects, " << counts.user_objects << " USER objects, "
             << counts.kernel_handles << " kernel handles";
}

/// Compares what the process holds with what it held when the object was made.
class ResourceBalance {
 public:
  /// Counts now, and the references of these objects too, which must outlive the balance.
  ResourceBalance(std::initializer_list<const ReferenceCount*> objects = {}) {
    for (const ReferenceCount* const object : objects) references_.emplace_back(object, object->references());
    before_ = ResourceCounts();
  }

  ResourceBalance(const ResourceBalance&) = delete;
  ResourceBalance& operator=(const ResourceBalance&) = delete;

  /// What there was at first.
  const ResourceCounts& before() const { return before_; }

  /// Counts again. Empty if all is as before, otherwise a sentence: "2 more GDI objects, 1 fewer kernel handle".
  /// Names what cannot be counted here.
  std::string problem() const {
    const ResourceCounts now;
    std::string text;
    compare(text, before_.gdi_objects, now.gdi_objects, "GDI object");
    compare(text, before_.user_objects, now.user_objects, "USER object");
    compare(text, before_.kernel_handles, now.kernel_handles, "kernel handle");
    for (const auto& [object, before] : references_)
      if (object->references() != before)
        add(text, number(object->references() - before, "reference") + " to " + object->name());
    return text;
  }

 private:
  static void add(std::string& text, const std::string& part) {
    if (!text.empty()) text += ", ";
    text += part;
  }

  static std::string number(long more, const char* what) {
    const long count = more < 0 ? -more : more;
    return std::to_string(count) + (more < 0 ? " fewer " : " more ") + what + (count == 1 ? "" : "s");
  }

  static void compare(std::string& text, int before, int now, const char* what) {
    if (before < 0 || now < 0)
      add(text, std::string(what) + "s cannot be counted here");
    else if (before != now)
      add(text, number(now - before, what));
  }

  ResourceCounts before_{-1, -1, -1};
  std::vector<std::pair<const ReferenceCount*, long>> references_;
};

/// Calls `round` and says what that leaves behind: empty if nothing, otherwise "after 100 rounds: 100 more GDI
/// objects".
///   rounds   how often; a leak of one object in a hundred rounds is found too
///   round    any function without arguments
///   warm_up  rounds before, which do not count: the system creates objects then that it keeps
template <typename Round>
std::string leak_of_rounds(int rounds, Round&& round, int warm_up = 20) {
  for (int i = 0; i < warm_up; ++i) round();
  const ResourceBalance balance;
  for (int i = 0; i < rounds; ++i) round();
  const std::string problem = balance.problem();
  return problem.empty() ? "" : "after " + std::to_string(rounds) + " rounds: " + problem;
}

}  // namespace kexlib::testing

#endif
