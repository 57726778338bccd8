// Byte buffer: one thread fills and closes it, other threads read it after that.
//
//     std::shared_ptr<kexBuffer> buffer = kexBuffer_create();
//     std::thread producer([=] {
//       buffer->write(data, size);
//       buffer->close();
//     });
//     buffer->write_to_file("picture.png");        // waits until it is closed
//
// Threads. One thread writes and closes the buffer; after that, any number of threads may read it. A reader that waits
// polls every 10 milliseconds, without a time-out. There is no lock: do not write after closing.
//
// In an archive a buffer is a 32-bit little-endian length, followed by that number of bytes. The length of a buffer of
// 4 GiB or more is truncated to 32 bits.
//
// An untrusted archive may promise up to 4 GiB and deliver less. Loading it takes time and memory for what is
// delivered; the zeros of the rest take neither before they are used. Compare size() with the largest buffer that you
// expect before you write it to a file, store it, or write to it.
#ifndef KEXLIB_IMAGING_BUFFER_H
#define KEXLIB_IMAGING_BUFFER_H

#include <kexlib/export.h>
#include <kexlib/framework.h>

#include <atomic>
#include <memory>
#include <sstream>

/// Bytes that one thread passes to others. Held by std::shared_ptr; kexBuffer_create creates one.
class KEXLIB_API kexBuffer {
 public:
  /// Makes an empty, open buffer.
  kexBuffer();

  /// Releases the bytes.
  ~kexBuffer();

  kexBuffer(const kexBuffer&) = delete;
  kexBuffer& operator=(const kexBuffer&) = delete;

  /// Returns a new buffer, loaded from an archive and closed. Throws what serialize throws.
  static std::shared_ptr<kexBuffer> create_from_archive(CArchive& ar);

  /// Appends bytes; a closed buffer is not refused. If memory runs out, fail() returns true.
  void write(const void* data, unsigned __int64 size);

  /// Closes the buffer and so ends the wait of its readers. A closed buffer stays closed.
  void close();

  /// Whether the buffer is closed; does not wait.
  bool is_closed() const;

  /// Whether a write has failed.
  bool fail() const;

  /// The number of bytes, or 0 while the buffer is open; does not wait.
  unsigned __int64 size() const;

  /// Waits until the buffer is closed, then writes all bytes to a file; the path is in the ANSI code page. An existing
  /// file is replaced. Failures are not reported, and nothing is thrown.
  void write_to_file(const CString& path) const;

  /// Storing: waits until the buffer is closed, then stores all bytes. Loading: reads the bytes, appends them to those
  /// already present, and closes the buffer; if the archive ends early, the missing bytes are zeros.
  ///
  /// Errors while loading. If the archive has no complete length or its file fails, the archive's exception is passed
  /// on; if there is no memory to read the bytes into, std::bad_alloc is thrown. In both cases nothing is appended and
  /// the buffer is not closed. If memory runs out while the bytes are appended, nothing is thrown: the buffer is
  /// closed, fail() returns true, and only a part of the bytes is in it.
  void serialize(CArchive& ar);

 private:
  bool wait_closed() const;

  std::ostringstream stream_;
  std::atomic<bool> closed_{false};
  unsigned __int64 missing_ = 0;  // the zeros after the stream's bytes, which an archive promised and did not deliver
};

/// Returns a new, empty, open buffer.
KEXLIB_API std::shared_ptr<kexBuffer> kexBuffer_create();

#endif
