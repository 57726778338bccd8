// Bad days for an operation: each call that it makes fails once, and then that call and all later ones.
//
//     const Call calls[] = {memory_call(), Call("USER32.dll", "SetTimer", &SetTimer, 0)};
//     const Operation operations[] = {{"SetEnabled", [](Attempt& attempt) {
//                                        Clock clock;
//                                        EXPECT_EQ(attempt([&] { clock.SetEnabled(1); }), "");   // nothing is thrown
//                                        EXPECT_EQ(clock.GetEnabled(), !attempt.failed());
//                                        ...                                                     // it is still usable
//                                      }}};
//     TEST(TimerFaults, NoCallThatFailsDoesHarm) { sweep_faults(calls, operations); }
//
// In round n the n-th call that the attempt makes fails, until a round makes fewer. A round may leave behind what one
// without a failure leaves, and nothing else: no block of memory, GDI object, window or kernel handle. Each call of the
// list must have failed in one of the operations.
#ifndef TESTS_SUPPORT_FAULT_SWEEP_H
#define TESTS_SUPPORT_FAULT_SWEEP_H

#include <gtest/gtest.h>

#include <kexlib/framework.h>

#include <afxdisp.h>

#include <support/c_library.h>
#include <support/import_override.h>
#include <support/leak_rounds.h>
#include <support/resource_counts.h>

#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace fault_sweep {

// Which call fails, on the thread of the sweep.
struct Plan {
  DWORD thread;
  int successes;  // before it
  bool lasting;   // whether all later ones fail too
  bool failed;

  bool next_call_fails() {
    if (GetCurrentThreadId() != thread || successes-- > 0) return false;
    const bool fails = !failed || lasting;
    failed = true;
    return fails;
  }
};
inline Plan plan{};

// Ends the plan: what comes out is told with memory.
struct Planned {
  Plan& plan;
  ~Planned() { plan.thread = 0; }
};

// What a function is replaced by, one at a time.
template <typename Result, typename... Arguments>
struct Replacement {
  static inline Result(WINAPI* real)(Arguments...);
  static inline Result failure;
  static inline DWORD error;

  static Result WINAPI call(Arguments... arguments) {
    if (!plan.next_call_fails()) return real(arguments...);
    SetLastError(error);
    return failure;
  }
};

using Overrides = std::vector<std::unique_ptr<ImportOverride>>;

}  // namespace fault_sweep

// A function that can fail.
class Call {
 public:
  // library: as kexlib.dll or kexframework.dll imports it; failure, error: its result and the last error then.
  template <typename Result, typename... Arguments>
  Call(const char* library, const char* name, Result(WINAPI* real)(Arguments...), std::type_identity_t<Result> failure,
       DWORD error = ERROR_NOT_ENOUGH_MEMORY, std::vector<const char*> importers = {"kexlib.dll", "kexframework.dll"})
      : name_(name), replace_([=] {
          using Replacement = fault_sweep::Replacement<Result, Arguments...>;
          Replacement::real = real;
          Replacement::failure = failure;
          Replacement::error = error;
          fault_sweep::Overrides made;
          for (const char* const importer : importers) {
            auto one = std::make_unique<ImportOverride>(importer, library, name, &Replacement::call);
            if (one->made()) made.push_back(std::move(one));
          }
          return made;
        }) {}

  const char* name() const { return name_; }
  // While the result lives, the function may fail; it is empty if nobody imports the function.
  fault_sweep::Overrides replace() const { return replace_(); }

 private:
  const char* name_;
  std::function<fault_sweep::Overrides()> replace_;
};

// operator new, and the memory of strings.
inline Call memory_call() {
  static const auto real = reinterpret_cast<void*(__cdecl*)(size_t)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(c_library::dll), "malloc")));
  return Call(c_library::dll, "malloc", real, nullptr, ERROR_NOT_ENOUGH_MEMORY,
              {"kexlib.dll", "kexframework.dll", c_library::allocator_of("kexlib.dll")});
}

// One round of an operation: calls fail while its action runs, not before and not afterwards.
class Attempt {
 public:
  Attempt(const Call* call, int successes, bool lasting) : call_(call), successes_(successes), lasting_(lasting) {}

  // Runs the action; returns the name of what it threw, "" for nothing.
  template <typename Action>
  std::string operator()(Action action) {
    const auto overrides = call_ ? call_->replace() : fault_sweep::Overrides();
    EXPECT_TRUE(!call_ || !overrides.empty()) << "nobody imports " << call_->name();
    std::string thrown;
    try {
      const fault_sweep::Planned planned{fault_sweep::plan = {GetCurrentThreadId(), successes_, lasting_, false}};
      action();
    } catch (CMemoryException* exception) {
      thrown = "CMemoryException";
      exception->Delete();
    } catch (COleException* exception) {
      thrown = "COleException";
      exception->Delete();
    } catch (CException* exception) {
      thrown = "CException";
      exception->Delete();
    } catch (const std::bad_alloc&) {
      thrown = "std::bad_alloc";
    } catch (...) {
      thrown = "another exception";
    }
    failed_ = failed_ || fault_sweep::plan.failed;
    return thrown;
  }

