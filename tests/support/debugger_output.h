#ifndef TESTS_SUPPORT_DEBUGGER_OUTPUT_H
#define TESTS_SUPPORT_DEBUGGER_OUTPUT_H

#include <functional>
#include <string>
#include <vector>

// Catches what this process sends to OutputDebugString for as long as the object lives; one at a time.
class DebuggerOutput {
 public:
  // `on_text`, if any, is called while the sender waits.
  explicit DebuggerOutput(std::function<void()> on_text = {});
  ~DebuggerOutput();
  DebuggerOutput(const DebuggerOutput&) = delete;
  DebuggerOutput& operator=(const DebuggerOutput&) = delete;

  const std::vector<std::string>& texts() const;

 private:
  void* handler_;
};

#endif
