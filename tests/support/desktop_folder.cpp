#include <windows.h>

#include <support/desktop_folder.h>

namespace {

constexpr char usual_folder[] = "%USERPROFILE%\\Desktop";
constexpr char key[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";

void set_desktop(const std::string& folder) {
  RegSetKeyValueA(HKEY_CURRENT_USER, key, "Desktop", REG_EXPAND_SZ, folder.c_str(),
                  static_cast<DWORD>(folder.size() + 1));
}

}  // namespace

DesktopFolder::DesktopFolder(const std::filesystem::path& folder) {
  char value[MAX_PATH];
  DWORD size = sizeof value;
  const bool is_set = RegGetValueA(HKEY_CURRENT_USER, key, "Desktop", RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND, nullptr,
                                   value, &size) == ERROR_SUCCESS;
  previous_ = is_set ? value : usual_folder;
  move_to(folder);
}

DesktopFolder::~DesktopFolder() { set_desktop(previous_); }

void DesktopFolder::move_to(const std::filesystem::path& folder) { set_desktop(folder.string()); }

void restore_desktop_folder() { set_desktop(usual_folder); }
