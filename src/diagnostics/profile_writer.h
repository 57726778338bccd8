#ifndef KEXLIB_DIAGNOSTICS_PROFILE_WRITER_H
#define KEXLIB_DIAGNOSTICS_PROFILE_WRITER_H

#include <diagnostics/byte_sink.h>
#include <diagnostics/profile_record.h>

namespace kexlib {

// Writes the record as a script that declares `var threads`, lines ending in "\n". Ticks become milliseconds by
// `ticks_per_second`. Allocates no memory and does not recurse, so that it works at the end of a process, on a small
// stack, for a record of any depth.
void write_profile(const ProfileRecord& record, double ticks_per_second, ByteSink& sink);

}  // namespace kexlib

#endif
