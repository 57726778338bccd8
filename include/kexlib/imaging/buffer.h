// Byte buffer: filled and closed by one thread, read by others once it is closed.
//
//     std::shared_ptr<kexBuffer> buffer = kexBuffer_create();
//     std::thread producer([=] {
//       buffer->write(data, size);
//       buffer->close();
//     });
//     buffer->write_to_file("picture.png");        // waits until it is closed
//
// Threads. One thread writes and closes; after it has closed, any number of threads may read. Whoever waits for the
// closing asks every 10 milliseconds, for ever if need be. Nothing else is guarded: do not write after closing.
//
// In an archive a buffer is a 32-bit little-endian length and as many bytes. A buffer of 4 GiB and more gets a length
// that is cut to 32 bits.
#ifndef KEXLIB_IMAGING_BUFFER_H
#define KEXLIB_IMAGING_BUFFER_H

#include <kexlib/export.h>

#include <afx.h>

#include <atomic>
#include <memory>
#include <sstream>

/// Bytes on their way from one thread to others. Shared by std::shared_ptr: kexBuffer_create makes one.
class KEXLIB_API kexBuffer {
 public:
  /// Empty and open.
  kexBuffer();

  /// Releases the bytes.
  ~kexBuffer();

  kexBuffer(const kexBuffer&) = delete;
  kexBuffer& operator=(const kexBuffer&) = delete;

  /// A new buffer, loaded from an archive and closed. What serialize throws is passed on.
  static std::shared_ptr<kexBuffer> create_from_archive(CArchive& ar);

  /// Appends bytes, whether closed or not. Where there is no memory for them, fail() tells.
  void write(const void* data, unsigned __int64 size);

  /// Releases those who wait. A closed buffer stays closed.
  void close();

  /// Whether it is closed.
  bool is_closed() const;

  /// Whether a write has failed.
  bool fail() const;

  /// The number of bytes once it is closed; 0 before, without waiting.
  unsigned __int64 size() const;

  /// Waits until it is closed and writes all bytes to a file, in the ANSI code page, instead of what was in it.
  /// Failures are not told.
  void write_to_file(const CString& path) const;

  /// Storing: waits until it is closed and stores all bytes. Loading: appends the bytes and closes; where the archive
  /// ends before its length says so, the missing bytes are zeros. An archive without a length and a file that fails
  /// throw what the archive throws, memory that runs out std::bad_alloc; then nothing is appended, and the buffer is as
  /// open as it was.
  void serialize(CArchive& ar);

 private:
  bool wait_closed() const;

  std::ostringstream stream_;
  std::atomic<bool> closed_{false};
};

/// A new buffer, empty and open.
KEXLIB_API std::shared_ptr<kexBuffer> kexBuffer_create();

#endif
