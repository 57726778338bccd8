// An observer of access violations that nobody else reports.
//
//     FaultObserver faults;
//     SendMessage(window, WM_PAINT, 0, 0);      // runs code of yours inside the system's
//     EXPECT_EQ(faults.problem(), "");
//     // 1 fault: access violation at chart.dll+0x1a2b paint() chart.cpp:17, write to 0x0000000000000010
//
// The system may handle a fault in a window procedure, a hook or a timer callback itself and continue: a test that only
// looks at the result does not notice. The observer sees a fault when it is raised, before any handler
// (AddVectoredExceptionHandler), and lets it go on: what happens next is as without it.
//
// Faults are access violations, in-page errors, illegal or privileged instructions, and divisions of an integer by
// zero. Those in the system's own modules are not counted: the system raises and handles some, to probe a pointer. So a
// function of the system that is given a bad pointer is not counted either. Faults that your code handles are counted.
//
// Threads. Observes all threads of the process for as long as it lives; several may live at once, and each counts. Its
// members may be called on any thread.
#ifndef KEXLIB_TESTING_FAULT_OBSERVER_H
#define KEXLIB_TESTING_FAULT_OBSERVER_H

#include <kexlib/testing/code_place.h>
#include <kexlib/windows.h>

#include <windows.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace kexlib::testing {

/// Whether this is the code of an exception that a fault raises.
inline bool is_fault(DWORD exception_code) {
  return exception_code == EXCEPTION_ACCESS_VIOLATION || exception_code == EXCEPTION_IN_PAGE_ERROR ||
         exception_code == EXCEPTION_ILLEGAL_INSTRUCTION || exception_code == EXCEPTION_PRIV_INSTRUCTION ||
         exception_code == EXCEPTION_INT_DIVIDE_BY_ZERO;
}

/// A fault that was observed.
struct Fault {
  DWORD code = 0;                     ///< EXCEPTION_ACCESS_VIOLATION and its like
  const void* instruction = nullptr;  ///< the instruction that raised it
  ULONG_PTR access = 0;               ///< of an access violation or in-page error: 0 read, 1 write, 8 execute
  ULONG_PTR address = 0;              ///< of those: what was accessed
  DWORD thread = 0;                   ///< the thread

  /// What it was and where: "access violation at chart.dll+0x1a2b paint() chart.cpp:17, write to 0x0000000000000010".
  std::string text() const {
    const bool accesses = code == EXCEPTION_ACCESS_VIOLATION || code == EXCEPTION_IN_PAGE_ERROR;
    char end[50] = "";
    if (accesses)
      std::snprintf(end, sizeof end, ", %s 0x%016llx",
                    access == 0   ? "read of"
                    : access == 1 ? "write to"
                                  : "execution of",
                    static_cast<unsigned long long>(address));
    return std::string(code == EXCEPTION_ACCESS_VIOLATION     ? "access violation"
                       : code == EXCEPTION_IN_PAGE_ERROR      ? "in-page error"
                       : code == EXCEPTION_INT_DIVIDE_BY_ZERO ? "division by zero"
                                                              : "illegal instruction") +
           " at " + code_place(instruction) + end;
  }
};

/// Counts faults while it lives.
class FaultObserver {
 public:
  /// Observes all code but the system's: the program, its DLLs, and what lies in no module.
  FaultObserver() : FaultObserver(std::vector<HMODULE>()) {}

  /// Observes these modules only, those of the system too.
  explicit FaultObserver(std::vector<HMODULE> modules) : modules_(std::move(modules)) {
    const Locked locked;
    if (!first()) handler() = AddVectoredExceptionHandler(TRUE, observe);
    next_ = first();
    first() = this;
  }

  FaultObserver(const FaultObserver&) = delete;
  FaultObserver& operator=(const FaultObserver&) = delete;

  ~FaultObserver() {
    void* unused = nullptr;
    {
      const Locked locked;
      FaultObserver** place = &first();
      while (*place != this) place = &(*place)->next_;
      *place = next_;
      if (!first()) unused = std::exchange(handler(), nullptr);
    }
    // Outside the lock: it waits for a handler that runs, which may wait for the lock.
    if (unused) RemoveVectoredExceptionHandler(unused);
  }

  /// The number of faults up to now.
  int count() const {
    const Locked locked;
    return count_;
  }

  /// The faults up to now, the first 16 of them.
  std::vector<Fault> faults() const {
    const Locked locked;
    return {faults_, faults_ + (count_ < most_kept ? count_ : most_kept)};
  }

  /// Empty if there was none, otherwise a sentence for each, one in a line.
  std::string problem() const {
    const int number = count();
    if (number == 0) return "";
    std::string text = std::to_string(number) + (number == 1 ? " fault:" : " faults:");
    const std::vector<Fault> kept = faults();
    for (const Fault& fault : kept) text += (kept.size() == 1 ? " " : "\n  ") + fault.text();
    return text;
  }

 private:
  static constexpr int most_kept = 16;

  // One lock for all observers. Nothing is allocated while it is held: a fault may be the heap's.
  struct Locked {
    Locked() { AcquireSRWLockExclusive(&lock()); }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;
    ~Locked() { ReleaseSRWLockExclusive(&lock()); }
    static SRWLOCK& lock() {
      static SRWLOCK one = SRWLOCK_INIT;
      return one;
    }
  };
  static FaultObserver*& first() {
    static FaultObserver* one = nullptr;
    return one;
  }
  static void*& handler() {
    static void* one = nullptr;
    return one;
  }

  static LONG CALLBACK observe(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (!is_fault(record.ExceptionCode)) return EXCEPTION_CONTINUE_SEARCH;
    const HMODULE module = module_of(record.ExceptionAddress);
    const bool is_system = is_code_of_the_system(record.ExceptionAddress);
    Fault fault;
    fault.code = record.ExceptionCode;
    fault.instruction = record.ExceptionAddress;
    if (record.NumberParameters >= 2) {
      fault.access = record.ExceptionInformation[0];
      fault.address = record.ExceptionInformation[1];
    }
    fault.thread = GetCurrentThreadId();
    const Locked locked;
    for (FaultObserver* observer = first(); observer; observer = observer->next_)
      if (observer->observes(module, is_system)) observer->keep(fault);
    return EXCEPTION_CONTINUE_SEARCH;
  }

  bool observes(HMODULE module, bool is_system) const {
    if (modules_.empty()) return !is_system;
    for (const HMODULE one : modules_)
      if (one == module) return true;
    return false;
  }

  void keep(const Fault& fault) {
    if (count_ < most_kept) faults_[count_] = fault;
    ++count_;
  }

  std::vector<HMODULE> modules_;
  FaultObserver* next_ = nullptr;
  Fault faults_[most_kept];
  int count_ = 0;
};

}  // namespace kexlib::testing

#endif
