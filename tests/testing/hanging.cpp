// A program that does not end by itself: its watchdog ends it.
//
// Arguments: "waiting" waits, "heap" waits with the lock of the heap, "loop" runs a message loop that has nothing to
// close; then the file for the report.
#include <kexlib/testing/watchdog.h>

#include <windows.h>

#include <chrono>
#include <cstring>

int main(int count, char** arguments) {
  using kexlib::testing::Watchdog;
  if (count != 3) return 1;
  SetStdHandle(STD_ERROR_HANDLE,
               CreateFileA(arguments[2], GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr));
  if (std::strcmp(arguments[1], "loop") == 0) {
    const Watchdog watchdog("the loop", std::chrono::milliseconds(100));
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0)) DispatchMessageA(&message);
    return 2;
  }
  const Watchdog watchdog("the wait", std::chrono::milliseconds(100), Watchdog::End::at_once);
  if (std::strcmp(arguments[1], "heap") == 0) HeapLock(GetProcessHeap());
  WaitForSingleObject(CreateEventA(nullptr, TRUE, FALSE, nullptr), INFINITE);
  return 3;
}
