#include <kexlib/diagnostics/profiler.h>

#include <windows.h>

#include <diagnostics/profile_writer.h>
#include <diagnostics/profiler_state.h>
#include <diagnostics/text_file.h>
#include <module/process_end.h>

#include <new>

namespace kexlib {

inline std::uint32_t ProfilerPlatform::thread_id() { return GetCurrentThreadId(); }

inline std::int64_t ProfilerPlatform::now() {
  LARGE_INTEGER counter;
  QueryPerformanceCounter(&counter);
  return counter.QuadPart;
}

namespace {

double ticks_per_second() {
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  return static_cast<double>(frequency.QuadPart);
}

}  // namespace

bool ProfilerState::stop_into(const char* path) {
  if (!stop()) return false;
  if (const text_file::Handle file = text_file::open(path, text_file::Start::Truncated)) {
    text_file::Sink sink(file);
    write_profile(record(), ticks_per_second(), sink);
    text_file::close(file);
  }
  return true;
}

ProfilerState::~ProfilerState() {
  stop_into("profiler.js");
  if (!process_is_ending()) record().clear();
}

}  // namespace kexlib

using kexlib::profiler;

void kex_start_profiling() { profiler.start(); }

void kex_begin_block(const std::string& name) { profiler.begin(name); }

void kex_begin_block_with_auto_start(const std::string& name) {
  kex_start_profiling();
  kex_begin_block(name);
}

void kex_end_block() { profiler.end(); }

void kex_stop_profiling(const std::string& path) {
  if (profiler.stop_into(path.c_str())) profiler.record().clear();
}

bool kex_is_profiling() { return profiler.is_on(); }

kexProfileScope::kexProfileScope(const std::string& name) { kex_begin_block_with_auto_start(name); }

kexProfileScope::~kexProfileScope() {
  try {
    kex_end_block();
  } catch (const std::bad_alloc&) {
    // Only a thread that is not in the record yet needs memory here, and it has no block to end.
  }
}
