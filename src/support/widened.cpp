#include <support/widened.h>

CComBSTR kexlib::widened(const char* text) {
  CComBSTR wide;
  if (!text) return wide;
  const int size = MultiByteToWideChar(CP_THREAD_ACP, 0, text, -1, nullptr, 0);  // with the zero at the end
  if (size > 0) wide.Attach(SysAllocStringLen(nullptr, static_cast<UINT>(size) - 1));
  if (!wide || MultiByteToWideChar(CP_THREAD_ACP, 0, text, -1, wide, size) != size) AtlThrow(E_OUTOFMEMORY);
  return wide;
}
