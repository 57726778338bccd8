// An empty table, and windows to be named.
#ifndef TESTS_WINDOWTOOLS_HWND_TABLE_FIXTURE_H
#define TESTS_WINDOWTOOLS_HWND_TABLE_FIXTURE_H

#include <gtest/gtest.h>

#include <kexlib/windowtools/hwnd_table.h>

#include <vector>

inline kexHWNDTable& table() { return kexHWNDTable::singleton(); }

inline HWND make_dialog(DWORD style = WS_VISIBLE, HWND owner = nullptr) {
  return CreateWindowA("STATIC", "", WS_POPUP | style, 0, 0, 50, 50, owner, nullptr, nullptr, nullptr);
}

inline HWND make_view(HWND parent, DWORD style = WS_VISIBLE) {
  return CreateWindowA("STATIC", "", WS_CHILD | style, 0, 0, 20, 20, parent, nullptr, nullptr, nullptr);
}

class HwndTable : public testing::Test {
 protected:
  HwndTable() { kexHWNDTable::delete_singleton(); }
  ~HwndTable() override {
    kexHWNDTable::delete_singleton();
    for (HWND dialog : dialogs_)
      if (IsWindow(dialog)) DestroyWindow(dialog);
  }

  HWND dialog(DWORD style = WS_VISIBLE, HWND owner = nullptr) {
    dialogs_.push_back(make_dialog(style, owner));
    return dialogs_.back();
  }

 private:
  std::vector<HWND> dialogs_;
};

#endif
