// The switch, the time base, and the order of the steps of a begin and an end.
#ifndef KEXLIB_DIAGNOSTICS_BLOCK_RECORDER_H
#define KEXLIB_DIAGNOSTICS_BLOCK_RECORDER_H

#include <diagnostics/profile_record.h>

#include <atomic>
#include <cstdint>
#include <string_view>

namespace kexlib {

// `Platform` has static std::uint32_t thread_id() and static std::int64_t now(), in ticks. Tests and benchmarks supply
// another one.
//
// The switch and the time base are read without ordering: callers never overlap a stop with other calls. Nothing guards
// against it, as a count of open calls costs more than a pair may lose: docs/reliability.md has the figures.
template <class Platform>
class BlockRecorder {
 public:
  void start() {
    // Loaded first: every scope starts, and each store would invalidate the caches of the other threads.
    if (!enabled_.load(std::memory_order_relaxed)) enabled_.store(true, std::memory_order_relaxed);
  }

  bool is_on() const { return enabled_.load(std::memory_order_relaxed); }

  void begin(std::string_view name) {
    if (!enabled_.load(std::memory_order_relaxed)) return;
    ThreadRecord& thread = record_.thread(Platform::thread_id());
    const std::int64_t now = Platform::now();
    thread.begin(name, now - base(now));
  }

  void end() {
    if (!enabled_.load(std::memory_order_relaxed)) return;
    // Before the search for an open block. By design: readers of the record see threads that only end blocks.
    ThreadRecord& thread = record_.thread(Platform::thread_id());
    thread.end(Platform::now() - base_.load(std::memory_order_relaxed));
  }

  // Switches off; returns whether it was on. The record stays until it is cleared.
  bool stop() {
    if (!enabled_.exchange(false, std::memory_order_relaxed)) return false;
    // Not at the start: the first scopes of several threads may start profiling at the same time.
    base_.store(0, std::memory_order_relaxed);
    return true;
  }

  ProfileRecord& record() { return record_; }

 private:
  // The time base: the stamp of the first begin since the start. If two threads begin first at the same time, one of
  // them sets it.
  std::int64_t base(std::int64_t now) {
    std::int64_t base = base_.load(std::memory_order_relaxed);
    if (base == 0 && base_.compare_exchange_strong(base, now, std::memory_order_relaxed)) base = now;
    return base;
  }

  std::atomic<bool> enabled_{false};
  std::atomic<std::int64_t> base_{0};  // 0: not yet taken
  ProfileRecord record_;
};

}  // namespace kexlib

#endif
