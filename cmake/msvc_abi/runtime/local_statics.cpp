// Static variables of functions, which the first thread that comes by initialises. The compiler keeps a number beside
// each: 0 not initialised, -1 being so, otherwise the epoch in which it was done.
#include <windows.h>
#include <limits.h>

static SRWLOCK lock = SRWLOCK_INIT;
static CONDITION_VARIABLE changed = CONDITION_VARIABLE_INIT;

extern "C" {

int _Init_global_epoch = INT_MIN;
__declspec(thread) int _Init_thread_epoch = INT_MIN;

// Returns with -1 in the number if the caller is to initialise the variable.
void __cdecl _Init_thread_header(int* state) {
  AcquireSRWLockExclusive(&lock);
  while (*state == -1) SleepConditionVariableSRW(&changed, &lock, INFINITE, 0);
  if (*state == 0) {
    *state = -1;
  } else {
    _Init_thread_epoch = _Init_global_epoch;
  }
  ReleaseSRWLockExclusive(&lock);
}

static void leave(int* state, int now) {
  *state = now;
  ReleaseSRWLockExclusive(&lock);
  WakeAllConditionVariable(&changed);
}

void __cdecl _Init_thread_footer(int* state) {
  AcquireSRWLockExclusive(&lock);
  _Init_thread_epoch = ++_Init_global_epoch;
  leave(state, _Init_global_epoch);
}

// After an exception in the initialisation.
void __cdecl _Init_thread_abort(int* state) {
  AcquireSRWLockExclusive(&lock);
  leave(state, 0);
}
}
