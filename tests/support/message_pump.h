// Waits for events of windows while messages are dispatched.
#ifndef TESTS_SUPPORT_MESSAGE_PUMP_H
#define TESTS_SUPPORT_MESSAGE_PUMP_H

#include <windows.h>

#include <chrono>
#include <functional>

// Dispatches this thread's messages until `happened` returns true. Returns false if that takes too long.
bool pump_until(const std::function<bool()>& happened, std::chrono::milliseconds at_most = std::chrono::seconds(10));

// Dispatches the messages in the queue.
void pump_waiting();

// The same in a modeless dialog, where keys such as Tab move the focus (IsDialogMessage).
bool pump_dialog_until(HWND dialog, const std::function<bool()>& happened);

#endif
