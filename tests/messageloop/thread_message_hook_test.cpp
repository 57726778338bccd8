#include <gtest/gtest.h>

#include <afxdisp.h>

#include <messageloop/thread_message_hook_fixture.h>
#include <support/import_override.h>
#include <support/message_pump.h>

#include <new>
#include <vector>

namespace {

// ---- hooking and unhooking ------------------------------------------------------------------------------------------

TEST_F(ThreadMessageHook, IsNotHookedUnlessItIsAsked) {
  EXPECT_EQ(hook_.IsHooked(), 0);
  const RecordingHook unasked(0);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 0u);
  EXPECT_EQ(unasked.handled.size(), 0u);
}

TEST_F(ThreadMessageHook, IsHookedAtOnceWhereTheConstructorIsAsked) {
  RecordingHook hook(1);
  EXPECT_EQ(hook.IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook.handled.size(), 1u);
}

TEST_F(ThreadMessageHook, CannotBeHookedTwice) {
  EXPECT_EQ(hook_.SetHook(), S_OK);
  EXPECT_EQ(hook_.SetHook(), static_cast<long>(0x80004005));
  EXPECT_EQ(hook_.IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 1u);
}

TEST_F(ThreadMessageHook, CanBeUnhookedWheneverAndHookedAgain) {
  EXPECT_EQ(hook_.RemoveHook(), S_OK);
  hook_.SetHook();
  EXPECT_EQ(hook_.RemoveHook(), S_OK);
  EXPECT_EQ(hook_.IsHooked(), 0);
  EXPECT_EQ(hook_.RemoveHook(), S_OK);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 0u);
  EXPECT_EQ(hook_.SetHook(), S_OK);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 1u);
}

TEST_F(ThreadMessageHook, TellsWhyAThreadCannotBeHooked) {
  constexpr DWORD no_thread = 0xFFFFFFF0;
  SetLastError(0);
  ASSERT_EQ(SetWindowsHookExA(
                WH_GETMESSAGE, [](int, WPARAM, LPARAM) -> LRESULT { return 0; }, nullptr, no_thread),
            nullptr);
  const DWORD systems_error = GetLastError();
  ASSERT_NE(systems_error, 0u);
  RecordingHook nobody(1, no_thread);
  EXPECT_EQ(nobody.IsHooked(), 0);
  EXPECT_EQ(nobody.SetHook(), HRESULT_FROM_WIN32(systems_error));
  EXPECT_EQ(nobody.IsHooked(), 0);
}

TEST_F(ThreadMessageHook, AFailedHookLeavesNobodyWhoseHandlerIsCalled) {
  hook_.SetHook();
  RecordingHook nobody(1, 0xFFFFFFF0);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.IsHooked(), 1);
  EXPECT_EQ(hook_.handled.size(), 0u);
  EXPECT_EQ(nobody.handled.size(), 0u);
}

BOOL WINAPI refuse_to_unhook(HHOOK) {
  SetLastError(ERROR_INVALID_HOOK_HANDLE);
  return FALSE;
}

TEST_F(ThreadMessageHook, StaysHookedWhereTheSystemDoesNotUnhookIt) {
  hook_.SetHook();
  {
    const ImportOverride refusal("kexlib.dll", "USER32.dll", "UnhookWindowsHookEx", &refuse_to_unhook);
    ASSERT_TRUE(refusal.made());
    EXPECT_EQ(hook_.RemoveHook(), HRESULT_FROM_WIN32(ERROR_INVALID_HOOK_HANDLE));
  }
  EXPECT_EQ(hook_.IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 1u);
  EXPECT_EQ(hook_.RemoveHook(), S_OK);
}

std::vector<HHOOK> unhooked;

BOOL WINAPI record_unhooking(HHOOK hook) {
  unhooked.push_back(hook);
  return UnhookWindowsHookEx(hook);
}

TEST_F(ThreadMessageHook, IsUnhookedByItsDestructor) {
  const ImportOverride recorded("kexlib.dll", "USER32.dll", "UnhookWindowsHookEx", &record_unhooking);
  unhooked.clear();
  { const RecordingHook hook(1); }
  EXPECT_EQ(unhooked.size(), 1u);
  { const RecordingHook hook(0); }
  EXPECT_EQ(unhooked.size(), 1u);
  post_to_this_thread(listed);
  pump_waiting();
}

DWORD section_error;

BOOL WINAPI refuse_section(LPCRITICAL_SECTION, DWORD, DWORD) {
  SetLastError(section_error);
  return FALSE;
}

TEST_F(ThreadMessageHook, ThrowsWhereItsLockCannotBeMade) {
  const ImportOverride refusal("kexlib.dll", "KERNEL32.dll", "InitializeCriticalSectionEx", &refuse_section);
  ASSERT_TRUE(refusal.made());
  section_error = ERROR_NOT_ENOUGH_MEMORY;
  SCODE code = S_OK;
  try {
    const RecordingHook hook;
  } catch (COleException* exception) {
    code = exception->m_sc;
    exception->Delete();
  }
  EXPECT_EQ(code, HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY));

  section_error = ERROR_OUTOFMEMORY;
  bool out_of_memory = false;
  try {
    const RecordingHook hook;
  } catch (CMemoryException* exception) {
    out_of_memory = true;
    exception->Delete();
  }
  EXPECT_TRUE(out_of_memory);
}

std::vector<const CRITICAL_SECTION*> deleted_sections;
const CRITICAL_SECTION* made_section;
DWORD section_spins, section_flags;

BOOL WINAPI record_section(LPCRITICAL_SECTION section, DWORD spins, DWORD flags) {
  made_section = section;
  section_spins = spins;
  section_flags = flags;
  return InitializeCriticalSectionEx(section, spins, flags);
}

