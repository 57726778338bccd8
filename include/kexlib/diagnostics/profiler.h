// Profiler: times named blocks of work, per thread, and writes them as a small script file for a viewer page.
//
// Code marks its blocks, by a scope object or by begin and end. A caller switches profiling on and, later, stops it
// into a file:
//
//     kex_start_profiling();
//     {
//       kexProfileScope scope("load");              // opens "load" on this thread
//       kex_begin_block("parse");                   // opens "parse" inside "load"
//       ...
//       kex_end_block();                            // closes the innermost open block: "parse"
//     }                                             // closes "load"
//     kex_stop_profiling("load times.js");          // writes the record and discards it
//
// What is recorded. Each thread has a tree of blocks. A block is one name under one parent: the same name under two
// parents makes two blocks, a name begun inside itself makes a child of the same name, and a block that is begun again
// gets one more interval. Blocks are written in the order in which they were first begun, threads in the order of
// their first call.
//
// Times are QueryPerformanceCounter stamps, written as milliseconds since the first block that was begun after
// profiling had been switched on, with six significant digits.
//
// Cost. Two counter reads and about twenty nanoseconds for a begin and its end, about sixteen bytes for an interval.
// While profiling is off a call is one test of a flag. Nothing is formatted before the stop.
//
// Threads. Any thread may begin and end blocks and start profiling, at any time. No lock is taken. The caller must keep
// kex_stop_profiling from running at the same time as a profiler call of another thread. A thread is identified by
// GetCurrentThreadId: if Windows reuses the id of an ended thread, the new thread continues its record, inside the
// blocks that the ended one left open.
//
// Errors. None is reported. Only std::bad_alloc is thrown, if memory runs out.
//
// Unloading. If profiling is still on when kexlib.dll is unloaded (at the end of the process or by FreeLibrary), the
// record is written to "profiler.js" in the current directory. TerminateProcess runs no unloading and writes nothing.
#ifndef KEXLIB_DIAGNOSTICS_PROFILER_H
#define KEXLIB_DIAGNOSTICS_PROFILER_H

#include <kexlib/export.h>

#include <string>

/// Switches profiling on. The next begin sets the time base. If profiling is on already, nothing changes: the record
/// and the time base are kept.
KEXLIB_API void kex_start_profiling();

/// Opens the block `name` on the calling thread, inside the innermost block that the thread has open. Ignored while
/// profiling is off.
///
/// `name` may have any bytes and any length. It is copied, compared byte for byte and written without escaping: with a
/// quote in a name the file is not a valid script.
KEXLIB_API void kex_begin_block(const std::string& name);

/// kex_start_profiling() and then kex_begin_block(name): the first such call switches profiling on.
KEXLIB_API void kex_begin_block_with_auto_start(const std::string& name);

/// Closes the innermost open block of the calling thread. If none is open, the call only adds the thread to the record.
/// Ignored while profiling is off.
KEXLIB_API void kex_end_block();

/// Switches profiling off, writes the record to the file `path` and discards the record. Ignored while profiling is
/// off: no file is created.
///
/// `path` is in the ANSI code page and relative to the current directory unless it is absolute. An existing file is
/// overwritten; others may read and write it meanwhile. If it cannot be opened, the record is discarded unwritten. On
/// a full disk the file is truncated.
///
/// The file is text with CR LF line ends, always in the "C" locale, and declares one variable:
///
///     var threads = [
///     {
///       blocks: [
///         {
///           name: 'load',
///           blocks: [
///             {
///               name: 'parse',
///               time: [{b: 0.5, e: 2.25},]
///             },
///           ],
///           time: [{b: 0, e: 3.5},{b: 10, e: 12},]
///         },
///       ],
///       name: 'Thread 1234'
///     },
///     ]
///
/// A block that is still open shows "e: 0". A block or a thread without blocks has no "blocks" key. Every list element
/// is followed by a comma, the last one too.
///
/// Writing takes some 50 KB of the stack of the calling thread.
KEXLIB_API void kex_stop_profiling(const std::string& path);

/// Beyond the contract of the unit: whether profiling is on. Call it from any thread.
///
///     if (kex_is_profiling()) kex_begin_block("frame " + std::to_string(number));    // no text is built for nothing
KEXLIB_API bool kex_is_profiling();

/// Profiles the scope that it lives in. Begin and end must be on one thread, so it is neither copied nor moved.
///
///     void load() {
///       kexProfileScope scope("load");
///       ...
///     }
class KEXLIB_API kexProfileScope {
 public:
  /// kex_begin_block_with_auto_start(name): a scope switches profiling on.
  explicit kexProfileScope(const std::string& name);

  /// kex_end_block(). Never throws.
  ~kexProfileScope();

  kexProfileScope(const kexProfileScope&) = delete;
  kexProfileScope& operator=(const kexProfileScope&) = delete;
};

#endif
