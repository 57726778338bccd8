#include <kexlib/messageloop/windowless_timer.h>

#include <support/bench.h>
#include <support/heap_use.h>

#include <mutex>
#include <vector>

namespace {

class Timer : public CATLWindowLessTimer {
 public:
  void OnTimerTick() override {}
};

// The minimum for a tick and a stop: a search of a list, from the newest to the oldest timer, under a lock.
struct Plain {
  UINT_PTR id = 0;
  char rest[sizeof(Timer) - sizeof id];  // as large as the library's object
};

struct Node {
  Plain* timer;
  Node* next;
};

std::recursive_mutex lock;
Node* newest = nullptr;
volatile UINT_PTR found;

void CALLBACK plain_tick(HWND, UINT, UINT_PTR id, DWORD) {
  const std::scoped_lock locked(lock);
  const Node* node = newest;
  while (node && node->timer->id != id) node = node->next;
  found = node ? node->timer->id : 0;
}

void plain_stop(Plain& timer) {
  {
    const std::scoped_lock locked(lock);
    Node** node = &newest;
    while ((*node)->timer != &timer) node = &(*node)->next;
    Node* gone = *node;
    *node = gone->next;
    delete gone;
  }
  KillTimer(nullptr, timer.id);
}

// A tick, as the system sends it.
MSG next_tick() {
  MSG message;
  do GetMessageA(&message, nullptr, 0, 0);
  while (message.message != WM_TIMER);
  return message;
}

constexpr long soon = 50, never = 0x7FFFFFF;

// The times of the ticks of the oldest timer, and of stopping all timers, oldest first.
struct Times {
  double tick, stop;
};

constexpr int ticks = 2000;

// The timer that was started first is the last in the list.
enum class Ticking { Oldest, Newest };

Times measure_library(int count, Ticking which) {
  Times times{};
  std::vector<Timer> timers(static_cast<size_t>(count));
  for (Timer& timer : timers) timer.SetInterval(never);
  (which == Ticking::Oldest ? timers.front() : timers.back()).SetInterval(soon);
  for (Timer& timer : timers) timer.SetEnabled(1);
  const MSG message = next_tick();
  times.tick = bench::nanoseconds_each(ticks, [&] { DispatchMessageA(&message); });
  auto next = timers.begin();
  times.stop = bench::nanoseconds_each(count, [&] { (next++)->SetEnabled(0); });
  return times;
}

Times measure_plain(int count) {
  Times times{};
  std::vector<Plain> timers(static_cast<size_t>(count));
  for (Plain& timer : timers) {
    newest = new Node{&timer, newest};
    timer.id = SetTimer(nullptr, 0, &timer == timers.data() ? soon : never, &plain_tick);
  }
  const MSG message = next_tick();
  times.tick = bench::nanoseconds_each(ticks, [&] { DispatchMessageA(&message); });
  auto next = timers.begin();
  times.stop = bench::nanoseconds_each(count, [&] { plain_stop(*next++); });
  return times;
}

void measure_ten_thousand_timers() {
  constexpr int count = 10000, rounds = 7;
  const auto compare = [](const char* title, double Times::*which, const bench::Line& line) {
    bench::Comparison work(title, rounds);
    work.add("library", [=] { return measure_library(count, Ticking::Oldest).*which; });
    work.add("list walk", [=] { return measure_plain(count).*which; });
    work.run();
    bench::at_most(1.3, work.ratio("library", "list walk"), line);
  };
  compare("a tick of the oldest of 10,000 timers", &Times::tick,
          {.name = "a tick among 10,000 timers",
           .compared = "of the oldest CATLWindowLessTimer, of the time of a walk through a list",
           .reason = "timers without a window are found in a list by their ids"});
  compare("a stop, one after the other, of 10,000 timers", &Times::stop,
          {.name = "a stop among 10,000 timers",
           .compared = "CATLWindowLessTimer::SetEnabled, of the time of a walk through a list and KillTimer",
           .reason = "timers without a window are found in a list by their ids"});
}

void measure_tick_of_the_newest() {
  bench::Comparison work("a tick of the newest timer", 7);
  work.add("of 10", [] { return measure_library(10, Ticking::Newest).tick; });
  work.add("of 10,000", [] { return measure_library(10000, Ticking::Newest).tick; });
  work.run();
  bench::at_most(1.1, work.ratio("of 10,000", "of 10"),
                 {.name = "a tick of the newest of 10,000 timers",
                  .compared = "CATLWindowLessTimer, of the time of a tick of the newest of 10",
                  .reason = "the search begins at the newest; for the oldest it is a walk through all"});
}

void measure_memory() {
  constexpr int count = 10000;
  const std::int64_t before = heap_use().bytes;
  {
    std::vector<Timer> timers(count);
    for (Timer& timer : timers) {
      timer.SetInterval(never);
      timer.SetEnabled(1);
    }
    bench::at_most(160, static_cast<double>(heap_use().bytes - before) / count,
                   {.name = "memory of a timer",
                    .compared = "bytes of the heap, of one of 10,000 CATLWindowLessTimers that run",
                    .reason = "an object of its own for each, and a node of the list of all"});
  }
}

const bench::Benchmark newest_benchmark("newest timer", measure_tick_of_the_newest);
const bench::Benchmark memory_benchmark("memory of timers", measure_memory);
const bench::Benchmark ten_thousand_timers_benchmark("10,000 timers", measure_ten_thousand_timers);

}  // namespace
