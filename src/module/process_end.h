#ifndef KEXLIB_MODULE_PROCESS_END_H
#define KEXLIB_MODULE_PROCESS_END_H

namespace kexlib {

// Whether the current unload is part of the end of the process. Windows has then ended all other threads at any point:
// do not access what they may have been changing, the heap included.
bool process_is_ending();

}  // namespace kexlib

#endif
