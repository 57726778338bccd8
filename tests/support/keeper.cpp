// Keeps the desktop process alive while tests run. It ends when the last window is destroyed, and each program would
// wait for a new one. Creates the file named by its argument when its window exists.
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
