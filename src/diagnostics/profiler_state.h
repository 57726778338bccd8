#ifndef KEXLIB_DIAGNOSTICS_PROFILER_STATE_H
#define KEXLIB_DIAGNOSTICS_PROFILER_STATE_H

#include <diagnostics/block_recorder.h>

#include <cstdint>

namespace kexlib {

struct ProfilerPlatform {
  static std::uint32_t thread_id();  // GetCurrentThreadId
  static std::int64_t now();         // QueryPerformanceCounter
};

// The process's profiler: off when the library is loaded. If it is on at unload, it writes "profiler.js".
class ProfilerState : public BlockRecorder<ProfilerPlatform> {
 public:
  constexpr ProfilerState() = default;
  ~ProfilerState();

  // If on: switches off and writes the record to `path`. The record stays.
  bool stop_into(const char* path);
};

extern ProfilerState profiler;

}  // namespace kexlib

#endif
