// Makes a shortcut, as the shell does for a user. COM must be initialised.
#ifndef TESTS_SUPPORT_SHORTCUT_H
#define TESTS_SUPPORT_SHORTCUT_H

#include <gtest/gtest.h>

#include <atlbase.h>
#include <shlobj.h>

#include <filesystem>

inline void make_shortcut(const std::filesystem::path& path, const std::filesystem::path& target) {
  CComPtr<IShellLinkA> link;
  CComPtr<IPersistFile> file;
  ASSERT_EQ(link.CoCreateInstance(CLSID_ShellLink), S_OK);
  ASSERT_EQ(link.QueryInterface(&file), S_OK);
  ASSERT_TRUE(SUCCEEDED(link->SetPath(target.string().c_str())));
  ASSERT_EQ(file->Save(path.c_str(), TRUE), S_OK);
}

#endif
