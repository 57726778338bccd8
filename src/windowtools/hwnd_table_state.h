#ifndef KEXLIB_WINDOWTOOLS_HWND_TABLE_STATE_H
#define KEXLIB_WINDOWTOOLS_HWND_TABLE_STATE_H

#include <kexlib/windows.h>

class kexHWNDTable;

namespace kexlib {

// The table of the process and the hook that serves it.
struct HwndTableState {
  constexpr HwndTableState() = default;
  HwndTableState(const HwndTableState&) = delete;
  HwndTableState& operator=(const HwndTableState&) = delete;
  // As delete_singleton, unless the process ends: then the system cleans up.
  ~HwndTableState();

  kexHWNDTable* table = nullptr;
  HHOOK hook = nullptr;
};

extern HwndTableState hwnd_table;

}  // namespace kexlib

#endif
