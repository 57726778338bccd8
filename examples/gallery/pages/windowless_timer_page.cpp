// Windowless timers: two COM objects without a window.
#include <kexlib/messageloop.h>

#include <atlcomcli.h>

#include <gallery/page.h>
#include <gallery/tour.h>

#include <cstdlib>
#include <functional>

namespace {

constexpr int id_first = 100, id_second = 200, id_released = 300;
constexpr int enabled = 0, repeats = 1, suspended = 2, interval = 3, set = 4, ticks = 5;  // added to the ids above

class Clock : public CComObjectRootExSTM, public CATLWindowLessTimer, public IUnknown {
 public:
  explicit Clock(std::function<void()> on_tick) : on_tick_(std::move(on_tick)) {}

  void OnTimerTick() override {
    ++ticks_;
    on_tick_();
  }
  int get_ticks() const { return ticks_; }

  STDMETHODIMP_(ULONG) AddRef() override { return InternalAddRef(); }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = InternalRelease();
    if (left == 0) {
      FinalRelease();  // stops the timer
      delete this;
    }
    return left;
  }
  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    if (!object) return E_POINTER;
    *object = id == IID_IUnknown ? static_cast<IUnknown*>(this) : nullptr;
    if (!*object) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

 private:
  std::function<void()> on_tick_;
  int ticks_ = 0;
};

class WindowlessTimerPage : public gallery::Page {
 public:
  BEGIN_MSG_MAP(WindowlessTimerPage)
    COMMAND_RANGE_HANDLER(id_first, id_first + ticks, OnClock)
    COMMAND_RANGE_HANDLER(id_second, id_second + ticks, OnClock)
    MESSAGE_HANDLER(WM_DESTROY, OnDestroy)
  END_MSG_MAP()

 private:
  void add_controls() override {
    add_clock(id_first, first_, "First timer");
    new_line(12);
    add_clock(id_second, second_, "Second timer");
    new_line(20);
    add(WC_STATIC, "A suspended timer runs on but holds its ticks back.", 0, id_released, 560);
  }

  void add_clock(int id, ATL::CComPtr<Clock>& clock, const char* title) {
    clock = new Clock([this, id] { show(id); });
    add(WC_BUTTON, title, BS_GROUPBOX, -1, 600, 88);
    new_line(-64);
    take_place(8);
    add(WC_BUTTON, "Enabled", WS_TABSTOP | BS_AUTOCHECKBOX, id + enabled, 90);
    add(WC_BUTTON, "Repeats", WS_TABSTOP | BS_AUTOCHECKBOX, id + repeats, 90);
    add(WC_BUTTON, "Suspended", WS_TABSTOP | BS_AUTOCHECKBOX, id + suspended, 100);
    new_line();
    take_place(8);
    add_label("Interval, ms", 75);
    add(WC_EDIT, "", WS_TABSTOP | WS_BORDER | ES_NUMBER, id + interval, 70);
    add(WC_BUTTON, "Set", WS_TABSTOP, id + set, 60);
    add_label("Ticks", 40);
    add(WC_STATIC, "", SS_CENTERIMAGE, id + ticks, 70);
    new_line();
    show(id);
    show_interval(id);
  }

  Clock& clock_of(int id) { return id == id_first ? *first_ : *second_; }

  void show(int id) {
    const Clock& clock = clock_of(id);
    check(id + enabled, clock.GetEnabled() != 0);
    check(id + repeats, clock.GetRepeatable() != 0);
    check(id + suspended, clock.GetSuspended() != 0);
    set_text(id + ticks, std::to_string(clock.get_ticks()).c_str());
  }

  void show_interval(int id) { set_text(id + interval, std::to_string(clock_of(id).GetInterval()).c_str()); }

  LRESULT OnClock(WORD code, WORD command, HWND, BOOL&) {
    if (code != BN_CLICKED) return 0;
    const int id = command < id_second ? id_first : id_second;
    Clock& clock = clock_of(id);
    const short on = is_checked(command);
    switch (command - id) {
      case enabled:
        clock.SetEnabled(on);
        break;
      case repeats:
        clock.SetRepeatable(on);
        break;
      case suspended:
        suspend(clock, on);
        break;
      case set:
        clock.SetInterval(std::atol(text_of(id + interval)));
        show_interval(id);
        break;
      default:
        break;
    }
    show(id);
    return 0;
  }

  void suspend(Clock& clock, short on) {
    const int before = clock.get_ticks();
    clock.SetSuspended(on);
    if (on) return;
    set_text(id_released, clock.get_ticks() == before ? "No tick was held back."
                                                      : "All ticks that were held back came as one, at once.");
  }

  // A timer may tick until its last reference is released. It shows its ticks in this window.
  LRESULT OnDestroy(UINT, WPARAM, LPARAM, BOOL& handled) {
    handled = FALSE;
    first_.Release();
    second_.Release();
    return 0;
  }

  ATL::CComPtr<Clock> first_, second_;
};

void tour(gallery::Tour& user) {
  const auto count = [&](int id) { return std::atoi(user.text(id + ticks).c_str()); };
  const auto wait_for_ticks = [&](int id, int more) {
    const int before = count(id);
    user.wait_until("ticks", [&] { return count(id) >= before + more; });
  };
  const auto set_interval = [&](int id, const char* milliseconds) {
    user.write(id + interval, milliseconds);
    user.click(id + set);
  };
  set_interval(id_first, "10");
  user.check_text(id_first + interval, "50");
  set_interval(id_second, "100");

  user.click(id_first + enabled);
  user.click(id_second + enabled);
  wait_for_ticks(id_first, 3);
  wait_for_ticks(id_second, 3);

  // The ticks of the other timer measure the time.
  user.click(id_first + suspended);
  user.check("the first timer is suspended", [&] { return user.is_checked(id_first + suspended); });
  const int held = count(id_first);
  wait_for_ticks(id_second, 5);
  user.check("a suspended timer does not tick", [&] { return count(id_first) == held; });
  user.take_picture("windowless_timer");
  user.click(id_first + suspended);
  user.check_text(id_released, "All ticks that were held back came as one, at once.");
  user.check("it ticks again", [&] { return count(id_first) > held; });

  user.click(id_first + repeats);
  user.check("a timer that does not repeat stops with its next tick",
             [&] { return !user.is_checked(id_first + enabled); });
  user.click(id_first + repeats);
  user.click(id_second + enabled);
  user.check("the second timer is off", [&] { return !user.is_checked(id_second + enabled); });
}

const gallery::Registration windowless_timer{
    "messageloop", "Windowless timers",
    "Timers for COM objects that have no window, with the usual properties of timer controls.",
    gallery::make<WindowlessTimerPage>, tour};

}  // namespace
