// The main function of every test program: no box waits for a person, and a watchdog ends a test that hangs.
#include <gtest/gtest.h>

#include <kexlib/testing/watchdog.h>

#include <support/crash_report.h>

#include <chrono>
#include <optional>
#include <string>

namespace {

class WatchdogOfEachTest : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo& test) override {
    using kexlib::testing::Watchdog;
    watchdog_.emplace(std::string(test.test_suite_name()) + "." + test.name(), std::chrono::seconds(100),
                      Watchdog::End::at_once);
  }
  void OnTestEnd(const testing::TestInfo&) override { watchdog_.reset(); }

  std::optional<kexlib::testing::Watchdog> watchdog_;
};

}  // namespace

int main(int argc, char** argv) {
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
  report_crashes();
  testing::InitGoogleTest(&argc, argv);
  testing::UnitTest::GetInstance()->listeners().Append(new WatchdogOfEachTest);
  return RUN_ALL_TESTS();
}
