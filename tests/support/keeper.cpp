// Holds the desktop open while tests run: without a window the desktop process ends, and each program would wait for a
// new one. Makes the file that it is given once its window stands.
#include <windows.h>

#include <support/desktop_folder.h>

int main(int, char** arguments) {
  restore_desktop_folder();
  CreateWindowA("STATIC", "keeper", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
  CloseHandle(CreateFileA(arguments[1], GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  MSG message;
  while (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
  return 0;
}
