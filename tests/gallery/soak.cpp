// A user who does anything with the gallery: opens and closes pages, presses their controls, types, chooses from
// menus, and answers the dialogs that come.
//
//     soak SECONDS [SEED]
//
// Each step is written to soak.log. After each the gallery must answer in time. At the end, and now and then, all pages
// are closed: then there must be as many windows, GDI objects and kernel handles as there were when each page had been
// open once, and no more memory than what is known to stay. The seed repeats the choices of a run; what is chosen from
// may differ, since timers and threads go on meanwhile. The exit code is 0, or 1 if something was not so.
#include <gallery/application.h>
#include <gallery/frame.h>
#include <gallery/page.h>
#include <gallery/tour.h>
#include <gallery/user_input.h>
#include <support/crash_report.h>
#include <support/resource_counts.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <random>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int patience = 20'000;              // milliseconds, within which the gallery answers
constexpr ULONGLONG between_counts = 60'000;  // milliseconds

// The system opens and closes some objects of its own. What stays of memory on purpose, and what Wine keeps of dialogs
// and texts, comes with a few of the steps: see ten_tours.cpp, which counts it exactly.
constexpr int objects_at_all = 20, blocks_at_all = 200, blocks_a_step = 1;

ULONGLONG length;  // milliseconds
std::mt19937 choices;
std::FILE* log_file;

// The same on every machine, which std::uniform_int_distribution is not.
int any_of(std::size_t count) { return static_cast<int>(choices() % count); }

void log(const std::string& what) {
  std::fprintf(log_file, "%s\n", what.c_str());
  std::fflush(log_file);
}

std::string name_of(HWND window) {
  char name[64] = "";
  GetClassNameA(window, name, sizeof name);
  return std::string(name) + " " + std::to_string(GetDlgCtrlID(window));
}

// The windows of this process, of all its threads, that a user can operate beside the frame: dialogs, boxes and menus.
// The one in front is the first.
std::vector<HWND> popups(HWND frame) {
  struct Search {
    HWND frame;
    std::vector<HWND> found;
  } search{frame, {}};
  EnumWindows(
      [](HWND window, LPARAM parameter) -> BOOL {
        auto& all = *reinterpret_cast<Search*>(parameter);
        DWORD process = 0;
        char name[16] = "";
        GetWindowThreadProcessId(window, &process);
        GetClassNameA(window, name, sizeof name);
        if (process == GetCurrentProcessId() && window != all.frame && IsWindowVisible(window) &&
            IsWindowEnabled(window) && (std::string(name) == "#32770" || std::string(name) == "#32768"))
          all.found.push_back(window);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&search));
  return search.found;
}

