// What the process has taken from its heaps.
#ifndef TESTS_SUPPORT_HEAP_USE_H
#define TESTS_SUPPORT_HEAP_USE_H

#include <windows.h>

#include <cstdint>

// The heaps of this process. The list takes no memory from them; a process with more heaps than it has room for ends.
class ProcessHeaps {
 public:
  ProcessHeaps();
  const HANDLE* begin() const { return heaps_; }
  const HANDLE* end() const { return heaps_ + count_; }

 private:
  static constexpr DWORD room = 1024;  // dbghelp.dll may make one for each module
  HANDLE heaps_[room];
  DWORD count_;
};

struct HeapUse {
  std::int64_t blocks = 0;
  std::int64_t bytes = 0;
};

// Of all heaps.
HeapUse heap_use();

#endif
