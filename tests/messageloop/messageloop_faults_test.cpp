// Calls that fail in waits, hooks and timers, for each function of the family.
#include <gtest/gtest.h>

#include <kexlib/messageloop/message_wait.h>
#include <kexlib/messageloop/thread_message_hook.h>

#include <messageloop/windowless_timer_fixture.h>
#include <support/fault_sweep.h>

#include <memory>

namespace {

constexpr UINT hooked_message = WM_APP + 1;
const long no_memory = HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY);

class Hook final : public CThreadMessageHook {
 public:
  ~Hook() override { RemoveHook(); }
  const UINT* GetHookedMessages() override {
    static constexpr UINT messages[] = {hooked_message, 0};
    return messages;
  }
  void OnHookedMessage(MSG*) override { ++handled; }
  int handled = 0;
};

// A refused SetTimer leaves the object in a list, by design: windowless_timer_test.cpp.
const Call failing_calls[] = {
    memory_call(),
    Call("KERNEL32.dll", "InitializeCriticalSectionEx", &InitializeCriticalSectionEx, FALSE),
    Call("KERNEL32.dll", "WaitForMultipleObjects", &WaitForMultipleObjects, WAIT_FAILED),
    Call("USER32.dll", "MsgWaitForMultipleObjects", &MsgWaitForMultipleObjects, WAIT_FAILED),
    Call("USER32.dll", "PeekMessageA", &PeekMessageA, FALSE),
    Call("USER32.dll", "SetWindowsHookExA", &SetWindowsHookExA, nullptr),
    Call("USER32.dll", "UnhookWindowsHookEx", &UnhookWindowsHookEx, FALSE),
    Call("USER32.dll", "PostThreadMessageA", &PostThreadMessageA, FALSE),
    Call("USER32.dll", "KillTimer", &KillTimer, FALSE),
};

const Operation operations[] = {
    {"SafeWaitWithMessageLoop",
     [](Attempt& attempt) {
       const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
       DWORD result = 99;
       EXPECT_EQ(attempt([&] { result = SafeWaitWithMessageLoop(1, &event, 30, FALSE, nullptr); }), "");
       EXPECT_EQ(result, attempt.failed() && !attempt.failed("PeekMessageA") ? WAIT_FAILED : DWORD{WAIT_TIMEOUT});
       SetEvent(event);
       EXPECT_EQ(SafeWaitWithMessageLoop(1, &event, 1, FALSE, nullptr), DWORD{WAIT_OBJECT_0});
       CloseHandle(event);
     }},
    {"SafeWaitServiceMessageQueue",
     [](Attempt& attempt) {
       MSG message;
       while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) continue;
       PostThreadMessageA(GetCurrentThreadId(), hooked_message, 0, 0);
       int served = -1;
       EXPECT_EQ(attempt([&] { served = SafeWaitServiceMessageQueue(0, nullptr); }), "");
       EXPECT_EQ(served, !attempt.failed());
       EXPECT_EQ(SafeWaitServiceMessageQueue(0, nullptr), attempt.failed());
     }},
    {"CThreadMessageHook",
     [](Attempt& attempt) {
       std::unique_ptr<Hook> hook;
       const std::string thrown = attempt([&] { hook = std::make_unique<Hook>(); });
       if (attempt.failed("InitializeCriticalSectionEx")) {
         EXPECT_EQ(thrown, "COleException");
       } else {
         EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
       }
       EXPECT_EQ(hook == nullptr, attempt.failed());
     }},
    {"SetHook",
     [](Attempt& attempt) {
       Hook hook;
       long result = -1;
       EXPECT_EQ(attempt([&] { result = hook.SetHook(); }), "");
       EXPECT_EQ(result, attempt.failed() ? no_memory : S_OK);
       EXPECT_EQ(hook.IsHooked(), !attempt.failed());
       EXPECT_EQ(hook.SetHook(), attempt.failed() ? S_OK : E_FAIL);
       EXPECT_EQ(hook.IsHooked(), 1);
     }},
    {"RemoveHook",
     [](Attempt& attempt) {
       Hook hook;
       EXPECT_EQ(hook.SetHook(), S_OK);
       long result = -1;
       EXPECT_EQ(attempt([&] { result = hook.RemoveHook(); }), "");
       EXPECT_EQ(result, attempt.failed() ? no_memory : S_OK);
       EXPECT_EQ(hook.IsHooked(), attempt.failed());
       EXPECT_EQ(hook.RemoveHook(), S_OK);
       EXPECT_EQ(hook.IsHooked(), 0);
     }},
    {"PostHookMessage",
     [](Attempt& attempt) {
       Hook hook;
       EXPECT_EQ(hook.SetHook(), S_OK);
       int posted = -1;
       EXPECT_EQ(attempt([&] { posted = hook.PostHookMessage(hooked_message, 0, 0); }), "");
       while (SafeWaitServiceMessageQueue(0, nullptr)) continue;
       EXPECT_EQ(hook.handled, posted != 0);
       if (!attempt.failed()) {
         EXPECT_NE(posted, 0);
       }
       EXPECT_NE(hook.PostHookMessage(hooked_message, 0, 0), 0);
       while (SafeWaitServiceMessageQueue(0, nullptr)) continue;
       EXPECT_EQ(hook.handled, 1 + (posted != 0));
     }},
    {"SetEnabled",
     [](Attempt& attempt) {
       CComPtr<TimerObject> timer = new TimerObject;
       const std::string thrown = attempt([&] { timer->SetEnabled(1); });
       EXPECT_EQ(thrown, attempt.failed() ? "std::bad_alloc" : "");
       EXPECT_EQ(timer->GetEnabled(), !attempt.failed());
       timer->SetEnabled(1);
       EXPECT_EQ(timer->GetEnabled(), 1);
     }},
    {"SetEnabled, to stop",
     [](Attempt& attempt) {
       const CComPtr<TimerObject> timer = make_timer();
       timer->SetEnabled(1);
       EXPECT_EQ(attempt([&] { timer->SetEnabled(0); }), "");
       EXPECT_EQ(timer->GetEnabled(), 0);
       if (!attempt.failed("KillTimer")) return;
       MSG tick;  // the system's timer goes on, and would disturb later rounds
       EXPECT_TRUE(GetMessageA(&tick, nullptr, WM_TIMER, WM_TIMER));
       DispatchMessageA(&tick);
       EXPECT_EQ(timer->ticks, 0);
       EXPECT_TRUE(KillTimer(nullptr, tick.wParam));
     }},
};

TEST(MessageLoopFaults, NoCallThatFailsDoesHarm) { sweep_faults(failing_calls, operations); }

TEST(MessageLoopFaults, RoundsWithoutOneLeaveNothingBehind) { repeat_rounds(operations); }

}  // namespace
