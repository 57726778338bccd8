#include <atlbase.h>

#include <kexlib/messageloop/thread_message_hook.h>

namespace {

class Locked {
 public:
  explicit Locked(CRITICAL_SECTION& section) : section_(section) { EnterCriticalSection(&section_); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;
  ~Locked() { LeaveCriticalSection(&section_); }

 private:
  CRITICAL_SECTION& section_;
};

}  // namespace

CThreadMessageHook::CThreadMessageHook(int installNow, DWORD threadId) : thread_id_(threadId) {
  if (!InitializeCriticalSectionEx(&lock_, 0, 0)) AtlThrow(AtlHresultFromLastError());
  if (installNow) SetHook();
}

CThreadMessageHook::~CThreadMessageHook() {
  RemoveHook();
  DeleteCriticalSection(&lock_);
}

long CThreadMessageHook::SetHook() {
  Locked locked(lock_);
  if (hook_) return E_FAIL;
  // Before the hook is there, which may be called at once. Another object's instance is taken over, and not given back.
  s_hooked_instance = this;
  hook_ = SetWindowsHookExA(WH_GETMESSAGE, static_callback_function, nullptr, thread_id_);
  if (hook_) return S_OK;
  s_hooked_instance = nullptr;
  return AtlHresultFromLastError();
}

long CThreadMessageHook::RemoveHook() {
  Locked locked(lock_);
  if (!hook_) return S_OK;
  if (!UnhookWindowsHookEx(hook_)) return AtlHresultFromLastError();
  hook_ = nullptr;
  // Even where it is another object's by now: one object at a time.
  s_hooked_instance = nullptr;
  return S_OK;
}

int CThreadMessageHook::IsHooked() {
  Locked locked(lock_);
  return hook_ ? 1 : 0;
}

int CThreadMessageHook::PostHookMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  Locked locked(lock_);
  if (!hook_ || !is_registered_message(message)) return 0;
  if (PostThreadMessageA(thread_id_, message, wParam, lParam)) return 1;
  Sleep(1);  // the queue is full, or the thread has none yet
  return PostThreadMessageA(thread_id_, message, wParam, lParam);
}

int CThreadMessageHook::is_registered_message(UINT message) {
  const UINT* listed = GetHookedMessages();
  if (!listed) return 0;
  for (; *listed; ++listed)
    if (*listed == message) return 1;
  return 0;
}

void CThreadMessageHook::on_message_removal(MSG* msg) {
  Locked locked(lock_);
  if (!msg->hwnd && is_registered_message(msg->message)) OnHookedMessage(msg);
}

// noexcept: an exception must not unwind the system's code, and what would become of it there differs.
LRESULT CALLBACK CThreadMessageHook::static_callback_function(int code, WPARAM wParam, LPARAM lParam) noexcept {
  // Equal, although Windows may add PM_NOYIELD, and whatever the code: both are meant.
  if (wParam == PM_REMOVE && s_hooked_instance) s_hooked_instance->on_message_removal(reinterpret_cast<MSG*>(lParam));
  // The handler may have unhooked the object.
  if (!s_hooked_instance) return 0;
  return CallNextHookEx(s_hooked_instance->hook_, code, wParam, lParam);
}
