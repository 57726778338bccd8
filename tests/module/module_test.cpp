// The version resource of kexlib.dll, and the manifests of the build's programs.
#include <gtest/gtest.h>

#include <kexlib/version.h>

#include <windows.h>

#include <support/files.h>

#include <string>
#include <vector>

namespace {

TEST(Module, TellsItsVersionInItsResource) {
  const std::string path = (program_folder() / "kexlib.dll").string();
  std::vector<char> data(GetFileVersionInfoSizeA(path.c_str(), nullptr));
  ASSERT_FALSE(data.empty());
  ASSERT_TRUE(GetFileVersionInfoA(path.c_str(), 0, static_cast<DWORD>(data.size()), data.data()));
  void* value;
  UINT size;
  ASSERT_TRUE(VerQueryValueA(data.data(), "\\", &value, &size));
  const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(value);
  EXPECT_EQ(info.dwFileVersionMS, MAKELONG(KEXLIB_VERSION_MINOR, KEXLIB_VERSION_MAJOR));
  EXPECT_EQ(info.dwFileVersionLS, MAKELONG(0, KEXLIB_VERSION_PATCH));
  ASSERT_TRUE(VerQueryValueA(data.data(), "\\StringFileInfo\\040904b0\\FileVersion", &value, &size));
  EXPECT_EQ(std::string(static_cast<const char*>(value)), std::to_string(KEXLIB_VERSION_MAJOR) + "." +
                                                              std::to_string(KEXLIB_VERSION_MINOR) + "." +
                                                              std::to_string(KEXLIB_VERSION_PATCH));
}

TEST(Programs, AllButOneAskForVersion6OfTheCommonControls) {
  int programs = 0;
  for (const std::string& name : files_in(program_folder())) {
    if (!name.ends_with(".exe")) continue;
    HMODULE program = LoadLibraryExA((program_folder() / name).string().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    ASSERT_TRUE(program) << name;
    HRSRC manifest = FindResourceA(program, MAKEINTRESOURCEA(1), MAKEINTRESOURCEA(24));
    if (name == "program_without_manifest.exe") {
      EXPECT_EQ(manifest, nullptr) << name;
      FreeLibrary(program);
      continue;
    }
    ASSERT_TRUE(manifest) << name;
    const std::string text(static_cast<const char*>(LockResource(LoadResource(program, manifest))),
                           SizeofResource(program, manifest));
    EXPECT_NE(text.find("Microsoft.Windows.Common-Controls\" version=\"6.0.0.0\""), std::string::npos) << name;
    FreeLibrary(program);
    ++programs;
  }
  EXPECT_GE(programs, 5);
}

}  // namespace
