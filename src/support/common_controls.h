#ifndef KEXLIB_SUPPORT_COMMON_CONTROLS_H
#define KEXLIB_SUPPORT_COMMON_CONTROLS_H

#include <kexlib/windows.h>

namespace kexlib {

// Version 6 of the common controls, for programs without the manifest that requests it. While the object lives, the
// library's own manifest is active on this thread.
class CommonControls6 {
 public:
  CommonControls6();
  CommonControls6(const CommonControls6&) = delete;
  CommonControls6& operator=(const CommonControls6&) = delete;
  ~CommonControls6();

  // A function that only version 6 has; null if it is missing.
  FARPROC find(const char* function) const;

 private:
  ULONG_PTR cookie_ = 0;
};

}  // namespace kexlib

#endif
