// Extension DLLs: what DllMain tells MFC of one.
#define _AFXEXT

#include <gtest/gtest.h>

#include <afxdllx.h>

namespace {

// An entry of an extension DLL that says when it is deleted.
struct Entry : CDynLinkLibrary {
  Entry(AFX_EXTENSION_MODULE& module, int& deleted) : CDynLinkLibrary(module), deleted_(deleted) {}
  ~Entry() override { ++deleted_; }
  int& deleted_;
};

TEST(ExtensionModule, IsSearchedUntilItEnds) {
  const HMODULE shell = LoadLibraryA("shell32.dll"), controls = LoadLibraryA("comctl32.dll");
  AFX_EXTENSION_MODULE module{}, other{};
  EXPECT_TRUE(AfxInitExtensionModule(module, shell));
  EXPECT_TRUE(AfxInitExtensionModule(other, controls));
  EXPECT_TRUE(module.bInitialized);
  EXPECT_EQ(module.hModule, shell);
  EXPECT_EQ(module.hResource, shell);
  int deleted = 0, others = 0;
  new Entry(other, others);
  new Entry(module, deleted);
  const auto version = [] { return AfxFindResourceHandle(MAKEINTRESOURCE(1), RT_VERSION); };
  EXPECT_EQ(version(), shell);
  AfxTermExtensionModule(module);
  EXPECT_FALSE(module.bInitialized);
  EXPECT_EQ(deleted, 1);
  EXPECT_EQ(others, 0);
  EXPECT_EQ(version(), controls);
  AfxTermExtensionModule(module, TRUE);
  EXPECT_EQ(others, 1);
  EXPECT_EQ(version(), nullptr);
}

}  // namespace