  // Whether a call has failed in the action, any or the one of this name.
  bool failed() const { return failed_; }
  bool failed(const std::string& name) const { return failed_ && name == call_->name(); }

  // Blocks of memory that stay behind in this round, and are not a leak of what is tested.
  void excuse(int blocks) { excused_blocks_ = blocks; }
  int excused_blocks() const { return excused_blocks_; }

 private:
  const Call* const call_;
  const int successes_;
  const bool lasting_;
  bool failed_ = false;
  int excused_blocks_ = 0;
};

// What a round leaves behind.
struct Left {
  int gdi_objects = 0, user_objects = 0, kernel_handles = 0, blocks = 0;
};

struct Operation {
  const char* name;
  std::function<void(Attempt&)> round;  // makes what it needs, looks at the result, and destroys what it has made
  Left by_design = {};                  // what its header says that it leaves behind if nothing fails
};

namespace fault_sweep {

// Counting takes longer than most rounds: each count serves two.
inline std::optional<ResourceCounts> counted;

// Runs a round; returns what it left behind.
inline Left run(const Operation& operation, Attempt& attempt) {
  const ResourceCounts before = counted.value_or(ResourceCounts());
  const int blocks = count_heap_blocks();
  operation.round(attempt);
  const int blocks_now = count_heap_blocks();
  const ResourceCounts now;
  counted = now;
  return {now.gdi_objects - before.gdi_objects, now.user_objects - before.user_objects,
          now.kernel_handles - before.kernel_handles, blocks_now - blocks};
}

inline std::string leak(const Left& found, const Left& allowed) {
  std::string text;
  const auto compare = [&](int Left::*kind, const char* name) {
    if (found.*kind > allowed.*kind) text += std::to_string(found.*kind - allowed.*kind) + " more " + name + " ";
  };
  compare(&Left::gdi_objects, "GDI objects");
  compare(&Left::user_objects, "windows");
  compare(&Left::kernel_handles, "kernel handles");
  compare(&Left::blocks, "blocks of memory");
  return text;
}

inline int failures() { return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count(); }

// Returns whether the call has failed and all was well. The system keeps some of what it makes: what is left in each of
// four rounds is a leak.
inline bool round(const Operation& operation, const Call& call, int successes, bool lasting, const Left& allowed) {
  const int failures_before = failures();
  std::string left;
  for (int i = 0; i < 4; ++i) {
    Attempt attempt(&call, successes, lasting);
    Left found = run(operation, attempt);
    found.blocks -= attempt.excused_blocks();
    left = leak(found, allowed);
    if (!attempt.failed() || failures() > failures_before) return false;
    if (left.empty()) return true;
  }
  ADD_FAILURE() << "leaves " << left;
  return false;
}

// What an operation leaves behind if nothing fails.
inline Left left_by(const Operation& operation) {
  Left left{};
  for (int i = 0; i < 3; ++i) {  // the system creates at the first use what it keeps
    Attempt attempt(nullptr, 0, false);
    left = run(operation, attempt);
  }
  return left;
}

}  // namespace fault_sweep

inline void sweep_faults(std::span<const Call> failing, std::span<const Operation> operations) {
  std::set<std::string> reached;
  fault_sweep::counted.reset();
  for (const Operation& operation : operations) {
    SCOPED_TRACE(operation.name);
    const Left allowed = fault_sweep::left_by(operation);
    for (const Call& call : failing) {
      const auto round = [&](int n, bool lasting) {
        SCOPED_TRACE(std::string(call.name()) + " " + std::to_string(n) + (lasting ? " and all later ones" : ""));
        return fault_sweep::round(operation, call, n, lasting, allowed);
      };
      int count = 0;
      while (round(count, false)) ++count;
      if (count > 0) reached.insert(call.name());
      for (int n = 0; n < count - 1 && round(n, true); ++n) continue;  // after the last one there is no later one
    }
  }
  for (const Call& call : failing) EXPECT_TRUE(reached.contains(call.name())) << "no operation calls " << call.name();
}

// Many rounds without a failure: each leaves behind what it does by design, and nothing else.
inline void repeat_rounds(std::span<const Operation> operations) {
  const int rounds = leak_rounds();
  for (const Operation& operation : operations) {
    SCOPED_TRACE(operation.name);
    const auto round = [&] {
      Attempt none(nullptr, 0, false);
      operation.round(none);
    };
    for (int i = 0; i < 20; ++i) round();  // the system creates at the first use what it keeps
    const ResourceCounts before;
    const int blocks = count_heap_blocks();
    for (int i = 0; i < rounds; ++i) round();
    const int blocks_now = count_heap_blocks();
    const ResourceCounts now;
    EXPECT_EQ(now.user_objects - before.user_objects, operation.by_design.user_objects * rounds);
    EXPECT_EQ(now.kernel_handles - before.kernel_handles, operation.by_design.kernel_handles * rounds);
    // The system sometimes keeps one, or frees an earlier one; a leak would be one in each round.
    EXPECT_NEAR(now.gdi_objects - before.gdi_objects, operation.by_design.gdi_objects * rounds, rounds / 5.0);
    EXPECT_NEAR(blocks_now - blocks, operation.by_design.blocks * rounds, rounds / 5.0);
  }
}

#endif
