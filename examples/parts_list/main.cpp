// A list of parts: a small application on kexlib.
//
//     parts_list [FOLDER]     shows the parts below a folder, by default the current one
//
// Its profile is written to profiler.js in the current folder when it ends.
#include <kexlib/framework.h>

#include <atlbase.h>
#include <atlwin.h>

#include <parts_list/main_window.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>

int WINAPI WinMain(HINSTANCE, HINSTANCE, char*, int) try {
  const std::string folder = std::filesystem::absolute(__argc > 1 ? __argv[1] : ".").string();
  ::OleInitialize(nullptr);
  parts_list::MainWindow window(folder);
  if (!window.Create(nullptr)) return 2;
  window.ShowWindow(SW_SHOW);
  MSG message;
  while (::GetMessage(&message, nullptr, 0, 0) > 0) {
    if (::IsDialogMessage(window, &message)) continue;
    ::TranslateMessage(&message);
    ::DispatchMessage(&message);
  }
  ::OleUninitialize();
  return 0;
} catch (const std::exception& error) {
  ::MessageBox(nullptr, error.what(), "Parts list", MB_ICONERROR);
  return 2;
}
