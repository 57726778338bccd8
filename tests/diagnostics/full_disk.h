// A disk that becomes full.
#ifndef TESTS_DIAGNOSTICS_FULL_DISK_H
#define TESTS_DIAGNOSTICS_FULL_DISK_H

#include <windows.h>

#include <support/import_override.h>

#include <algorithm>

// While the object lives, the files that kexlib.dll writes have room for some bytes in all. As on a real disk, a write
// that does not fit fails, and what fitted is written.
class FullDisk {
 public:
  explicit FullDisk(DWORD room) : write_("kexlib.dll", "KERNEL32.dll", "WriteFile", &write) { left = room; }

  bool made() const { return write_.made(); }

 private:
  static BOOL WINAPI write(HANDLE file, LPCVOID data, DWORD size, DWORD* written, OVERLAPPED* overlapped) {
    const DWORD fitting = std::min(size, left);
    left -= fitting;
    if (!WriteFile(file, data, fitting, written, overlapped)) return FALSE;
    if (fitting == size) return TRUE;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
  }

  inline static DWORD left;
  ImportOverride write_;
};

#endif
