#include <gtest/gtest.h>

#include <kexlib/testing/resource_balance.h>

#include <support/files.h>

#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using kexlib::testing::CountingObject;
using kexlib::testing::leak_of_rounds;
using kexlib::testing::ResourceBalance;
using kexlib::testing::ResourceCounts;

HWND make_window(HWND parent = nullptr) {
  return CreateWindowA("STATIC", "", parent && parent != HWND_MESSAGE ? WS_CHILD : WS_POPUP, 0, 0, 9, 9, parent,
                       nullptr, nullptr, nullptr);
}

// Makes events, and closes them but for the last one.
HANDLE last_of_events(
    int count, const std::function<void()>& while_all_are_open = [] {}) {
  std::vector<HANDLE> events;
  for (int i = 0; i < count; ++i) events.push_back(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  while_all_are_open();
  const HANDLE last = events.back();
  events.pop_back();
  for (const HANDLE event : events) CloseHandle(event);
  return last;
}

class TestingResourceBalance : public testing::Test {
 protected:
  // What the first use creates and keeps.
  TestingResourceBalance() {
    DestroyWindow(make_window());
    DeleteObject(CreateSolidBrush(RGB(1, 2, 3)));
    CloseHandle(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    static_cast<void>(ResourceCounts());
  }
};

TEST_F(TestingResourceBalance, CountsEachKind) {
  const ResourceCounts counts;
  EXPECT_GE(counts.gdi_objects, 0);
  EXPECT_GE(counts.user_objects, 0);
  EXPECT_GT(counts.kernel_handles, 0);
}

// First, while no more handles have been seen than a program has at its start.
TEST_F(TestingResourceBalance, FindsTheLastOfTwoHundredHandles) {
  const ResourceBalance balance;
  const HANDLE last = last_of_events(200);
  EXPECT_EQ(balance.problem(), "1 more kernel handle");
  CloseHandle(last);
  EXPECT_EQ(balance.problem(), "");
}

TEST_F(TestingResourceBalance, FindsHandlesBeyondThoseThatWereClosed) {
  std::optional<ResourceBalance> balance;
  const HANDLE last = last_of_events(2000, [&] { balance.emplace(); });
  EXPECT_EQ(balance->problem(), "1999 fewer kernel handles");
  CloseHandle(last);
  EXPECT_EQ(balance->problem(), "2000 fewer kernel handles");
}

TEST_F(TestingResourceBalance, IsEvenWhereNothingChanged) {
  const ResourceBalance balance;
  EXPECT_EQ(balance.problem(), "");
  EXPECT_EQ(balance.before(), ResourceCounts());
}

TEST_F(TestingResourceBalance, FindsGdiObjects) {
  const ResourceBalance balance;
  const HBRUSH first = CreateSolidBrush(RGB(1, 2, 3));
  EXPECT_EQ(balance.problem(), "1 more GDI object");
  const HPEN second = CreatePen(PS_SOLID, 3, RGB(3, 2, 1));
  EXPECT_EQ(balance.problem(), "2 more GDI objects");
  const ResourceBalance later;
  DeleteObject(first);
  EXPECT_EQ(later.problem(), "1 fewer GDI object");
  DeleteObject(second);
  EXPECT_EQ(later.problem(), "2 fewer GDI objects");
  EXPECT_EQ(balance.problem(), "");
}

TEST_F(TestingResourceBalance, FindsKernelHandles) {
  const ResourceBalance balance;
  const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  EXPECT_EQ(balance.problem(), "1 more kernel handle");
  CloseHandle(event);
  EXPECT_EQ(balance.problem(), "");
}

TEST_F(TestingResourceBalance, LeavesOtherProcessesOut) {
  std::string command = "\"" + (program_folder() / "hanging.exe").string() + "\"";
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION other{};
  ASSERT_TRUE(CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr, nullptr,
                             &startup, &other));
  const ResourceBalance balance;
  HANDLE given = nullptr;
  EXPECT_TRUE(
      DuplicateHandle(GetCurrentProcess(), other.hProcess, other.hProcess, &given, 0, FALSE, DUPLICATE_SAME_ACCESS));
  EXPECT_EQ(balance.problem(), "");
  TerminateProcess(other.hProcess, 0);
  CloseHandle(other.hThread);
  CloseHandle(other.hProcess);
}

TEST_F(TestingResourceBalance, FindsWindowsOfAllKinds) {
  const HWND parent = make_window();
  for (const HWND under : {HWND(nullptr), parent, HWND_MESSAGE}) {
    const ResourceBalance balance;
    const HWND window = make_window(under);
    ASSERT_TRUE(window);
    EXPECT_EQ(balance.problem(), "1 more USER object");
    DestroyWindow(window);
    EXPECT_EQ(balance.problem(), "");
  }
  DestroyWindow(parent);
}

TEST_F(TestingResourceBalance, FindsWindowsOfOtherThreads) {
  std::thread([] {}).join();
  const ResourceBalance balance;
  std::thread([&] {
    const HWND window = make_window();
    EXPECT_NE(balance.problem().find("1 more USER object"), std::string::npos) << balance.problem();
    DestroyWindow(window);
  }).join();
}

TEST_F(TestingResourceBalance, FindsReferences) {
  CountingObject<> first("the sink"), second("the site");
  second.AddRef();
  const ResourceBalance balance{&first, &second};
  EXPECT_EQ(balance.problem(), "");
  first.AddRef();
  EXPECT_EQ(balance.problem(), "1 more reference to the sink");
  second.Release();
  const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  EXPECT_EQ(balance.problem(), "1 more kernel handle, 1 more reference to the sink, 1 fewer reference to the site");
  CloseHandle(event);
  first.Release();
}

TEST_F(TestingResourceBalance, RoundsFindALeakInSome) {
  int round = 0;
  std::vector<HANDLE> kept;
  EXPECT_EQ(leak_of_rounds(30,
                           [&] {
                             if (++round % 10 == 0) kept.push_back(CreateEventA(nullptr, TRUE, FALSE, nullptr));
                           }),
            "after 30 rounds: 3 more kernel handles");
  EXPECT_EQ(round, 50);
  for (const HANDLE event : kept) CloseHandle(event);
}

TEST_F(TestingResourceBalance, RoundsDoNotCountTheFirst) {
  std::vector<HANDLE> kept;
  const auto keep_five = [&] {
    if (kept.size() < 5) kept.push_back(CreateEventA(nullptr, TRUE, FALSE, nullptr));
  };
  EXPECT_EQ(leak_of_rounds(5, keep_five, 2), "after 5 rounds: 3 more kernel handles");
  EXPECT_EQ(leak_of_rounds(5, keep_five, 0), "");
  for (const HANDLE event : kept) CloseHandle(event);
}

TEST_F(TestingResourceBalance, PrintsTheCounts) {
  ResourceCounts counts;
  counts.gdi_objects = 1;
  counts.user_objects = 2;
  counts.kernel_handles = 3;
  std::ostringstream text;
  text << counts;
  EXPECT_EQ(text.str(), "1 GDI objects, 2 USER objects, 3 kernel handles");
}

}  // namespace
