// Counts the resources of the process, to find leaks: the installed counts, and memory.
#ifndef TESTS_SUPPORT_RESOURCE_COUNTS_H
#define TESTS_SUPPORT_RESOURCE_COUNTS_H

#include <kexlib/testing/resource_balance.h>

#include <cstddef>

using kexlib::testing::count_gdi_objects;
using kexlib::testing::count_kernel_handles;
using kexlib::testing::ResourceCounts;

// Private bytes of the process: too coarse to find small leaks.
size_t count_memory();

// Physical memory that the process has now, and the most that it has had at once, in bytes.
size_t physical_memory();
size_t most_memory();

// Blocks of all heaps of this process.
int count_heap_blocks();

#endif
