#include <afx.h>
#include <atlbase.h>
#include <gdiplus.h>

#include <framework/gdi_plus.h>

namespace framework::gdi_plus {

namespace {

CComAutoCriticalSection guard;
unsigned users = 0;
ULONG_PTR token = 0;  // 0: GDI+ is not started

void shut_down_guarded() noexcept {
  if (token) Gdiplus::GdiplusShutdown(token);
  token = 0;
}

}  // namespace

void add_user() noexcept {
  CComCritSecLock<CComAutoCriticalSection> lock(guard);
  ++users;
}

void remove_user() noexcept {
  CComCritSecLock<CComAutoCriticalSection> lock(guard);
  if (--users == 0) shut_down_guarded();
}

bool start() noexcept {
  CComCritSecLock<CComAutoCriticalSection> lock(guard);
  if (token) return true;
  Gdiplus::GdiplusStartupInput input;
  if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) token = 0;
  return token != 0;
}

void shut_down() noexcept {
  CComCritSecLock<CComAutoCriticalSection> lock(guard);
  shut_down_guarded();
}

}  // namespace framework::gdi_plus
