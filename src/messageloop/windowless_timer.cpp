#include <kexlib/messageloop/windowless_timer.h>

#include <messageloop/timer_registry.h>
#include <module/process_end.h>

#include <algorithm>
#include <utility>

namespace kexlib {

TimerRegistry::TimerRegistry() {
  const HRESULT made = lock_.Init();
  if (FAILED(made)) AtlThrow(made);
}

TimerRegistry::~TimerRegistry() {
  if (process_is_ending()) return;
  while (newest_) delete std::exchange(newest_, newest_->next);
  lock_.Term();
}

void TimerRegistry::add(CATLWindowLessTimer* timer) {
  CComCritSecLock<CComCriticalSection> locked(lock_);
  newest_ = new Node{timer, GetCurrentThreadId(), newest_};
}

void TimerRegistry::remove(const CATLWindowLessTimer* timer) {
  CComCritSecLock<CComCriticalSection> locked(lock_);
  for (Node** link = &newest_; *link; link = &(*link)->next) {
    if ((*link)->timer != timer) continue;
    delete std::exchange(*link, (*link)->next);
    return;
  }
}

void TimerRegistry::tick(HWND window, UINT message, UINT_PTR id, DWORD time) {
  // Held during the tick by design: callers rely on no timer of another thread ticking, starting or stopping meanwhile.
  CComCritSecLock<CComCriticalSection> locked(lock_);
  const DWORD thread = GetCurrentThreadId();
  for (const Node* node = newest_; node; node = node->next) {
    // On some systems ids are unique within one thread only.
    if (node->thread != thread || node->timer->timer_id_ != id) continue;
    node->timer->TimerProc(window, message, id, time);
    return;
  }
  // Not found: the timer was stopped after its message had left the queue.
}

// noexcept: depending on a flag of the process, the system would discard an exception, and the lock would stay held.
void CALLBACK TimerRegistry::TimerRegistryProc(HWND window, UINT message, UINT_PTR id, DWORD time) noexcept {
  timers.tick(window, message, id, time);
}

}  // namespace kexlib

using kexlib::TimerRegistry;

CATLWindowLessTimer::CATLWindowLessTimer() = default;

CATLWindowLessTimer::CATLWindowLessTimer(const CATLWindowLessTimer&) = default;

CATLWindowLessTimer& CATLWindowLessTimer::operator=(const CATLWindowLessTimer&) = default;

// By design it does not stop the timer: derived classes do, while OnTimerTick still exists.
CATLWindowLessTimer::~CATLWindowLessTimer() = default;

short CATLWindowLessTimer::GetEnabled() const { return timer_id_ ? 1 : 0; }

void CATLWindowLessTimer::SetEnabled(short enable) { enable ? _Start() : _Stop(); }

long CATLWindowLessTimer::GetInterval() const { return interval_; }

void CATLWindowLessTimer::SetInterval(long ms) {
  constexpr long shortest = 50;
  const bool starts_afresh = timer_id_ && ms != interval_;  // ms as given: 10 on a timer of 50 is a change
  if (starts_afresh) _Stop();
  interval_ = std::max(ms, shortest);
  if (starts_afresh) _Start();
}

int CATLWindowLessTimer::GetRepeatable() const { return repeatable_ ? 1 : 0; }

void CATLWindowLessTimer::SetRepeatable(int repeat) { repeatable_ = repeat ? VARIANT_TRUE : VARIANT_FALSE; }

short CATLWindowLessTimer::GetSuspended() const { return suspended_; }

void CATLWindowLessTimer::SetSuspended(short suspend) {
  suspended_ = suspend;
  if (suspended_ || !tick_pending_) return;
  OnTimerTick();
  tick_pending_ = 0;
}

void CATLWindowLessTimer::FinalRelease() { _Stop(); }

void CATLWindowLessTimer::_Start() {
  if (timer_id_) return;
  // Kept for compatibility: if the timer is refused, callers see the object stay registered.
  kexlib::timers.add(this);
  timer_id_ = SetTimer(nullptr, 0, static_cast<UINT>(interval_), &TimerRegistry::TimerRegistryProc);
}

void CATLWindowLessTimer::_Stop() {
  if (!timer_id_) return;
  kexlib::timers.remove(this);
  KillTimer(nullptr, timer_id_);
  timer_id_ = 0;
}

void CATLWindowLessTimer::TimerProc(HWND, UINT, UINT_PTR id, DWORD) {
  if (timer_id_ != id || in_tick_) return;  // a tick during the tick, in a nested loop, is dropped
  in_tick_ = 1;
  if (suspended_) {
    // By design a timer that does not repeat is not stopped here: callers see it tick again after the held tick.
    tick_pending_ = 1;
  } else {
    if (!repeatable_) _Stop();
    OnTimerTick();
  }
  in_tick_ = 0;
}

CComObjectRootExSTM::CComObjectRootExSTM() = default;

CComObjectRootExSTM::CComObjectRootExSTM(const CComObjectRootExSTM&) = default;

CComObjectRootExSTM& CComObjectRootExSTM::operator=(const CComObjectRootExSTM&) = default;

ULONG CComObjectRootExSTM::InternalAddRef() { return ++references_; }

ULONG CComObjectRootExSTM::InternalRelease() { return --references_; }

void CComObjectRootExSTM::Lock() {}

void CComObjectRootExSTM::Unlock() {}

HRESULT CComObjectRootExSTM::_AtlInitialConstruct() { return S_OK; }

void link() {}
