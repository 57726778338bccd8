#include <gtest/gtest.h>

#include <kexlib/testing/fault_observer.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using kexlib::testing::Fault;
using kexlib::testing::FaultObserver;
using kexlib::testing::is_fault;

// A window whose procedure raises faults, which the system handles.
class TestingFaultObserver : public testing::Test {
 protected:
  TestingFaultObserver() {
    const auto procedure =
        reinterpret_cast<LONG_PTR>(reinterpret_cast<void*>(GetProcAddress(module, "faulty_procedure")));
    EXPECT_NE(procedure, 0);
    SetWindowLongPtrA(window, GWLP_WNDPROC, procedure);
  }
  ~TestingFaultObserver() override {
    DestroyWindow(window);
    FreeLibrary(module);
  }

  static void raise(HWND in, WPARAM kind, LPARAM address) {
    SendMessageA(in, WM_APP, kind, address);
    SetWindowPos(in, nullptr, 0, 0, ++width, 9, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
  void read(LPARAM address) const { raise(window, 0, address); }
  void write(LPARAM address) const { raise(window, 1, address); }
  void divide_by_zero() const { raise(window, 2, 0); }

  static inline int width = 0;
  const HMODULE module = LoadLibraryA("faulty.dll");
  const HWND window = CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
};

TEST_F(TestingFaultObserver, SeesWhatTheSystemHandles) {
  const FaultObserver faults;
  read(reinterpret_cast<LPARAM>(&faults));
  EXPECT_EQ(faults.count(), 0);
  EXPECT_EQ(faults.problem(), "");
  read(0x10);
  write(0x20);
  ASSERT_EQ(faults.count(), 2);
  const std::vector<Fault> seen = faults.faults();
  ASSERT_EQ(seen.size(), 2u);
  EXPECT_EQ(seen[0].code, static_cast<DWORD>(EXCEPTION_ACCESS_VIOLATION));
  EXPECT_EQ(seen[0].access, 0u);
  EXPECT_EQ(seen[0].address, 0x10u);
  EXPECT_EQ(seen[0].thread, GetCurrentThreadId());
  EXPECT_EQ(kexlib::testing::module_of(seen[0].instruction), module);
  EXPECT_EQ(seen[1].access, 1u);
  EXPECT_EQ(seen[1].address, 0x20u);
}

TEST_F(TestingFaultObserver, SaysWhere) {
  const FaultObserver faults;
  write(0x20);
  EXPECT_EQ(faults.problem().find("1 fault: access violation at faulty.dll+0x"), 0u) << faults.problem();
  EXPECT_NE(faults.problem().find("faulty_procedure"), std::string::npos) << faults.problem();
  EXPECT_NE(faults.problem().find("faulty.cpp:"), std::string::npos) << faults.problem();
  EXPECT_NE(faults.problem().find(", write to 0x0000000000000020"), std::string::npos) << faults.problem();
  divide_by_zero();
  const std::string both = faults.problem();
  EXPECT_EQ(both.find("2 faults:\n  access violation at faulty.dll+0x"), 0u) << both;
  EXPECT_NE(both.find("\n  division by zero at faulty.dll+0x"), std::string::npos) << both;
}

TEST_F(TestingFaultObserver, CountsForEachScope) {
  const FaultObserver outer;
  read(0x10);
  {
    const FaultObserver inner;
    EXPECT_EQ(inner.count(), 0);
    read(0x10);
    EXPECT_EQ(inner.count(), 1);
    EXPECT_EQ(outer.count(), 2);
  }
  read(0x10);
  EXPECT_EQ(outer.count(), 3);
}

TEST_F(TestingFaultObserver, EndsInAnyOrder) {
  auto first = std::make_unique<FaultObserver>(), second = std::make_unique<FaultObserver>();
  first.reset();
  read(0x10);
  EXPECT_EQ(second->count(), 1);
  second.reset();
  read(0x10);
  const FaultObserver later;
  read(0x10);
  EXPECT_EQ(later.count(), 1);
}

TEST_F(TestingFaultObserver, CountsMoreThanItKeeps) {
  const FaultObserver faults;
  for (LPARAM i = 0; i < 20; ++i) read(0x10 + i);
  EXPECT_EQ(faults.count(), 20);
  ASSERT_EQ(faults.faults().size(), 16u);
  EXPECT_EQ(faults.faults()[15].address, 0x10u + 15u);
}

TEST_F(TestingFaultObserver, LeavesOutTheSystemsOwn) {
  // The probe is in one of them.
  const FaultObserver all, library({module}),
      kernel({GetModuleHandleA("kernel32.dll"), GetModuleHandleA("kernelbase.dll")});
  EXPECT_TRUE(IsBadReadPtr(reinterpret_cast<const void*>(0x10), 1));
  EXPECT_EQ(all.count(), 0);
  EXPECT_EQ(library.count(), 0);
  EXPECT_EQ(kernel.count(), 1);
  read(0x10);
  EXPECT_EQ(all.count(), 1);
  EXPECT_EQ(library.count(), 1);
  EXPECT_EQ(kernel.count(), 1);
}

TEST_F(TestingFaultObserver, SeesAllThreads) {
  const FaultObserver faults;
  DWORD thread = 0;
  std::thread([&] {
    thread = GetCurrentThreadId();
    const HWND own = CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    SetWindowLongPtrA(own, GWLP_WNDPROC, GetWindowLongPtrA(window, GWLP_WNDPROC));
    raise(own, 0, 0x10);
    DestroyWindow(own);
  }).join();
  ASSERT_EQ(faults.count(), 1);
  EXPECT_EQ(faults.faults()[0].thread, thread);
}

TEST_F(TestingFaultObserver, IsNotInterestedInExceptions) {
  const FaultObserver faults;
  EXPECT_THROW(throw 5, int);
  OutputDebugStringA("an exception of the system's\n");
  EXPECT_EQ(faults.count(), 0);
  EXPECT_FALSE(is_fault(EXCEPTION_BREAKPOINT));
  EXPECT_TRUE(is_fault(EXCEPTION_PRIV_INSTRUCTION));
}

}  // namespace
