// The main function of every test program: no box waits for a person, a watchdog ends a test that hangs, and damaged
// memory is found where the system looks for it.
#include <gtest/gtest.h>

#include <kexlib/testing/watchdog.h>

#include <support/checked_heap.h>
#include <support/crash_report.h>
#include <support/leak_rounds.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>

namespace {

class WatchdogOfEachTest : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo& test) override {
    using kexlib::testing::Watchdog;
    // More rounds than usual take more time.
    const auto patience = std::chrono::seconds(100) * std::max(1, leak_rounds() / usual_leak_rounds);
    watchdog_.emplace(std::string(test.test_suite_name()) + "." + test.name(), patience, Watchdog::End::at_once);
  }
  void OnTestEnd(const testing::TestInfo&) override { watchdog_.reset(); }

  std::optional<kexlib::testing::Watchdog> watchdog_;
};

class HeapsAfterEachTest : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo&) override { check_heaps(); }
};

}  // namespace

int main(int argc, char** argv) {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
  report_crashes();
  check_freed_blocks();
  testing::InitGoogleTest(&argc, argv);
  testing::UnitTest::GetInstance()->listeners().Append(new WatchdogOfEachTest);
  testing::UnitTest::GetInstance()->listeners().Append(new HeapsAfterEachTest);
  return RUN_ALL_TESTS();
}