void WINAPI record_deletion(LPCRITICAL_SECTION section) {
  deleted_sections.push_back(section);
  DeleteCriticalSection(section);
}

TEST_F(ThreadMessageHook, ItsLockDoesNotSpinAndIsDeletedOnce) {
  const ImportOverride initialized("kexlib.dll", "KERNEL32.dll", "InitializeCriticalSectionEx", &record_section);
  const ImportOverride deleted("kexlib.dll", "KERNEL32.dll", "DeleteCriticalSection", &record_deletion);
  ASSERT_TRUE(initialized.made() && deleted.made());
  section_spins = section_flags = 4711;
  deleted_sections.clear();
  { const RecordingHook hook(1); }
  EXPECT_EQ(section_spins, 0u);
  EXPECT_EQ(section_flags, 0u);
  EXPECT_EQ(deleted_sections, std::vector<const CRITICAL_SECTION*>{made_section});
}

// Copies share the hook and, byte for byte, the lock; the copy is not destroyed, since it does not own the lock.
TEST_F(ThreadMessageHook, IsCopiedWithoutASecondHook) {
  hook_.SetHook();
  alignas(RecordingHook) char memory[sizeof(RecordingHook)];
  auto* copy = new (memory) RecordingHook(hook_);
  EXPECT_EQ(copy->IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 1u);
  EXPECT_EQ(copy->handled.size(), 0u);
}

// ---- two objects ----------------------------------------------------------------------------------------------------

// Both hooks call the object that was hooked last: it gets each message twice, the first one none.
TEST_F(ThreadMessageHook, IsTakenOverByASecondObject) {
  hook_.SetHook();
  RecordingHook second;
  EXPECT_EQ(second.SetHook(), S_OK);
  EXPECT_EQ(hook_.IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 0u);
  EXPECT_EQ(second.handled.size(), 2u);

  EXPECT_EQ(second.RemoveHook(), S_OK);
  EXPECT_EQ(hook_.IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 0u);  // there is no hooked instance now
  EXPECT_EQ(second.handled.size(), 2u);

  EXPECT_EQ(hook_.RemoveHook(), S_OK);
  EXPECT_EQ(hook_.SetHook(), S_OK);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(hook_.handled.size(), 1u);
}

TEST_F(ThreadMessageHook, RemovingTheFirstOfTwoStopsTheSecondToo) {
  hook_.SetHook();
  RecordingHook second(1);
  EXPECT_EQ(hook_.RemoveHook(), S_OK);
  EXPECT_EQ(second.IsHooked(), 1);
  post_to_this_thread(listed);
  pump_waiting();
  EXPECT_EQ(second.handled.size(), 0u);
}

// ---- posting --------------------------------------------------------------------------------------------------------

TEST_F(ThreadMessageHook, PostsWhatIsListedToItsThread) {
  hook_.SetHook();
  EXPECT_NE(hook_.PostHookMessage(listed_too, 3, 4), 0);
  MSG taken;
  ASSERT_TRUE(PeekMessageA(&taken, nullptr, 0, 0, PM_REMOVE));
  EXPECT_EQ(taken.hwnd, nullptr);
  EXPECT_EQ(taken.message, listed_too);
  EXPECT_EQ(taken.wParam, 3u);
  EXPECT_EQ(taken.lParam, 4);
}

TEST_F(ThreadMessageHook, PostsNothingThatIsNotListedAndNothingUnhooked) {
  EXPECT_EQ(hook_.PostHookMessage(listed, 0, 0), 0);
  hook_.SetHook();
  EXPECT_EQ(hook_.PostHookMessage(not_listed, 0, 0), 0);
  EXPECT_EQ(hook_.PostHookMessage(0, 0, 0), 0);
  hook_.RemoveHook();
  EXPECT_EQ(hook_.PostHookMessage(listed, 0, 0), 0);
  EXPECT_FALSE(take(listed));
  EXPECT_FALSE(take(not_listed));
  EXPECT_FALSE(take(0));
}

int posts, failing_posts;
std::vector<DWORD> naps;

BOOL WINAPI fail_at_first(DWORD thread, UINT message, WPARAM w, LPARAM l) {
  return ++posts > failing_posts && PostThreadMessageA(thread, message, w, l);
}

void WINAPI record_nap(DWORD time) { naps.push_back(time); }

TEST_F(ThreadMessageHook, PostsOnceMoreAfterAMillisecondWhereTheSystemRefuses) {
  const ImportOverride post("kexlib.dll", "USER32.dll", "PostThreadMessageA", &fail_at_first);
  const ImportOverride nap("kexlib.dll", "KERNEL32.dll", "Sleep", &record_nap);
  ASSERT_TRUE(post.made());
  ASSERT_TRUE(nap.made());
  hook_.SetHook();
  const auto posted = [&](int failing) {
    posts = 0;
    failing_posts = failing;
    naps.clear();
    return hook_.PostHookMessage(listed, 0, 0) != 0;
  };
  EXPECT_TRUE(posted(0));
  EXPECT_EQ(posts, 1);
  EXPECT_EQ(naps, std::vector<DWORD>{});
  EXPECT_TRUE(take(listed));

  EXPECT_TRUE(posted(1));
  EXPECT_EQ(posts, 2);
  EXPECT_EQ(naps, std::vector<DWORD>{1});
  EXPECT_TRUE(take(listed));

  EXPECT_FALSE(posted(2));
  EXPECT_EQ(posts, 2);
  EXPECT_EQ(naps, std::vector<DWORD>{1});
  EXPECT_FALSE(take(listed));
}

}  // namespace
