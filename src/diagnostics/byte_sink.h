#ifndef KEXLIB_DIAGNOSTICS_BYTE_SINK_H
#define KEXLIB_DIAGNOSTICS_BYTE_SINK_H

#include <string_view>

namespace kexlib {

// Receives the text of a writer, piece by piece.
class ByteSink {
 public:
  virtual void write(std::string_view text) = 0;

 protected:
  ~ByteSink() = default;
};

}  // namespace kexlib

#endif
