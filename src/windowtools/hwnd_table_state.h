#ifndef KEXLIB_WINDOWTOOLS_HWND_TABLE_STATE_H
#define KEXLIB_WINDOWTOOLS_HWND_TABLE_STATE_H

#include <windows.h>

class kexHWNDTable;

namespace kexlib {

// The table of the process and the hook that serves it.
struct HwndTableState {
  constexpr HwndTableState() = default;
  HwndTableState(const HwndTableState&) = delete;
  HwndTableState& operator=(const HwndTableState&) = delete;
  // As delete_singleton; but at the end of the process both go with it.
  ~HwndTableState();

  kexHWNDTable* table = nullptr;
  HHOOK hook = nullptr;
};

}  // namespace kexlib

#endif
