// Counts the resources of the process, to find leaks.
#ifndef TESTS_SUPPORT_RESOURCE_COUNTS_H
#define TESTS_SUPPORT_RESOURCE_COUNTS_H

#include <cstddef>
#include <ostream>

// Bitmaps, fonts, pens, brushes, device contexts and so on of this process.
int count_gdi_objects();

// Events, threads, files and so on of this process.
int count_kernel_handles();

// The top-level windows of this thread, without the system's own ("IME" and the like).
int count_windows();

// Private bytes of the process: too coarse to find small leaks.
size_t count_memory();

// The most physical memory that the process has had at once, in bytes.
size_t most_memory();

// Blocks of all heaps of this process.
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
