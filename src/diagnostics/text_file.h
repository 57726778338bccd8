// A file in the platform's text form: each "\n" is written as CR LF.
//
// It calls the system's file functions directly: what a call of write() is given is with the system when it returns,
// there is no buffer to flush, and no lock of the run-time library, which at the end of a process may belong to a
// killed thread.
#ifndef KEXLIB_DIAGNOSTICS_TEXT_FILE_H
#define KEXLIB_DIAGNOSTICS_TEXT_FILE_H

#include <diagnostics/byte_sink.h>

#include <string>
#include <string_view>

namespace kexlib::text_file {

using Handle = void*;  // of Win32; null for no file

enum class Start { Truncated, AtEnd };

// Opens or creates a file for writing, shared with other readers and writers; null on failure.
Handle open(const char* path, Start start);

// Text that cannot be written is discarded.
void write(Handle file, std::string_view text);

void close(Handle file);

// As users write it, in the ANSI code page; empty if the system does not tell.
std::string path_of(Handle file);

// Writes to an open file, which the caller owns.
class Sink final : public ByteSink {
 public:
  explicit Sink(Handle file) : file_(file) {}
  void write(std::string_view text) override { text_file::write(file_, text); }

 private:
  const Handle file_;
};

}  // namespace kexlib::text_file

#endif
