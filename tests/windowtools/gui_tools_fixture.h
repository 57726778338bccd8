// A window with controls.
#ifndef TESTS_WINDOWTOOLS_GUI_TOOLS_FIXTURE_H
#define TESTS_WINDOWTOOLS_GUI_TOOLS_FIXTURE_H

#include <gtest/gtest.h>

#include <kexlib/windowtools/gui_tools.h>

#include <support/import_override.h>

#include <vector>

class GuiTools : public testing::Test {
 protected:
  GuiTools() {
    parent_ = CreateWindowA("STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, 400, 300, nullptr, nullptr, nullptr, nullptr);
  }
  ~GuiTools() override { DestroyWindow(parent_); }

  HWND add(const char* window_class, int x, int y, int width, int height, DWORD style = 0, HWND parent = nullptr) {
    return CreateWindowA(window_class, "", WS_CHILD | WS_VISIBLE | style, x, y, width, height,
                         parent ? parent : parent_, nullptr, nullptr, nullptr);
  }

  HWND parent_;
};

// Records how the library moves windows: for an ImportOverride of SetWindowPos.
struct Move {
  HWND after;
  int width, height;
  UINT flags;
};
inline std::vector<Move> moves;

inline BOOL WINAPI record_move(HWND window, HWND after, int x, int y, int width, int height, UINT flags) {
  moves.push_back({after, width, height, flags});
  return SetWindowPos(window, after, x, y, width, height, flags);
}

#endif
