// Version 6 of the common controls in a program without the manifest for it.
#include <gtest/gtest.h>

#include <windows.h>

#include <support/child_process.h>
#include <support/files.h>

#include <string>

namespace {

TEST(CommonControls, AreAskedForByTheLibraryButNotForWhatItImports) {
  const HMODULE library =
      LoadLibraryExA((program_folder() / "kexlib.dll").string().c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  ASSERT_TRUE(library);
  const HRSRC manifest = FindResourceA(library, MAKEINTRESOURCEA(3), MAKEINTRESOURCEA(24));
  ASSERT_TRUE(manifest);
  const std::string text(static_cast<const char*>(LockResource(LoadResource(library, manifest))),
                         SizeofResource(library, manifest));
  EXPECT_NE(text.find("Microsoft.Windows.Common-Controls\" version=\"6.0.0.0\""), std::string::npos);
  EXPECT_EQ(FindResourceA(library, MAKEINTRESOURCEA(2), MAKEINTRESOURCEA(24)), nullptr);
  FreeLibrary(library);
}

TEST(CommonControlsInChildProcess, AreTheLibrarysWhileItShowsATaskDialog) {
  EXPECT_EQ(run_program("program_without_manifest.exe", ""), 0u);
}

}  // namespace
