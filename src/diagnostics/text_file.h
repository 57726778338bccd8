// A file in the platform's text form: each "\n" becomes CR LF on its way out.
//
// Straight on the system's file calls: one call a text, no buffer that would have to be flushed, and none of the
// run-time library's locks, which at the end of a process may belong to a thread that is gone.
#ifndef KEXLIB_DIAGNOSTICS_TEXT_FILE_H
#define KEXLIB_DIAGNOSTICS_TEXT_FILE_H

#include <diagnostics/byte_sink.h>

#include <string_view>

namespace kexlib::text_file {

using Handle = void*;  // of Win32; null for no file

enum class Start { Truncated, AtEnd };

// Opens or makes a file for writing, shared with other readers and writers; null if that cannot be.
Handle open(const char* path, Start start);

// What cannot be written is dropped.
void write(Handle file, std::string_view text);

void close(Handle file);

// Writes into an open file, which stays the caller's.
class Sink final : public ByteSink {
 public:
  explicit Sink(Handle file) : file_(file) {}
  void write(std::string_view text) override { text_file::write(file_, text); }

 private:
  const Handle file_;
};

}  // namespace kexlib::text_file

#endif
