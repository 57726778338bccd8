// The library under load: the same work at three sizes, and whether the time of one item grows with their number.
// Prints the rows of the table in docs/reliability.md; `./kex load` runs it.
#include <kexlib/diagnostics.h>
#include <kexlib/imaging.h>
#include <kexlib/messageloop.h>
#include <kexlib/testing/message_pump.h>
#include <kexlib/windowtools/hwnd_table.h>

#include <windows.h>

#include <support/bench.h>
#include <support/desktop_folder.h>
#include <support/files.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

void require(bool done, const char* what) {
  if (done) return;
  std::fprintf(stderr, "load: %s\n", what);
  std::exit(1);
}

void join(std::vector<std::thread>& threads) {
  for (std::thread& thread : threads) thread.join();
}

// One thread after the other records a block.
void record_threads(int count) {
  for (int i = 0; i < count; ++i) std::thread([] { kexProfileScope scope("block"); }).join();
  kex_stop_profiling("threads.js");
}

// Eight threads at a time.
void record_blocks(int count) {
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 8; ++thread)
    threads.emplace_back([count] {
      for (int i = 0; i < count / 8; ++i) kexProfileScope scope("block");
    });
  join(threads);
  kex_stop_profiling("blocks.js");
}

class Counter : public CThreadMessageHook {
 public:
  const UINT* GetHookedMessages() override { return messages; }
  void OnHookedMessage(MSG*) override { ++count; }
  static constexpr UINT messages[] = {WM_APP + 1, 0};
  int count = 0;
};

// From four threads to a hook on this one. A queue holds ten thousand messages: the senders try again.
void hook_messages(int count) {
  Counter hook;
  hook.SetHook();
  std::vector<std::thread> senders;
  for (int sender = 0; sender < 4; ++sender)
    senders.emplace_back([&hook, count] {
      for (int i = 0; i < count / 4; ++i)
        while (!hook.PostHookMessage(WM_APP + 1, 0, 0)) Sleep(1);
    });
  require(kexlib::testing::pump_until([&] { return hook.count == count; }, std::chrono::minutes(10)),
          "messages are lost");
  join(senders);
}

// The wait takes them, between one posted message and the next.
void wait_for_messages(int count) {
  constexpr int at_once = 1000;
  const HANDLE never = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  for (int i = 0; i < count; i += at_once) {
    for (int k = 0; k < at_once; ++k) PostThreadMessageA(GetCurrentThreadId(), WM_APP, 0, 0);
    SafeWaitWithMessageLoop(1, &never, 0, FALSE, nullptr);
    while (SafeWaitServiceMessageQueue(FALSE, nullptr)) {
    }
  }
  CloseHandle(never);
}

class Timer : public CATLWindowLessTimer {
 public:
  explicit Timer(int& ticks) : ticks_(ticks) {
    SetInterval(50);
    SetRepeatable(0);
  }
  void OnTimerTick() override { ++ticks_; }

 private:
  int& ticks_;
};

// Started, one tick each, and gone.
void tick_timers(int count) {
  int ticks = 0;
  std::deque<Timer> timers;
  for (int i = 0; i < count; ++i) timers.emplace_back(ticks).SetEnabled(1);
  require(kexlib::testing::pump_until([&] { return ticks == count; }, std::chrono::minutes(10)), "ticks are lost");
}

// Named, found and forgotten.
void name_windows(int count) {
  kexHWNDTable& table = kexHWNDTable::singleton();
  const auto window = [](int i) { return reinterpret_cast<HWND>(static_cast<INT_PTR>(-1 - i)); };
  for (int i = 0; i < count; ++i) table.reg_window(window(i), ("window " + std::to_string(i)).c_str(), 1);
  for (int i = 0; i < count; ++i) require(table.get_name(window(i)) != nullptr, "a window is lost");
  for (int i = 0; i < count; ++i) table.unreg_window(window(i));
  kexHWNDTable::delete_singleton();
}

// All at a time, each with its thread.
void start_alerts(int count) {
  std::vector<std::unique_ptr<CProblemAlert>> alerts;
  for (int i = 0; i < count; ++i) alerts.push_back(std::make_unique<CProblemAlert>());
}

// All at a time.
void encode_pictures(int count) {
  std::vector<std::shared_ptr<kexBuffer>> buffers;
  std::vector<std::unique_ptr<kexPNGGenerationThread>> jobs;
  for (int i = 0; i < count; ++i) {
    buffers.push_back(kexBuffer_create());
    jobs.push_back(
        std::make_unique<kexPNGGenerationThread>(std::make_unique<hnDuctImage>(256, 256, true), "", buffers.back()));
    jobs.back()->Resume();
  }
  for (const auto& job : jobs) job->Join(INFINITE);
  for (const auto& buffer : buffers) require(buffer->is_closed() && !buffer->fail(), "a picture is lost");
}

// They wait for the writer, and then copy a megabyte each.
void read_buffer(int count) {
  auto buffer = kexBuffer_create();
  std::atomic<int> read{0};
  std::vector<std::thread> readers;
  for (int i = 0; i < count; ++i)
    readers.emplace_back([&] {
      CMemFile file;
      CArchive archive(&file, CArchive::store);
      buffer->serialize(archive);
      archive.Close();
      if (file.GetLength() > 1 << 20) ++read;
    });
  const std::string piece(1 << 10, 'x');
  for (int i = 0; i < 1 << 10; ++i) buffer->write(piece.data(), piece.size());
  buffer->close();
  join(readers);
  require(read == count, "a reader has less");
}

void trace_lines(int count) {
  CTraceToFile::SetTraceMode(CTraceToFile::TraceToFile);
  for (int i = 0; i < count; ++i) g_traceToFile.Trace("line %d of %d\n", i, count);
  CTraceToFile::SetTraceMode(CTraceToFile::TraceOff);
}

struct Load {
  const char* what;
  void (*run)(int count);
  int sizes[3];
};

constexpr Load loads[] = {
    {"threads, one after the other, with a block each", record_threads, {100, 1000, 10000}},
    {"blocks on 8 threads", record_blocks, {10000, 100000, 1000000}},
    {"messages of 4 threads to a hook", hook_messages, {1000, 10000, 100000}},
    {"messages that a wait takes", wait_for_messages, {1000, 10000, 100000}},
    {"timers, one tick each", tick_timers, {100, 1000, 10000}},
    {"windows with names", name_windows, {1000, 10000, 100000}},
    {"alerts at a time, with a thread each", start_alerts, {10, 100, 1000}},
    {"PNG threads at a time, 256 x 256", encode_pictures, {4, 16, 64}},
    {"readers of a buffer of 1 MB", read_buffer, {2, 8, 32}},
    {"trace lines", trace_lines, {1000, 10000, 100000}},
};

void measure_load() {
  const TemporaryFolder folder;
  const DesktopFolder desktop(folder.path());
  for (const Load& load : loads) {
    load.run(load.sizes[0]);  // what the system makes at the first use
    double microseconds[3];
    for (int i = 0; i < 3; ++i)
      microseconds[i] = bench::nanoseconds_each(1, [&] { load.run(load.sizes[i]); }) / load.sizes[i] / 1000;
    std::printf("| %s | %d: %.2f | %d: %.2f | %d: %.2f | %.1f |\n", load.what, load.sizes[0], microseconds[0],
                load.sizes[1], microseconds[1], load.sizes[2], microseconds[2], microseconds[2] / microseconds[0]);
    std::fflush(stdout);
  }
}

const bench::Benchmark load_benchmark("load", measure_load);

}  // namespace