// What of a window the mouse can reach.
std::vector<HWND> controls_of(HWND window) {
  std::vector<HWND> found;
  EnumChildWindows(
      window,
      [](HWND control, LPARAM parameter) -> BOOL {
        RECT place;
        GetWindowRect(control, &place);
        const POINT middle{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
        if (IsWindowVisible(control) && IsWindowEnabled(control) && WindowFromPoint(middle) == control)
          reinterpret_cast<std::vector<HWND>*>(parameter)->push_back(control);
        return TRUE;
      },
      reinterpret_cast<LPARAM>(&found));
  return found;
}

bool answers(HWND window, UINT milliseconds) {
  DWORD_PTR result;
  return SendMessageTimeoutA(window, WM_NULL, 0, 0, SMTO_NORMAL, milliseconds, &result) != 0;
}

// A box of another thread may keep the gallery waiting, and with it whoever asks the gallery for something. A user
// would close it.
void close_boxes_of_others(const std::stop_token& stop, HWND frame) {
  while (!stop.stop_requested()) {
    Sleep(200);
    if (answers(frame, 1000)) continue;
    for (const HWND popup : popups(frame))
      if (GetWindowThreadProcessId(popup, nullptr) != GetWindowThreadProcessId(frame, nullptr))
        PostMessageA(popup, WM_COMMAND, IDOK, 0);
  }
}

class User {
 public:
  explicit User(HWND frame) : frame_(frame), tour_(frame) {}

  // Opens each page once.
  void look_at_all() {
    for (const gallery::PageEntry& page : gallery::pages()) {
      tour_.open(page);
      require_life();
    }
  }

  void do_something() {
    if (const std::vector<HWND> open = popups(frame_); !open.empty())
      answer(open[static_cast<std::size_t>(any_of(open.size()))]);
    else
      operate();
    require_life();
  }

  // Leaves the frame alone on the screen. A page that is busy may drop the keys that close it.
  void tidy_up() {
    const HWND client = GetDlgItem(frame_, gallery::Frame::id_client);
    for (const ULONGLONG end = GetTickCount64() + patience;;) {
      const std::vector<HWND> open = popups(frame_);
      const HWND page = GetWindow(client, GW_CHILD);
      if (open.empty() && !page && answers(frame_, 200)) return;
      if (GetTickCount64() > end) throw std::runtime_error(open.empty() ? "a page stays" : "a dialog stays");
      for (const HWND popup : open) close(popup);
      if (!open.empty() || !page) continue;
      tour_.press(VK_ESCAPE);
      tour_.press_with(VK_CONTROL, VK_F4);
      gallery::comes_true([page] { return !IsWindow(page); }, 1000);
    }
  }

 private:
  void require_life() {
    for (const ULONGLONG end = GetTickCount64() + patience; !answers(frame_, 200);)
      if (GetTickCount64() > end) throw std::runtime_error("the gallery does not answer");
  }

  // Any dialog can be closed by one of its buttons; others have actions, and do not close it.
  static void close(HWND popup) {
    PostMessageA(popup, WM_KEYDOWN, VK_ESCAPE, 0);
    PostMessageA(popup, WM_CLOSE, 0, 0);
    const std::vector<HWND> controls = controls_of(popup);
    if (!controls.empty()) PostMessageA(controls[static_cast<std::size_t>(any_of(controls.size()))], BM_CLICK, 0, 0);
  }

  void press_any_key() {
    constexpr WORD keys[] = {VK_TAB,  VK_UP,  VK_DOWN,  VK_LEFT,   VK_RIGHT,
                             VK_HOME, VK_END, VK_SPACE, VK_RETURN, VK_DELETE};
    const WORD key = keys[any_of(std::size(keys))];
    log("key " + std::to_string(key));
    tour_.press(key);
  }

  // Returns false where there is nothing that the mouse can reach.
  bool click_any(HWND parent) {
    const std::vector<HWND> controls = controls_of(parent);
    if (controls.empty()) return false;
    const HWND control = controls[static_cast<std::size_t>(any_of(controls.size()))];
    RECT place;
    GetClientRect(control, &place);
    const int x = any_of(static_cast<std::size_t>(place.right) + 1),
              y = any_of(static_cast<std::size_t>(place.bottom) + 1);
    log(gallery::Tour::text_of(parent) + ": click on " + name_of(control) + " at " + std::to_string(x) + ", " +
        std::to_string(y));
    tour_.click(control, x, y);
    return true;
  }

  void answer(HWND popup) {
    switch (any_of(4)) {
      case 0:
        log("Escape in " + name_of(popup));
        return tour_.press(VK_ESCAPE);
      case 1:
        return press_any_key();
      default:
        if (!click_any(popup)) close(popup);
        return;
    }
  }

  void operate() {
    const HWND page = reinterpret_cast<HWND>(SendMessageA(frame_, gallery::Frame::message_active_page, 0, 0));
    switch (page ? any_of(20) : 0) {
      case 0: {
        const HWND tree = GetDlgItem(frame_, gallery::Frame::id_tree);
        RECT place;
        GetClientRect(tree, &place);
        const int y = any_of(static_cast<std::size_t>(place.bottom) + 1);
        log("open what is at " + std::to_string(y));
        tour_.click(tree, place.right / 2, y);
        return tour_.press(VK_RETURN);
      }
      case 1:
        log("close");
        return tour_.press_with(VK_CONTROL, VK_F4);
      case 2:
        log("next page");
        return tour_.press_with(VK_CONTROL, VK_F6);
      case 3: {
        // Not the first one, which is empty here.
        const char menu = any_of(2) == 0 ? 'R' : 'W';
        log(std::string("menu ") + menu);
        return tour_.press_with(VK_MENU, static_cast<WORD>(menu));
      }
      case 4:
      case 5:
      case 6: {
        constexpr const char* texts[] = {"1.5", "-12", "abc", "0", "1e308", "{3}", "x y.z", "999999"};
        const char* const text = texts[any_of(std::size(texts))];
        log(std::string("type ") + text);
        return tour_.type(text);
      }
      case 7:
      case 8:
      case 9:
        return press_any_key();
      default:
        click_any(page);
        return;
    }
  }

  HWND frame_;
  gallery::Tour tour_;
};

struct Counts {
  int windows, gdi_objects, kernel_handles, heap_blocks;
};

Counts count(HWND frame) {
  int windows = 0;
  const auto add = [](HWND, LPARAM counted) -> BOOL { return ++*reinterpret_cast<int*>(counted), TRUE; };
  EnumThreadWindows(GetWindowThreadProcessId(frame, nullptr), add, reinterpret_cast<LPARAM>(&windows));
  EnumChildWindows(frame, add, reinterpret_cast<LPARAM>(&windows));
  return {windows, count_gdi_objects(), count_kernel_handles(), count_heap_blocks()};
}

bool soak(HWND frame) {
  User user(frame);
  const std::jthread closer(close_boxes_of_others, frame);
  int steps = 0;
  // The left key leads from the other menus to this one too: the gallery must not end before the user has.
  DeleteMenu(GetSubMenu(GetMenu(frame), 0), 0, MF_BYPOSITION);
  try {
    user.look_at_all();
    user.tidy_up();
    const Counts before = count(frame);
    std::printf("at first: %d windows, %d GDI objects, %d kernel handles, %d heap blocks\n", before.windows,
                before.gdi_objects, before.kernel_handles, before.heap_blocks);
    std::fflush(stdout);
    const ULONGLONG start = GetTickCount64();
    for (ULONGLONG counted = start; GetTickCount64() - start < length; ++steps) {
      user.do_something();
      if (GetTickCount64() - counted < between_counts && GetTickCount64() - start < length) continue;
      counted = GetTickCount64();
      user.tidy_up();
      const Counts now = count(frame);
      std::printf("%llu s, %d steps: %d windows, %d GDI objects, %d kernel handles, %d heap blocks\n",
                  (counted - start) / 1000, steps + 1, now.windows, now.gdi_objects, now.kernel_handles,
                  now.heap_blocks);
      if (now.windows > before.windows || now.gdi_objects > before.gdi_objects + objects_at_all ||
          now.kernel_handles > before.kernel_handles + objects_at_all ||
          now.heap_blocks > before.heap_blocks + blocks_at_all + steps * blocks_a_step)
        throw std::runtime_error("more is left than at first");
      std::fflush(stdout);
    }
  } catch (const std::runtime_error& problem) {
    std::printf("after %d steps: %s (soak.log has the steps)\n", steps, problem.what());
    std::fflush(stdout);
    return false;
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  report_crashes();
  if (argc < 2) return 2;
  length = std::strtoull(argv[1], nullptr, 10) * 1000;
  const unsigned seed = argc > 2 ? static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10)) : std::random_device()();
  choices.seed(seed);
  log_file = std::fopen("soak.log", "w");
  if (!log_file) return 2;
  std::printf("seed %u\n", seed);
  std::fflush(stdout);
  return gallery::run(soak);
}
