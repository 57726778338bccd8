#ifndef TESTS_SUPPORT_DESKTOP_FOLDER_H
#define TESTS_SUPPORT_DESKTOP_FOLDER_H

#include <filesystem>
#include <string>

// Moves the user's desktop folder, as the shell tells it, for as long as the object lives. The registry that says where
// it is belongs to all processes: such tests run one at a time.
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

// Puts the desktop folder where it is on a new system: a test that was killed may have left it elsewhere.
void restore_desktop_folder();

#endif
