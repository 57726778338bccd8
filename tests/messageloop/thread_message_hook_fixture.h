// Shared by the tests of the thread message hook: a hook that records, and messages for it.
#ifndef TESTS_MESSAGELOOP_THREAD_MESSAGE_HOOK_FIXTURE_H
#define TESTS_MESSAGELOOP_THREAD_MESSAGE_HOOK_FIXTURE_H

#include <gtest/gtest.h>

#include <kexlib/messageloop/thread_message_hook.h>

#include <support/message_pump.h>

#include <functional>
#include <vector>

inline constexpr UINT listed = WM_APP + 1;
inline constexpr UINT listed_too = WM_APP + 2;
inline constexpr UINT not_listed = WM_APP + 3;
inline constexpr DWORD ages = 20000;

class RecordingHook : public CThreadMessageHook {
 public:
  using CThreadMessageHook::CThreadMessageHook;

  const UINT* GetHookedMessages() override { return list; }
  void OnHookedMessage(MSG* msg) override {
    handled.push_back(*msg);
    threads.push_back(GetCurrentThreadId());
    if (on_message) on_message(*msg);
  }

  const UINT both[3] = {listed, listed_too, 0};
  const UINT* list = both;
  std::vector<MSG> handled;
  std::vector<DWORD> threads;
  std::function<void(const MSG&)> on_message;
};

inline void post_to_this_thread(UINT message, WPARAM w = 0, LPARAM l = 0) {
  ASSERT_TRUE(PostThreadMessageA(GetCurrentThreadId(), message, w, l));
}

// Whether a message of this number is in this thread's queue; removes it.
inline bool take(UINT message) {
  MSG taken;
  return PeekMessageA(&taken, nullptr, message, message, PM_REMOVE);
}

class ThreadMessageHook : public testing::Test {
 protected:
  ThreadMessageHook() { pump_waiting(); }
  ~ThreadMessageHook() override { pump_waiting(); }

  RecordingHook hook_;
};

#endif
