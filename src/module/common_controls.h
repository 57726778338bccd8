#ifndef KEXLIB_MODULE_COMMON_CONTROLS_H
#define KEXLIB_MODULE_COMMON_CONTROLS_H

#include <windows.h>

#include <atomic>

namespace kexlib::module {

// The activation context of this module's own manifest (version.rc), made at its first use: that takes a search for
// files, as long as a tenth of showing a dialog.
class OwnManifest {
 public:
  constexpr OwnManifest() = default;
  OwnManifest(const OwnManifest&) = delete;
  OwnManifest& operator=(const OwnManifest&) = delete;
  ~OwnManifest();

  // Null where it cannot be made.
  HANDLE context();

 private:
  std::atomic<HANDLE> context_{nullptr};
};

// Version 6 of the common controls, which a program without the manifest for it lacks. While the object lives, that of
// this module holds on this thread.
class CommonControls6 {
 public:
  CommonControls6();
  CommonControls6(const CommonControls6&) = delete;
  CommonControls6& operator=(const CommonControls6&) = delete;
  ~CommonControls6();

  // A function that version 6 alone has; null where it is not there.
  FARPROC find(const char* function) const;

 private:
  ULONG_PTR cookie_ = 0;
};

}  // namespace kexlib::module

#endif
