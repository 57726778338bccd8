// What a process holds: to see that rounds of making and releasing leave nothing behind.
#ifndef TESTS_SUPPORT_RESOURCE_COUNTS_H
#define TESTS_SUPPORT_RESOURCE_COUNTS_H

#include <cstddef>
#include <ostream>

// Bitmaps, fonts, pens, brushes, device contexts and so on of this process.
int count_gdi_objects();

// Events, threads, files and so on of this process.
int count_kernel_handles();

// The top-level windows of this thread; the system's own helper windows ("IME" and the like) are not counted.
int count_windows();

// Bytes that the process has taken for itself: too coarse to find small leaks.
size_t count_memory();

// Blocks of the heaps of this process: what its modules and the system's hold in memory.
int count_heap_blocks();

struct ResourceCounts {
  int gdi_objects = count_gdi_objects();
  int kernel_handles = count_kernel_handles();
  int windows = count_windows();

  bool operator==(const ResourceCounts&) const = default;
  friend std::ostream& operator<<(std::ostream& out, const ResourceCounts& counts) {
    return out << counts.gdi_objects << " GDI objects, " << counts.kernel_handles << " kernel handles, "
               << counts.windows << " windows";
  }
};

#endif
