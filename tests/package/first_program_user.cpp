// Uses the program of docs/first-program.md as its reader does: looks at the window, clicks the button, enters a
// number, closes the window.
//
//     first_program_user PROGRAM PICTURE
//
// Writes the picture of the window as a PNG file. The exit status is 0, or the number of the check that failed.
#include <kexlib/framework.h>

#include <rqgfx/duct_image.h>
#include <rqgfx/png_writer.h>
#include <support/crash_report.h>
#include <support/message_pump.h>
#include <support/user_input.h>

#include <cstdio>
#include <memory>
#include <string>

namespace {

void CALLBACK give_up(HWND, UINT, UINT_PTR, DWORD) { ExitProcess(20); }

// What the screen shows of a window, with its frame.
bool save_picture(HWND window, const char* path) {
  RECT place;
  GetWindowRect(window, &place);
  const int width = place.right - place.left, height = place.bottom - place.top;
  BITMAPINFO description{};
  description.bmiHeader = {sizeof description.bmiHeader, width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  const HDC screen = GetDC(nullptr), memory = CreateCompatibleDC(screen);
  const HBITMAP bitmap = CreateDIBSection(nullptr, &description, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ before = SelectObject(memory, bitmap);
  BitBlt(memory, 0, 0, width, height, screen, place.left, place.top, SRCCOPY);
  SelectObject(memory, before);
  const std::unique_ptr<hnDuctImage> image(rq_duct_image_from_dib(bitmap));
  const bool saved = rqPNGWriterDuctImage::write_file(image.get(), bzString(path), -1, -1) != 0;
  DeleteObject(bitmap);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  return saved;
}

// The text of a control in another process, which GetWindowText does not read.
std::string text_of(HWND control) {
  char text[40] = "";
  SendMessageA(control, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
  return text;
}

// Whether the screen shows the button's picture, which is blue.
bool shows_its_picture(HWND button) {
  RECT place;
  GetWindowRect(button, &place);
  const HDC screen = GetDC(nullptr);
  int blue = 0;
  for (int y = place.top + 12; y < place.bottom - 12; ++y)
    for (int x = place.left + 12; x < place.right - 12; ++x) {
      const COLORREF color = GetPixel(screen, x, y);
      if (GetBValue(color) > GetRValue(color) + 40) ++blue;
    }
  ReleaseDC(nullptr, screen);
  return blue > 50;
}

int use(const PROCESS_INFORMATION& program, const char* picture) {
  HWND window = nullptr;
  if (!pump_until([&] { return (window = FindWindowA("FirstWindow", "My first program")) && IsWindowVisible(window); },
                  std::chrono::seconds(30)))
    return 2;
  const HWND number = GetDlgItem(window, 100), button = GetDlgItem(window, 101);
  if (!number || !button) return 3;
  if (text_of(number) != "2.50") return 4;
  if (!bring_to_front(window)) return 5;
  park_mouse();
  const bool shown = pump_until([&] { return shows_its_picture(button); });
  if (!save_picture(window, picture)) return 6;
  if (!shown) return 7;

  click(button);
  if (!pump_until([&] { return text_of(number) == "5.00"; })) return 8;

  click(number);
  press_key(VK_END);
  press_key(VK_HOME, VK_SHIFT);
  type_text("1.5x");
  press_key(VK_TAB);
  if (!pump_until([&] { return text_of(number) == "1.50"; })) return 9;

  PostMessageA(window, WM_CLOSE, 0, 0);
  if (WaitForSingleObject(program.hProcess, 20000) != WAIT_OBJECT_0) return 10;
  DWORD status = 99;
  GetExitCodeProcess(program.hProcess, &status);
  return status == 0 ? 0 : 11;
}

}  // namespace

int main(int count, char** arguments) {
  report_crashes();
  if (count != 3) return 1;
  SetTimer(nullptr, 0, 90000, give_up);
  std::string command = '"' + std::string(arguments[1]) + '"';
  STARTUPINFOA start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION program{};
  if (!CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &program))
    return 1;
  const int status = use(program, arguments[2]);
  if (status) {
    std::printf("first_program_user: check %d failed\n", status);
    TerminateProcess(program.hProcess, 99);
  }
  CloseHandle(program.hThread);
  CloseHandle(program.hProcess);
  return status;
}
