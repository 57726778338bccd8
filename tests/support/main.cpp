// The main function of every test program: no box waits for a person, and a watchdog ends a test that hangs.
#include <gtest/gtest.h>

#include <windows.h>

#include <support/crash_report.h>

#include <chrono>
#include <cstdio>
#include <thread>

namespace {

constexpr std::chrono::seconds longest_test{100};
constexpr unsigned watchdog_exit_code = 99;

class Watchdog : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo& test) override {
    name_ = std::string(test.test_suite_name()) + "." + test.name();
    ended_ = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    const HANDLE waits = CreateEventA(nullptr, TRUE, FALSE, nullptr);
    thread_ = std::thread([this, waits] {
      SetEvent(waits);
      if (WaitForSingleObject(ended_, std::chrono::milliseconds(longest_test).count()) == WAIT_OBJECT_0) return;
      std::fprintf(stderr, "watchdog: %s does not end\n", name_.c_str());
      TerminateProcess(GetCurrentProcess(), watchdog_exit_code);
    });
    // A thread that is still being made uses the heap, which Wine cannot walk meanwhile: it never comes to an end.
    WaitForSingleObject(waits, INFINITE);
    CloseHandle(waits);
  }

  void OnTestEnd(const testing::TestInfo&) override {
    SetEvent(ended_);
    thread_.join();
    CloseHandle(ended_);
  }

  std::string name_;
  HANDLE ended_ = nullptr;
  std::thread thread_;
};

}  // namespace

int main(int argc, char** argv) {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
  report_crashes();
  testing::InitGoogleTest(&argc, argv);
  testing::UnitTest::GetInstance()->listeners().Append(new Watchdog);
  return RUN_ALL_TESTS();
}
