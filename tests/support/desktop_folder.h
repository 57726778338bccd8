#ifndef TESTS_SUPPORT_DESKTOP_FOLDER_H
#define TESTS_SUPPORT_DESKTOP_FOLDER_H

#include <filesystem>
#include <string>

// Moves the user's desktop folder in the shell's registry while the object lives. All processes of a session share the
// registry.
class DesktopFolder {
 public:
  explicit DesktopFolder(const std::filesystem::path& folder);
  ~DesktopFolder();
  DesktopFolder(const DesktopFolder&) = delete;
  DesktopFolder& operator=(const DesktopFolder&) = delete;

  void move_to(const std::filesystem::path& folder);

 private:
  std::string previous_;
};

// Resets the desktop folder to its default: a test that was terminated may have left it elsewhere.
void restore_desktop_folder();

#endif
