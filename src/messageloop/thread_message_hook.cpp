#include <kexlib/messageloop/thread_message_hook.h>

#include <atomic>

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

// The hook procedure reads it without a lock, on the hooked thread: hence std::atomic_ref below.
constinit CThreadMessageHook* CThreadMessageHook::s_hooked_instance = nullptr;

CThreadMessageHook::CThreadMessageHook(int installNow, DWORD threadId) : thread_id_(threadId) {
  if (!InitializeCriticalSectionEx(&lock_, 0, 0)) AtlThrow(AtlHresultFromLastError());
  if (installNow) SetHook();
}

CThreadMessageHook::~CThreadMessageHook() {
  RemoveHook();
  // RemoveHook fails after the end of the hooked thread. The hook of another object must not find this one then.
  CThreadMessageHook* self = this;
  std::atomic_ref(s_hooked_instance).compare_exchange_strong(self, nullptr);
  DeleteCriticalSection(&lock_);
}

long CThreadMessageHook::SetHook() {
  Locked locked(lock_);
  if (hook_) return E_FAIL;
  // Before the hook is installed, since its procedure may be called at once. The instance of another object is replaced
  // and not restored: one object at a time.
  std::atomic_ref(s_hooked_instance).store(this);
  hook_ = SetWindowsHookExA(WH_GETMESSAGE, static_callback_function, nullptr, thread_id_);
  if (hook_) return S_OK;
  std::atomic_ref(s_hooked_instance).store(nullptr);
  return AtlHresultFromLastError();
}

long CThreadMessageHook::RemoveHook() {
  Locked locked(lock_);
  if (!hook_) return S_OK;
  if (!UnhookWindowsHookEx(hook_)) return AtlHresultFromLastError();
  hook_ = nullptr;
  // Also if another object has replaced this one: one object at a time.
  std::atomic_ref(s_hooked_instance).store(nullptr);
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
  // UnhookWindowsHookEx does not wait for a procedure that runs on another thread: the hook may have been removed while
  // this thread was on its way to the lock.
  if (!hook_) return;
  if (!msg->hwnd && is_registered_message(msg->message)) OnHookedMessage(msg);
}

// noexcept: an exception must not unwind the system's frames; the outcome would depend on the version of Windows.
LRESULT CALLBACK CThreadMessageHook::static_callback_function(int code, WPARAM wParam, LPARAM lParam) noexcept {
  // Read once for each use: another thread may clear it in between.
  CThreadMessageHook* hooked = std::atomic_ref(s_hooked_instance).load();
  // By design the hook code is ignored, and PM_REMOVE | PM_NOYIELD does not count: callers see removal by PM_REMOVE
  // only.
  if (wParam == PM_REMOVE && hooked) {
    hooked->on_message_removal(reinterpret_cast<MSG*>(lParam));
    hooked = std::atomic_ref(s_hooked_instance).load();  // the handler may have removed the hook
  }
  return hooked ? CallNextHookEx(hooked->hook_, code, wParam, lParam) : 0;
}
