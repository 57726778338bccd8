// What was written beyond a block of memory is found where the system checks its heaps: in the sessions of
// ./kex check hardened.
#ifndef TESTS_SUPPORT_CHECKED_HEAP_H
#define TESTS_SUPPORT_CHECKED_HEAP_H

// Both end the process as a crash where a block is damaged, and do nothing where the system does not check its heaps.

// From here on each block is looked at before it is freed.
void check_freed_blocks();

// Looks at all blocks.
void check_heaps();

#endif
